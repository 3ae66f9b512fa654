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
/// The toolkit does it either slowly (one path of two thousand points takes seconds, since its
/// rasteriser compares all edges of a row with each other) or unevenly (single lines blend their
/// soft edges twice, so that seams show and thin slanted lines come out too faint). Here every
/// piece of the stroke, a segment or a join, is a convex polygon; the picture is cut into columns
/// finer than a pixel, and in each column the pieces are a few intervals, whose union is counted
/// into the pixels. The work grows with the length of the stroke, not with its square.
///
/// Holds nothing but memory, reused from one stroke to the next. The same line stroked again at the
/// same place is only blended again.
///
/// Threads: one at a time, the main one in a view. Real-time: not safe.
class PolylineStroke {
 public:
  /// Strokes the line through `points` with a pen of `width`, both in the painter's coordinates,
  /// which may be moved, mirrored and scaled alike in both directions. What lies outside `area`
  /// need not be drawn. Points that are not finite are left out.
  void draw(QPainter& painter, const QRectF& area, std::span<const QPointF> points,
            const QColor& color, double width);

 private:
  static constexpr std::size_t kCorners = 4;

  /// A convex polygon of three or four corners, device pixels, y downward. A triangle has its last
  /// corner twice. Behind the last corner's x stands the first one's again.
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

  /// All that decides about the pixels of the layer, beside the points.
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

  std::vector<Piece> pieces_;         // in the order of their left ends
  std::vector<const Piece*> active_;  // those that the current column may cut
  std::size_t nextPiece_ = 0;         // the first that begins right of it
  std::vector<Interval> intervals_;   // of the current column, in the order of their tops, and room
  std::size_t intervalCount_ = 0;     // how many of them are in use
  std::vector<float> change_;  // of the current pixel column's coverage, from each row to the next
  Interval touched_;           // rows of the current pixel column whose coverage is not 0

  QImage layer_;
  int firstRow_ = 0;  // of the layer's rows that are not empty
  int endRow_ = 0;    // behind the last of them
  Setting layerSetting_;
  std::vector<QPointF> layerPoints_;  // the line that the layer shows
};

}  // namespace platform
