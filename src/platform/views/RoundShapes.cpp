#include "platform/views/RoundShapes.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include <QPolygonF>

namespace platform {
namespace {

// How far a side may run inside the curve, points.
constexpr double kDeviation = 0.002;
constexpr double kQuarter = std::numbers::pi / 2.0;
constexpr double kFull = 2.0 * std::numbers::pi;

// Points of an arc, angles in radians, growing from the right to the bottom if y grows downward.
void addArc(QPolygonF& polygon, QPointF center, double radius, double from, double to) {
  const double step = std::sqrt(8.0 * kDeviation / std::max(radius, kDeviation));
  const int steps = std::max(1, static_cast<int>(std::ceil(std::abs(to - from) / step)));
  // Turned step by step: some views draw these shapes 30 times a second.
  const double turn = (to - from) / steps;
  const double cosine = std::cos(turn);
  const double sine = std::sin(turn);
  QPointF arm = radius * QPointF(std::cos(from), std::sin(from));
  polygon.reserve(polygon.size() + steps + 1);
  for (int i = 0; i <= steps; ++i) {
    polygon << center + arm;
    arm = {arm.x() * cosine - arm.y() * sine, arm.x() * sine + arm.y() * cosine};
  }
}

QPainterPath pathOf(const QPolygonF& polygon) {
  QPainterPath path;
  path.addPolygon(polygon);
  path.closeSubpath();
  path.setFillRule(Qt::WindingFill);
  return path;
}

// Runs round the inner path the other way: where both lines cross one pixel, what they cover is
// then subtracted, and not folded as by the odd-even rule.
QPainterPath between(QPainterPath outer, const QPainterPath& inner) {
  outer.addPath(inner.toReversed());
  outer.setFillRule(Qt::WindingFill);
  return outer;
}

}  // namespace

QPainterPath discPath(QPointF center, double radius) {
  if (!(radius > 0.0)) {
    return {};
  }
  QPolygonF circle;
  addArc(circle, center, radius, 0.0, kFull);
  return pathOf(circle);
}

QPainterPath ringPath(QPointF center, double radius, double width) {
  return between(discPath(center, radius + width / 2.0), discPath(center, radius - width / 2.0));
}

QPainterPath roundedPath(const QRectF& rect, EndRadii radii) {
  if (rect.isEmpty()) {
    return {};
  }
  const auto fitting = [&rect](double radius) {
    return std::clamp(radius, 0.0, std::min(rect.height() / 2.0, rect.width()));
  };
  const double left = fitting(radii.left);
  const double right = std::min(fitting(radii.right), rect.width() - left);
  QPolygonF outline;
  addArc(outline, {rect.left() + left, rect.top() + left}, left, 2.0 * kQuarter, 3.0 * kQuarter);
  addArc(outline, {rect.right() - right, rect.top() + right}, right, 3.0 * kQuarter, kFull);
  addArc(outline, {rect.right() - right, rect.bottom() - right}, right, 0.0, kQuarter);
  addArc(outline, {rect.left() + left, rect.bottom() - left}, left, kQuarter, 2.0 * kQuarter);
  return pathOf(outline);
}

QPainterPath roundedPath(const QRectF& rect, double radius) {
  const double fitting = std::min(radius, rect.width() / 2.0);
  return roundedPath(rect, EndRadii{fitting, fitting});
}

QPainterPath roundedRingPath(const QRectF& rect, EndRadii radii, double width) {
  const double half = width / 2.0;
  return between(
      roundedPath(rect.adjusted(-half, -half, half, half), {radii.left + half, radii.right + half}),
      roundedPath(rect.adjusted(half, half, -half, -half),
                  {radii.left - half, radii.right - half}));
}

QPainterPath roundedRingPath(const QRectF& rect, double radius, double width) {
  const double fitting = std::min({radius, rect.width() / 2.0, rect.height() / 2.0});
  return roundedRingPath(rect, EndRadii{fitting, fitting}, width);
}

}  // namespace platform
