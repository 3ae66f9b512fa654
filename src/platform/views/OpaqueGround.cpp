#include "platform/views/OpaqueGround.h"

namespace platform {

void paintOpaqueGround(QPainter& painter, const QRect& view, const QColor& ground) {
  painter.fillRect(view.adjusted(-1, -1, 1, 1), ground);
}

}  // namespace platform
