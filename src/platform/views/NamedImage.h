#pragma once

#include <utility>

#include <QImage>
#include <QSizeF>
#include <QString>

namespace platform {

/// An image of the program's resources, found by its file name: "stop.png" is ":/images/stop.png"
/// at one pixel a point and ":/images/stop@2x.png" at two. An unknown name gives a null image of
/// size 0. Each version is decoded on first use, since a window is shown before it is painted.
///
/// Threads: main. Real-time: not safe.
class NamedImage {
 public:
  NamedImage() = default;
  explicit NamedImage(const QString& name);

  /// The same from existing pictures; `doubled`, twice as wide and high, may be null.
  explicit NamedImage(const QImage& single, const QImage& doubled = QImage());

  [[nodiscard]] bool isNull() const;

  /// Width and height in points.
  [[nodiscard]] QSizeF size() const;

  /// The version for `ratio` device pixels per point: the double-size one, if any, for every ratio
  /// above 1. Its device pixel ratio is set.
  [[nodiscard]] const QImage& forRatio(qreal ratio) const;

 private:
  /// A picture, or the path to load it from.
  class Version {
   public:
    Version() = default;
    Version(QString path, double ratio) : path_(std::move(path)), ratio_(ratio) {}
    Version(const QImage& image, double ratio);

    [[nodiscard]] const QImage& image() const;

   private:
    mutable QString path_;  // empty once it has been read
    mutable QImage image_;  // null if there is none
    double ratio_ = 1.0;
  };

  Version single_;
  Version double_;
};

}  // namespace platform
