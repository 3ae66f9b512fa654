#include "waveform/views/OVRecordingTickDrawing.h"

#include <algorithm>
#include <cmath>

#include <QColor>
#include <QPolygonF>

namespace {

constexpr double kWidth = 9.0;   // points, at the upper edge
constexpr double kHeight = 7.0;  // points, from the edge to the tip
constexpr double kEdge = 1.0;    // points, of the dark edge that sets it off from a loud waveform
const QColor kColor(245, 66, 52);
const QColor kEdgeColor(35, 37, 62, 200);

struct Wedge {
  double left;
  double tip;
};

Wedge wedgeAt(double width, double position) {
  const double x = position * width;
  return {std::clamp(x - kWidth / 2.0, 0.0, std::max(0.0, width - kWidth)),
          std::clamp(x, 0.0, width)};
}

}  // namespace

void drawRecordingTick(QPainter& painter, QSizeF size, double position) {
  if (!std::isfinite(position)) {
    return;
  }
  const Wedge wedge = wedgeAt(size.width(), position);
  const double top = size.height();
  const QPolygonF outline({QPointF(wedge.left, top), QPointF(wedge.left + kWidth, top),
                           QPointF(wedge.tip, top - kHeight)});
  painter.setPen(QPen(kEdgeColor, 2.0 * kEdge, Qt::SolidLine, Qt::FlatCap, Qt::RoundJoin));
  painter.setBrush(Qt::NoBrush);
  painter.drawPolygon(outline);
  painter.setPen(Qt::NoPen);
  painter.setBrush(kColor);
  painter.drawPolygon(outline);
}

QRectF recordingTickBounds(QSizeF size, double position) {
  if (!std::isfinite(position)) {
    return {};
  }
  const Wedge wedge = wedgeAt(size.width(), position);
  return QRectF(wedge.left, 0.0, kWidth, kHeight).adjusted(-kEdge, 0.0, kEdge, kEdge);
}
