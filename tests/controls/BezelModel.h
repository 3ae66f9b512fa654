#pragma once

#include <algorithm>
#include <cmath>
#include <optional>
#include <vector>

#include <QRectF>

namespace bezelmodel {

struct Grey {
  double white;
  double alpha;
};
struct Premultiplied {
  double light;
  double alpha;
};
struct Layer {
  double insetX;
  double insetY;
  double radius;
  Grey from;
  std::optional<Grey> to = std::nullopt;        ///< none: one colour
  std::optional<double> height = std::nullopt;  ///< none: the height within the insets
  bool isStroke = false;
};

}  // namespace bezelmodel

/// The plain bezel computed pixel by pixel from the numbers of its layers, without Qt: shapes are
/// sampled, colours composed in floating point.
class BezelModel {
 public:
  /// `paper` is the grey below, 0 to 1; `ratio` the device pixels per point.
  BezelModel(const QRectF& frame, bool highlighted, double paper, int ratio)
      : frame_(frame), highlighted_(highlighted), paper_(paper), ratio_(ratio) {}

  /// Whether the edge of a round corner crosses a device pixel, where rasterisers differ.
  [[nodiscard]] bool isOnACorner(int x, int y) const {
    const double corner = 5.0;  // points from the frame's corners
    const double px = (x + 0.5) / ratio_;
    const double py = (y + 0.5) / ratio_;
    const bool near = (px < frame_.left() + corner || px > frame_.right() - corner) &&
                      (py < frame_.top() + 2.0 * corner || py > frame_.bottom() - 2.0 * corner);
    const auto& layers = highlighted_ ? kHighlighted : kNormal;
    return near && std::any_of(layers.begin(), layers.end(), [&](const Layer& layer) {
             const double coverage = coverageOf(layer, x, y);
             return coverage > 0.0 && coverage < 1.0;
           });
  }

  /// The grey of a device pixel, 0 to 255.
  [[nodiscard]] double greyAt(int x, int y) const {
    double shade = paper_;
    for (const Layer& layer : highlighted_ ? kHighlighted : kNormal) {
      const double coverage = coverageOf(layer, x, y);
      if (coverage > 0.0) {
        const Premultiplied color = colorOf(layer, (y + 0.5) / ratio_);
        shade = shade * (1.0 - color.alpha * coverage) + color.light * coverage;
      }
    }
    return shade * 255.0;
  }

 private:
  using Grey = bezelmodel::Grey;
  using Premultiplied = bezelmodel::Premultiplied;
  using Layer = bezelmodel::Layer;

  static inline const std::vector<Layer> kNormal{
      {2.0, 2.5, 3.9, {0.9, 1.0}},
      {2.0, 2.0, 2.4, {0.96, 1.0}, Grey{1.0, 0.0}},
      {2.0, 2.0, 2.4, {0.65, 0.0}, Grey{0.65, 1.0}},
      {2.0, 2.0, 2.4, {0.45, 0.0}, Grey{0.45, 1.0}, 5.0},
      {2.0, 0.0, 0.0, {0.45, 1.0}, std::nullopt, 1.0},
      {2.0, 2.5, 3.9, {0.80, 0.75}, Grey{0.89, 0.75}},
      {1.5, 1.5, 2.4, {0.45, 1.0}, std::nullopt, std::nullopt, true},
      {2.0, 2.0, 2.4, {1.0, 0.7}, Grey{1.0, 0.28}},
  };
  static inline const std::vector<Layer> kHighlighted{
      {2.0, 2.5, 3.9, {0.9, 1.0}},
      {2.0, 2.0, 2.4, {0.55, 0.8}, Grey{0.55, 0.0}},
      {2.0, 2.0, 2.4, {0.55, 0.0}, Grey{0.55, 0.5}},
      {2.0, 2.0, 2.4, {0.45, 1.0}, Grey{0.45, 0.0}, 5.0},
      {1.5, 1.5, 2.4, {0.45, 1.0}, std::nullopt, std::nullopt, true},
      {2.0, 2.0, 2.4, {1.0, 0.5}, Grey{1.0, 0.08}},
  };

  [[nodiscard]] QRectF rectOf(const Layer& layer) const {
    QRectF rect = frame_.adjusted(layer.insetX, layer.insetY, -layer.insetX, -layer.insetY);
    if (layer.height) {
      rect.setHeight(*layer.height);
    }
    return rect;
  }

  static bool isInside(const QRectF& rect, double radius, double x, double y) {
    if (x < rect.left() || x > rect.right() || y < rect.top() || y > rect.bottom()) {
      return false;
    }
    const double dx = std::max({rect.left() + radius - x, x - (rect.right() - radius), 0.0});
    const double dy = std::max({rect.top() + radius - y, y - (rect.bottom() - radius), 0.0});
    return dx * dx + dy * dy <= radius * radius || dx == 0.0 || dy == 0.0;
  }

  static bool covers(const Layer& layer, const QRectF& rect, double x, double y) {
    if (!layer.isStroke) {
      return isInside(rect, layer.radius, x, y);
    }
    constexpr double kHalf = 0.5;  // of the line's width of one point
    return isInside(rect.adjusted(-kHalf, -kHalf, kHalf, kHalf), layer.radius + kHalf, x, y) &&
           !isInside(rect.adjusted(kHalf, kHalf, -kHalf, -kHalf), layer.radius - kHalf, x, y);
  }

  /// The fraction of a pixel that the layer covers.
  [[nodiscard]] double coverageOf(const Layer& layer, int x, int y) const {
    constexpr int kSamples = 16;  // each way
    const QRectF rect = rectOf(layer);
    int inside = 0;
    for (int i = 0; i < kSamples; ++i) {
      for (int j = 0; j < kSamples; ++j) {
        const double pointX = (x + (i + 0.5) / kSamples) / ratio_;
        const double pointY = (y + (j + 0.5) / kSamples) / ratio_;
        inside += covers(layer, rect, pointX, pointY) ? 1 : 0;
      }
    }
    return inside / static_cast<double>(kSamples * kSamples);
  }

  [[nodiscard]] Premultiplied colorOf(const Layer& layer, double y) const {
    const Grey to = layer.to.value_or(layer.from);
    const QRectF rect = rectOf(layer);
    const double t = std::clamp((y - rect.top()) / rect.height(), 0.0, 1.0);
    const auto between = [t](double a, double b) { return a + (b - a) * t; };
    return {between(layer.from.white * layer.from.alpha, to.white * to.alpha),
            between(layer.from.alpha, to.alpha)};
  }

  QRectF frame_;
  bool highlighted_;
  double paper_;
  int ratio_;
};
