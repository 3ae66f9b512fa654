#pragma once

#include <QImage>
#include <QSizeF>
#include <QString>

namespace platform {

/// An image of the program's resources, found by its file name: "stop.png" is ":/images/stop.png"
/// at one pixel a point and ":/images/stop@2x.png" at two. A name that is not there gives a null
/// image of no size.
///
/// Threads: main. Real-time: not safe.
class NamedImage {
 public:
  NamedImage() = default;
  explicit NamedImage(const QString& name);

  /// The same of pictures at hand; `doubled`, twice as wide and high, may be null.
  explicit NamedImage(const QImage& single, const QImage& doubled = QImage());

  [[nodiscard]] bool isNull() const;

  /// Width and height in points.
  [[nodiscard]] QSizeF size() const;

  /// The version to draw where a point has `ratio` device pixels: the double-size one for every
  /// ratio above 1 if there is one. Its device pixel ratio is set.
  [[nodiscard]] const QImage& forRatio(qreal ratio) const;

 private:
  QImage single_;
  QImage double_;  // null if there is none
};

}  // namespace platform
