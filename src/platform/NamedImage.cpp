#include "platform/NamedImage.h"

#include <QFileInfo>

namespace platform {

namespace {

// Drawing blends premultiplied pixels; converting once here spares every paint the conversion.
QImage readyToDraw(const QImage& image) {
  return image.isNull() ? image : image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

QString pathOf(const QString& name, const QString& sizeMark) {
  const QFileInfo file(name);
  return QStringLiteral(":/images/") + file.completeBaseName() + sizeMark + QLatin1Char('.') +
         file.suffix();
}

}  // namespace

NamedImage::NamedImage(const QImage& single, const QImage& doubled)
    : single_(readyToDraw(single)), double_(readyToDraw(doubled)) {
  if (!double_.isNull()) {
    double_.setDevicePixelRatio(2.0);
  }
}

NamedImage::NamedImage(const QString& name)
    : NamedImage(QImage(pathOf(name, {})), QImage(pathOf(name, QStringLiteral("@2x")))) {}

bool NamedImage::isNull() const {
  return single_.isNull();
}

QSizeF NamedImage::size() const {
  return single_.deviceIndependentSize();
}

const QImage& NamedImage::forRatio(qreal ratio) const {
  return ratio > 1.0 && !double_.isNull() ? double_ : single_;
}

}  // namespace platform
