#include "controls/buttons/OVTransportArtwork.h"

#include <span>

#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>

#include "platform/views/RoundShapes.h"

namespace {

enum class RoundEnd { none, left, right };

// A level of device white with an alpha.
struct Grey {
  float white;
  float alpha;

  [[nodiscard]] QColor color() const { return QColor::fromRgbF(white, white, white, alpha); }
};

enum class Paint {
  fill,       // the shape in the colour `from`
  gradient,   // the shape from `from` at its top to `to` at its bottom
  band,       // the same within the top kBandHeight points
  separator,  // a line of kSeparatorHeight along the top
  border,     // the outline, one point wide, in the colour `from`
};

struct Layer {
  Paint paint;
  float insetX;
  float insetY;
  float radius;
  Grey from;
  Grey to = {};
};

constexpr float kBandHeight = 5.0F;
constexpr float kSeparatorHeight = 1.0F;
constexpr qreal kBorderWidth = 1.0;

constexpr Layer kPlainNormal[] = {
    {Paint::fill, 2.0F, 2.5F, 3.9F, {0.9F, 1.0F}},
    {Paint::gradient, 2.0F, 2.0F, 2.4F, {0.96F, 1.0F}, {1.0F, 0.0F}},
    {Paint::gradient, 2.0F, 2.0F, 2.4F, {0.65F, 0.0F}, {0.65F, 1.0F}},
    {Paint::band, 2.0F, 2.0F, 2.4F, {0.45F, 0.0F}, {0.45F, 1.0F}},
    {Paint::separator, 2.0F, 0.0F, 0.0F, {0.45F, 1.0F}},
    {Paint::gradient, 2.0F, 2.5F, 3.9F, {0.80F, 0.75F}, {0.89F, 0.75F}},
    {Paint::border, 1.5F, 1.5F, 2.4F, {0.45F, 1.0F}},
    {Paint::gradient, 2.0F, 2.0F, 2.4F, {1.0F, 0.7F}, {1.0F, 0.28F}},
};

constexpr Layer kPlainHighlighted[] = {
    {Paint::fill, 2.0F, 2.5F, 3.9F, {0.9F, 1.0F}},
    {Paint::gradient, 2.0F, 2.0F, 2.4F, {0.55F, 0.8F}, {0.55F, 0.0F}},
    {Paint::gradient, 2.0F, 2.0F, 2.4F, {0.55F, 0.0F}, {0.55F, 0.5F}},
    {Paint::band, 2.0F, 2.0F, 2.4F, {0.45F, 1.0F}, {0.45F, 0.0F}},
    {Paint::border, 1.5F, 1.5F, 2.4F, {0.45F, 1.0F}},
    {Paint::gradient, 2.0F, 2.0F, 2.4F, {1.0F, 0.5F}, {1.0F, 0.08F}},
};

// The round types have a smaller palette: greys 0.45 to 1 in eight steps, alphas 0.07, 0.75 and 1.
// The gradients of each state were fitted together: their sum matches the plain bezel's shade in
// every row to within three levels of 255.
constexpr Layer kRoundNormal[] = {
    {Paint::fill, 2.0F, 2.5F, 3.9F, {0.9F, 1.0F}},
    {Paint::gradient, 2.0F, 2.0F, 2.4F, {1.0F, 0.07F}, {0.7F, 0.75F}},
    {Paint::gradient, 2.0F, 2.0F, 2.4F, {0.9F, 1.0F}, {1.0F, 0.07F}},
    {Paint::band, 2.0F, 2.0F, 2.4F, {0.76F, 0.07F}, {0.6F, 0.75F}},
    {Paint::separator, 2.0F, 0.0F, 0.0F, {0.45F, 1.0F}},
    {Paint::gradient, 2.0F, 2.5F, 3.9F, {0.45F, 0.07F}, {0.9F, 1.0F}},
    {Paint::border, 1.5F, 1.5F, 2.4F, {0.45F, 1.0F}},
    {Paint::gradient, 2.0F, 2.0F, 2.4F, {1.0F, 0.75F}, {0.7F, 0.07F}},
};

constexpr Layer kRoundHighlighted[] = {
    {Paint::fill, 2.0F, 2.5F, 3.9F, {0.9F, 1.0F}},
    {Paint::gradient, 2.0F, 2.0F, 2.4F, {0.45F, 0.75F}, {0.65F, 0.07F}},
    {Paint::gradient, 2.0F, 2.0F, 2.4F, {1.0F, 0.75F}, {0.7F, 0.75F}},
    {Paint::band, 2.0F, 2.0F, 2.4F, {0.6F, 1.0F}, {1.0F, 0.07F}},
    {Paint::gradient, 2.0F, 2.0F, 2.4F, {0.76F, 0.75F}, {0.45F, 0.0F}},
    {Paint::border, 1.5F, 1.5F, 2.4F, {0.45F, 1.0F}},
    {Paint::gradient, 2.0F, 2.0F, 2.4F, {0.45F, 0.0F}, {0.7F, 0.07F}},
};

// A half circle extends half a point further out than a straight side. Outline and fills share its
// centre, so that no gap appears between them.
QRectF layerRect(const QRectF& frame, const Layer& layer, RoundEnd roundEnd) {
  constexpr qreal kRoundReach = 0.5;
  const qreal dx = layer.insetX;
  const qreal dy = layer.insetY;
  QRectF rect = frame.adjusted(dx, dy, -dx, -dy);
  if (roundEnd == RoundEnd::left) {
    rect.setLeft(rect.left() - kRoundReach);
  } else if (roundEnd == RoundEnd::right) {
    rect.setRight(rect.right() + kRoundReach);
  }
  return rect;
}

// One closed path: joining the areas of a half circle and a rectangle would show a seam.
platform::EndRadii radiiOf(const QRectF& rect, qreal radius, RoundEnd roundEnd) {
  const qreal round = rect.height() / 2.0;
  return {roundEnd == RoundEnd::left ? round : radius,
          roundEnd == RoundEnd::right ? round : radius};
}

QPainterPath shapePath(const QRectF& rect, qreal radius, RoundEnd roundEnd) {
  return platform::roundedPath(rect, radiiOf(rect, radius, roundEnd));
}

QLinearGradient downward(const QRectF& bounds, const Layer& layer) {
  QLinearGradient gradient(bounds.topLeft(), bounds.bottomLeft());
  gradient.setColorAt(0.0, layer.from.color());
  gradient.setColorAt(1.0, layer.to.color());
  return gradient;
}

void drawBand(QPainter& painter, const QRectF& rect, const Layer& layer, RoundEnd roundEnd) {
  QRectF band = rect;
  band.setHeight(kBandHeight);
  QPainterPath path = shapePath(band, layer.radius, RoundEnd::none);
  if (roundEnd != RoundEnd::none) {
    path = path.intersected(shapePath(rect, layer.radius, roundEnd));
  }
  painter.fillPath(path, downward(band, layer));
}

// At a round end, the line stops where the outline bends away from it.
void drawSeparator(QPainter& painter, const QRectF& rect, const Layer& layer, RoundEnd roundEnd) {
  QRectF line = rect;
  line.setHeight(kSeparatorHeight);
  const qreal bend = rect.height() / 2.0 - 2.0;  // the fills are two points lower on each side
  if (roundEnd == RoundEnd::left) {
    line.setLeft(line.left() + bend);
  } else if (roundEnd == RoundEnd::right) {
    line.setRight(line.right() - bend);
  }
  painter.fillRect(line, layer.from.color());
}

void drawLayer(QPainter& painter, const QRectF& frame, const Layer& layer, RoundEnd roundEnd) {
  const QRectF rect = layerRect(frame, layer, roundEnd);
  switch (layer.paint) {
    case Paint::fill:
      painter.fillPath(shapePath(rect, layer.radius, roundEnd), layer.from.color());
      break;
    case Paint::gradient:
      painter.fillPath(shapePath(rect, layer.radius, roundEnd), downward(rect, layer));
      break;
    case Paint::band:
      drawBand(painter, rect, layer, roundEnd);
      break;
    case Paint::separator:
      drawSeparator(painter, rect, layer, roundEnd);
      break;
    case Paint::border:
      painter.fillPath(
          platform::roundedRingPath(rect, radiiOf(rect, layer.radius, roundEnd), kBorderWidth),
          layer.from.color());
      break;
  }
}

void drawLayers(QPainter& painter, const QRectF& frame, std::span<const Layer> layers,
                RoundEnd roundEnd) {
  painter.save();
  for (const Layer& layer : layers) {
    drawLayer(painter, frame, layer, roundEnd);
  }
  painter.restore();
}

void drawRoundType(QPainter& painter, const QRectF& frame, bool highlighted, RoundEnd roundEnd) {
  if (highlighted) {
    drawLayers(painter, frame, kRoundHighlighted, roundEnd);
  } else {
    drawLayers(painter, frame, kRoundNormal, roundEnd);
  }
}

}  // namespace

void drawBezelWithFrame(QPainter& painter, const QRectF& frame, bool highlighted) {
  if (highlighted) {
    drawLayers(painter, frame, kPlainHighlighted, RoundEnd::none);
  } else {
    drawLayers(painter, frame, kPlainNormal, RoundEnd::none);
  }
}

void drawLeftTypeButtonWithFrame(QPainter& painter, const QRectF& frame, bool highlighted) {
  drawRoundType(painter, frame, highlighted, RoundEnd::left);
}

void drawRightTypeButtonWithFrame(QPainter& painter, const QRectF& frame, bool highlighted) {
  drawRoundType(painter, frame, highlighted, RoundEnd::right);
}
