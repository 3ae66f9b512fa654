#include "platform/views/KeptPicture.h"

#include <cmath>

#include "platform/views/ViewDrawing.h"

namespace platform {
namespace {

constexpr double kOpacitySteps = 256.0;  // Qt's, to which it rounds down

}  // namespace

void KeptPicture::draw(QPainter& painter, const QRectF& area,
                       const std::function<void(QPainter&)>& render, double opacity) {
  const QTransform toDevice = painter.deviceTransform();
  const QRect pixels = toDevice.mapRect(area).toAlignedRect();
  if (pixels.isEmpty()) {
    return;
  }
  const Setting setting{area, toDevice * QTransform::fromTranslate(-pixels.x(), -pixels.y()),
                        pixels.size()};
  if (picture_.isNull() || !(setting == setting_)) {
    setting_ = setting;
    picture_ = QImage(setting.size, QImage::Format_ARGB32_Premultiplied);
    picture_.fill(Qt::transparent);
    QPainter first(&picture_);
    first.setRenderHint(QPainter::Antialiasing);
    first.setTransform(setting.toPicture);
    render(first);
  }
  const double before = painter.opacity();
  painter.setOpacity(std::round(opacity * kOpacitySteps) / kOpacitySteps);
  drawPixels(painter, pixels.topLeft(), picture_, picture_.rect());
  painter.setOpacity(before);
}

}  // namespace platform
