#include "controls/OVNamedImage.h"

#include <QFileInfo>

namespace {

// Drawing blends premultiplied pixels; converting once here spares every paint the conversion.
QImage loadedFrom(const QString& path) {
  const QImage image(path);
  return image.isNull() ? image : image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

}  // namespace

OVNamedImage::OVNamedImage(const QString& name) {
  if (name.isEmpty()) {
    return;
  }
  const QFileInfo file(QStringLiteral(":/images/") + name);
  single_ = loadedFrom(file.filePath());
  double_ = loadedFrom(file.path() + QLatin1Char('/') + file.completeBaseName() +
                       QStringLiteral("@2x.") + file.suffix());
  if (!double_.isNull()) {
    double_.setDevicePixelRatio(2.0);
  }
}

bool OVNamedImage::isNull() const {
  return single_.isNull();
}

QSizeF OVNamedImage::size() const {
  return single_.deviceIndependentSize();
}

const QImage& OVNamedImage::forRatio(qreal ratio) const {
  return ratio > 1.0 && !double_.isNull() ? double_ : single_;
}
