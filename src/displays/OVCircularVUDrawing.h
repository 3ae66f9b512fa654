#pragma once

#include <span>
#include <vector>

#include <QPainter>
#include <QPointF>
#include <QSizeF>

#include "platform/views/KeptPicture.h"

/// Draws one circle per channel into a painter in view coordinates: side by side in a wide view,
/// one above the other (the first at the bottom) in a tall or square one. The opacity follows the
/// linear level: level + 0.3 for the fill, level / 1.3 but at least 0.3 for the outline, both at
/// most 1. A NaN level draws as silence. No background is painted.
///
/// Keeps the circles' pictures, since most drawings differ from the last by the levels alone.
///
/// Threads: main. Real-time: not safe.
class OVCircularVUDrawing {
 public:
  void draw(QPainter& painter, QSizeF size, std::span<const float> levels);

 private:
  struct Circle {
    platform::KeptPicture fill;
    platform::KeptPicture outline;

    void draw(QPainter& painter, QPointF center, double radius, float level);
  };

  std::vector<Circle> circles_;  // one per channel of the last drawing
};
