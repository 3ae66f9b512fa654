#pragma once

#include <span>
#include <vector>

#include <QImage>
#include <QPainter>
#include <QPointF>
#include <QRegion>
#include <QSizeF>

#include "platform/views/PolylineStroke.h"
#include "platform/views/ViewDrawing.h"

/// The layers of the waveform picture. Each draws into a painter in view coordinates
/// (platform::useViewCoordinates) for a view of the given size in points. Keeps only memory and its
/// last drawing, which it reuses while the result would be the same.
///
/// Threads: one at a time, the main one in a view. Real-time: not safe.
class OVWaveFormDrawing {
 public:
  /// Distance of the grid lines, points; the vertical ones repeat after as many scroll steps.
  static constexpr double kGridSpacing = platform::kViewGridSpacing;

  /// The next value of the grid's horizontal offset: one point more, wrapping to 0 at 24.
  [[nodiscard]] static double nextGridOffset(double bg_scroll_x);

  /// A linear gradient from (36, 54, 71) at the bottom to (35, 37, 62) at the top.
  static void drawGradient(QPainter& painter, QSizeF size);

  /// Lines every 24 points. `bg_scroll_x`, 0 to 24 (excluded), moves the vertical ones to the
  /// right. The horizontal ones end half a point lower than they begin.
  static void drawGrid(QPainter& painter, QSizeF size, double bg_scroll_x);

  /// The gradient and the grid. The parts that do not move are cached between drawings.
  void drawBackground(QPainter& painter, QSizeF size, double bg_scroll_x);

  /// One zig-zag through all elements, a bar of 2 × element × 40 % of the height at (i + 1) × width
  /// / n for element i of n, centred on the middle. `alpha`, 0 to 1, applies to the zig-zag as a
  /// whole. NaN elements count as 0.
  void drawWaveform(QPainter& painter, QSizeF size, std::span<const float> elements, double alpha);

  /// 20 ticks along the bottom edge and one at the right end.
  static void drawTimescale(QPainter& painter, QSizeF size);

  /// Copies the parts of a rendered picture that lie in `dirty` (points, y downward) to the same
  /// place, without blending. The painter uses Qt's coordinates. A picture of another size than the
  /// view's is stretched to it.
  static void copyPicture(QPainter& painter, QSizeF viewSize, const QRegion& dirty,
                          const QImage& picture);

 private:
  void renderStill(QSize pixels, double ratio, QSizeF size);
  void collectZigzag(QSizeF size, std::span<const float> elements);

  QImage still_;  // the gradient and the level lines, in device pixels
  QSizeF stillSize_;
  std::vector<QPointF> zigzag_;
  platform::PolylineStroke zigzagStroke_;
};
