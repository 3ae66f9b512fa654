#include "waveform/views/OVLossMarksDrawing.h"

#include <algorithm>

#include <QColor>

namespace {

constexpr double kHeight = 4.0;    // points
constexpr double kMinWidth = 5.0;  // points
constexpr double kEdge = 1.0;      // points, of the dark edge that sets it off from a loud waveform
const QColor kColor(255, 190, 70);
const QColor kEdgeColor(35, 37, 62, 200);

// In Qt's coordinates, without the edge.
QRectF barOf(QSizeF size, const OVLossMark& mark, std::uint64_t lengthInFrames) {
  if (lengthInFrames == 0) {
    return {};
  }
  const double scale = size.width() / static_cast<double>(lengthInFrames);
  const double width = std::max(kMinWidth, static_cast<double>(mark.frames) * scale);
  const double left = static_cast<double>(mark.atFrame) * scale;
  return {std::clamp(left, 0.0, std::max(0.0, size.width() - width)), 0.0, width, kHeight};
}

}  // namespace

void drawLossMark(QPainter& painter, QSizeF size, const OVLossMark& mark,
                  std::uint64_t lengthInFrames) {
  QRectF bar = barOf(size, mark, lengthInFrames);
  if (bar.isEmpty()) {
    return;
  }
  bar.moveTop(size.height() - kHeight);  // the painter's origin is at the bottom
  painter.fillRect(bar.adjusted(-kEdge, -kEdge, kEdge, 0.0), kEdgeColor);
  painter.fillRect(bar, kColor);
}

QRectF lossMarkBounds(QSizeF size, const OVLossMark& mark, std::uint64_t lengthInFrames) {
  const QRectF bar = barOf(size, mark, lengthInFrames);
  return bar.isEmpty() ? bar : bar.adjusted(-kEdge, 0.0, kEdge, kEdge);
}

QRectF lossMarkStrip(QSizeF size) {
  return {0.0, 0.0, size.width(), kHeight + kEdge};
}
