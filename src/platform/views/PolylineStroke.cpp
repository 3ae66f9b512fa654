#include "platform/views/PolylineStroke.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "platform/views/ViewDrawing.h"

namespace platform {

namespace {

constexpr double kMiterLimit = 10.0;       // of a join's length, in widths of the pen
constexpr double kColumnsPerUnit = 16.0;   // at a scale of 1; half as many at 2 look the same
constexpr double kShortestSegment = 1e-6;  // pixels; shorter ones have no direction

int columnsPerPixel(double scale) {
  return std::clamp(static_cast<int>(kColumnsPerUnit / scale), 4, 16);
}

/// Rounds to the nearest; values are never below 0 by more than a rounding error.
int rounded(float value) {
  constexpr float kHalf = 0.5F;
  return static_cast<int>(value + kHalf);
}

/// Premultiplied colours for all coverages of a pixel.
std::array<QRgb, 256> coverageColors(const QColor& color) {
  std::array<QRgb, 256> colors{};
  const QRgb rgb = color.rgb();
  for (int coverage = 0; coverage < 256; ++coverage) {
    const int alpha = static_cast<int>(std::lround(coverage * static_cast<double>(color.alphaF())));
    colors[static_cast<std::size_t>(coverage)] =
        qPremultiply(qRgba(qRed(rgb), qGreen(rgb), qBlue(rgb), alpha));
  }
  return colors;
}

}  // namespace

void PolylineStroke::draw(QPainter& painter, const QRectF& area, std::span<const QPointF> points,
                          const QColor& color, double width) {
  const QTransform toDevice = painter.deviceTransform();
  const QRect pixels = toDevice.mapRect(area).toAlignedRect();
  if (pixels.isEmpty()) {
    return;
  }
  const Setting setting{
      pixels.size(), toDevice * QTransform::fromTranslate(-pixels.x(), -pixels.y()), color, width};
  if (!isInLayer(setting, points)) {
    fillLayer(setting, points);
  }
  if (firstRow_ >= endRow_) {
    return;
  }
  const QRect filled(0, firstRow_, pixels.width(), endRow_ - firstRow_);
  drawPixels(painter, pixels.topLeft() + filled.topLeft(), layer_, filled);
}

bool PolylineStroke::isInLayer(const Setting& setting, std::span<const QPointF> points) const {
  // Bitwise, since QPointF's own comparison is fuzzy.
  return !layer_.isNull() && setting == layerSetting_ && points.size() == layerPoints_.size() &&
         (points.empty() ||
          std::memcmp(points.data(), layerPoints_.data(), points.size_bytes()) == 0);
}

void PolylineStroke::fillLayer(const Setting& setting, std::span<const QPointF> points) {
  layerSetting_ = setting;
  layerPoints_.assign(points.begin(), points.end());
  clearLayer(setting.size);
  const double scale = std::sqrt(std::abs(setting.toLayer.determinant()));
  collectPieces(points, setting.toLayer, setting.width * scale / 2.0);
  fillColumns(setting.color, columnsPerPixel(scale));
}

void PolylineStroke::clearLayer(QSize size) {
  if (layer_.size() != size) {
    layer_ = QImage(size, QImage::Format_ARGB32_Premultiplied);
    layer_.fill(Qt::transparent);
  } else if (firstRow_ < endRow_) {
    std::memset(layer_.scanLine(firstRow_), 0,
                static_cast<std::size_t>((endRow_ - firstRow_) * layer_.bytesPerLine()));
  }
  firstRow_ = size.height();
  endRow_ = 0;
}

void PolylineStroke::collectPieces(std::span<const QPointF> points, const QTransform& toLayer,
                                   double halfWidth) {
  pieces_.clear();
  QPointF last;
  QPointF lastNormal;
  bool hasLast = false;
  bool hasNormal = false;
  for (const QPointF& point : points) {
    const QPointF current = toLayer.map(point);
    if (!std::isfinite(current.x()) || !std::isfinite(current.y())) {
      continue;
    }
    if (hasLast) {
      const QPointF along = current - last;
      const double length = std::hypot(along.x(), along.y());
      if (length < kShortestSegment) {
        continue;
      }
      const QPointF normal = QPointF(-along.y(), along.x()) * (halfWidth / length);
      if (hasNormal) {
        addJoin(last, lastNormal, normal, halfWidth);
      }
      addPiece({last + normal, current + normal, current - normal, last - normal});
      lastNormal = normal;
      hasNormal = true;
    }
    last = current;
    hasLast = true;
  }
  std::sort(pieces_.begin(), pieces_.end(),
            [](const Piece& a, const Piece& b) { return a.left < b.left; });
}

void PolylineStroke::addJoin(QPointF at, QPointF normalBefore, QPointF normalAfter,
                             double halfWidth) {
  const double turn = normalBefore.x() * normalAfter.y() - normalBefore.y() * normalAfter.x();
  if (turn == 0.0) {
    return;
  }
  const double outward = turn > 0.0 ? -1.0 : 1.0;
  const QPointF before = at + normalBefore * outward;
  const QPointF after = at + normalAfter * outward;
  const double cosine = QPointF::dotProduct(normalBefore, normalAfter) / (halfWidth * halfWidth);
  // A join is 1 / cos(turn / 2) widths long from its inner to its outer corner.
  const double squaredHalfCosine = (1.0 + cosine) / 2.0;
  if (squaredHalfCosine * kMiterLimit * kMiterLimit >= 1.0) {
    const QPointF tip = at + (normalBefore + normalAfter) * (outward / (1.0 + cosine));
    addPiece({at, before, tip, after});
  } else {
    addPiece({at, before, after});
  }
}

void PolylineStroke::addPiece(std::initializer_list<QPointF> corners) {
  Piece& piece = pieces_.emplace_back();
  for (std::size_t i = 0; i < kCorners; ++i) {
    const QPointF& corner = corners.begin()[std::min(i, corners.size() - 1)];
    piece.x[i] = static_cast<float>(corner.x());
    piece.y[i] = static_cast<float>(corner.y());
  }
  piece.x[kCorners] = piece.x[0];
  const auto [left, right] = std::minmax_element(piece.x.begin(), piece.x.end());
  piece.left = *left;
  piece.right = *right;
  for (std::size_t i = 0; i < kCorners; ++i) {
    const float dx = piece.x[i + 1] - piece.x[i];
    piece.slope[i] = dx == 0.0F ? 0.0F : (piece.y[(i + 1) % kCorners] - piece.y[i]) / dx;
  }
}

void PolylineStroke::fillColumns(const QColor& color, int columnsPerPixel) {
  const int height = layer_.height();
  const std::array<QRgb, 256> colors = coverageColors(color);
  const float weight = 1.0F / static_cast<float>(columnsPerPixel);
  change_.assign(static_cast<std::size_t>(height) + 2, 0.0F);
  active_.clear();
  nextPiece_ = 0;
  auto* const pixels = reinterpret_cast<QRgb*>(layer_.bits());
  const qsizetype pixelsPerRow = layer_.bytesPerLine() / static_cast<qsizetype>(sizeof(QRgb));
  for (int x = 0; x < layer_.width(); ++x) {
    touched_ = {static_cast<float>(height), 0.0F};
    for (int column = 0; column < columnsPerPixel; ++column) {
      const float center = (static_cast<float>(column) + 0.5F) * weight;
      collectIntervals(static_cast<float>(x) + center, static_cast<float>(height));
      countIntervals(weight);
    }
    const int first = static_cast<int>(touched_.top);
    const int last = std::min(height - 1, static_cast<int>(touched_.bottom));
    if (first <= last) {
      firstRow_ = std::min(firstRow_, first);
      endRow_ = std::max(endRow_, last + 1);
    }
    float coverage = 0.0F;
    for (int row = first; row <= last; ++row) {
      float& change = change_[static_cast<std::size_t>(row)];
      coverage += change;
      change = 0.0F;
      const int level = std::clamp(rounded(coverage * 255.0F), 0, 255);
      pixels[row * pixelsPerRow + x] = colors[static_cast<std::size_t>(level)];
    }
    change_[static_cast<std::size_t>(last) + 1] = 0.0F;
    change_[static_cast<std::size_t>(last) + 2] = 0.0F;
  }
}

// Branchless: which edges a column cuts changes from piece to piece.
inline PolylineStroke::Interval PolylineStroke::slice(const Piece& piece, float x) {
  std::array<float, kCorners> top{};
  std::array<float, kCorners> bottom{};
  for (std::size_t i = 0; i < kCorners; ++i) {
    const bool cut = (piece.x[i] <= x) != (piece.x[i + 1] <= x);
    const float y = piece.y[i] + (x - piece.x[i]) * piece.slope[i];
    top[i] = cut ? y : HUGE_VALF;
    bottom[i] = cut ? y : -HUGE_VALF;
  }
  return {std::min(std::min(top[0], top[1]), std::min(top[2], top[3])),
          std::max(std::max(bottom[0], bottom[1]), std::max(bottom[2], bottom[3]))};
}

void PolylineStroke::collectIntervals(float x, float height) {
  while (nextPiece_ < pieces_.size() && pieces_[nextPiece_].left <= x) {
    active_.push_back(&pieces_[nextPiece_++]);
  }
  intervals_.resize(std::max(intervals_.size(), active_.size()));
  Interval* const intervals = intervals_.data();
  std::size_t count = 0;
  std::size_t kept = 0;
  for (const Piece* const piece : active_) {
    if (piece->right <= x) {
      continue;
    }
    active_[kept++] = piece;
    const Interval cut = slice(*piece, x);
    const Interval inside{std::max(cut.top, 0.0F), std::min(cut.bottom, height)};
    if (inside.top < inside.bottom) {
      // A column holds a handful of intervals, nearly in order already.
      std::size_t place = count++;
      for (; place > 0 && intervals[place - 1].top > inside.top; --place) {
        intervals[place] = intervals[place - 1];
      }
      intervals[place] = inside;
    }
  }
  active_.resize(kept);
  intervalCount_ = count;
}

void PolylineStroke::countIntervals(float weight) {
  float* const change = change_.data();
  Interval touched = touched_;
  for (std::size_t i = 0; i < intervalCount_;) {
    Interval joined = intervals_[i];
    for (++i; i < intervalCount_ && intervals_[i].top <= joined.bottom; ++i) {
      joined.bottom = std::max(joined.bottom, intervals_[i].bottom);
    }
    touched.top = std::min(touched.top, joined.top);
    touched.bottom = std::max(touched.bottom, joined.bottom);
    // A row cut by an end is covered only partly: the rest of the change applies one row later.
    const auto top = static_cast<std::size_t>(joined.top);
    const auto bottom = static_cast<std::size_t>(joined.bottom);
    const float topPart = joined.top - static_cast<float>(top);
    const float bottomPart = joined.bottom - static_cast<float>(bottom);
    change[top] += weight * (1.0F - topPart);
    change[top + 1] += weight * topPart;
    change[bottom] -= weight * (1.0F - bottomPart);
    change[bottom + 1] -= weight * bottomPart;
  }
  touched_ = touched;
}

}  // namespace platform
