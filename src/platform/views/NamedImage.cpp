#include "platform/views/NamedImage.h"

#include <QFileInfo>
#include <QImageReader>

#include "platform/base/MainThread.h"

namespace platform {

namespace {

// Drawing blends premultiplied pixels; converting once here saves doing so in every paint.
QImage readyToDraw(const QImage& image) {
  return image.isNull() ? image : image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

// All are PNG, which Qt reads itself; without a given format it would first load every other
// format's plugin.
QImage decoded(const QString& path) {
  if (!QFileInfo::exists(path)) {
    return {};
  }
  QImageReader reader(path, "png");
  reader.setAutoDetectImageFormat(false);
  return reader.read();
}

QString pathOf(const QString& name, const QString& sizeMark) {
  const QFileInfo file(name);
  return QStringLiteral(":/images/") + file.completeBaseName() + sizeMark + QLatin1Char('.') +
         file.suffix();
}

}  // namespace

NamedImage::Version::Version(const QImage& image, double ratio)
    : image_(readyToDraw(image)), ratio_(ratio) {
  if (!image_.isNull()) {
    image_.setDevicePixelRatio(ratio_);
  }
}

const QImage& NamedImage::Version::image() const {
  if (!path_.isEmpty()) {
    assertMainThread();
    image_ = Version(decoded(std::exchange(path_, {})), ratio_).image_;
  }
  return image_;
}

NamedImage::NamedImage(const QImage& single, const QImage& doubled)
    : single_(single, 1.0), double_(doubled, 2.0) {}

NamedImage::NamedImage(const QString& name)
    : single_(pathOf(name, {}), 1.0), double_(pathOf(name, QStringLiteral("@2x")), 2.0) {}

bool NamedImage::isNull() const {
  return single_.image().isNull();
}

QSizeF NamedImage::size() const {
  return single_.image().deviceIndependentSize();
}

const QImage& NamedImage::forRatio(qreal ratio) const {
  return ratio > 1.0 && !double_.image().isNull() ? double_.image() : single_.image();
}

}  // namespace platform
