#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <vector>

#include <QColor>
#include <QImage>
#include <QPainter>
#include <QPointF>
#include <QRectF>
#include <QSize>
#include <QTransform>

namespace platform {

/// Strokes polylines of thousands of points, such as a waveform's zig-zag, as one shape: flat caps,
/// mitre joins (limit 10, bevelled beyond), antialiased, overlaps blended once.
///
/// Qt is either slow (one path of two thousand points takes seconds, since its rasteriser compares
/// all edges of a row with each other) or uneven (separate lines blend their soft edges twice, so
/// seams show and thin slanted lines are too faint). Here every piece of the stroke, a segment or a
/// join, is a convex polygon. The picture is divided into columns finer than a pixel; in each
/// column the pieces are a few intervals, whose union adds to the pixels' coverage. The work is
/// linear in the length of the stroke, not quadratic.
///
/// Keeps only memory for reuse between strokes. The same line stroked again at the same place is
/// only blended again.
///
/// Threads: one at a time, the main one in a view. Real-time: not safe.
class PolylineStroke {
 public:
  /// Strokes the line through `points` with a pen of `width`, both in the painter's coordinates,
  /// which may be translated, mirrored and uniformly scaled. Parts outside `area` need not be
  /// drawn. Points that are not finite are skipped.
  void draw(QPainter& painter, const QRectF& area, std::span<const QPointF> points,
            const QColor& color, double width);

 private:
  static constexpr std::size_t kCorners = 4;

  /// A convex polygon of three or four corners, device pixels, y downward. A triangle repeats its
  /// last corner. The first corner's x is repeated after the last.
  struct Piece {
    float left = 0.0F;
    float right = 0.0F;
    std::array<float, kCorners + 1> x{};
    std::array<float, kCorners> y{};
    std::array<float, kCorners> slope{};  // of the edge from each corner to the next
  };
  struct Interval {
    float top = 0.0F;
    float bottom = 0.0F;
  };

  /// Everything besides the points that determines the layer's pixels.
  struct Setting {
    QSize size;
    QTransform toLayer;
    QColor color;
    double width = 0.0;

    bool operator==(const Setting&) const = default;
  };

  [[nodiscard]] bool isInLayer(const Setting& setting, std::span<const QPointF> points) const;
  void fillLayer(const Setting& setting, std::span<const QPointF> points);
  void clearLayer(QSize size);
  void collectPieces(std::span<const QPointF> points, const QTransform& toLayer, double halfWidth);
  void addJoin(QPointF at, QPointF normalBefore, QPointF normalAfter, double halfWidth);
  void addPiece(std::initializer_list<QPointF> corners);
  void fillColumns(const QColor& color, int columnsPerPixel);
  void collectIntervals(float x, float height);
  void countIntervals(float weight);
  [[nodiscard]] static Interval slice(const Piece& piece, float x);

  std::vector<Piece> pieces_;         // sorted by left end
  std::vector<const Piece*> active_;  // those that may intersect the current column
  std::size_t nextPiece_ = 0;         // the first one to the right of it
  std::vector<Interval> intervals_;   // of the current column, sorted by top; the rest is spare
  std::size_t intervalCount_ = 0;     // number in use
  std::vector<float> change_;         // in the pixel column's coverage, from row to row
  Interval touched_;                  // rows of the current pixel column whose coverage is not 0

  QImage layer_;
  int firstRow_ = 0;  // of the layer's rows that are not empty
  int endRow_ = 0;    // one past the last of them
  Setting layerSetting_;
  std::vector<QPointF> layerPoints_;  // the line that the layer shows
};

}  // namespace platform
