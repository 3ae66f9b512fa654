#pragma once

#include <functional>

#include <QImage>
#include <QPainter>
#include <QRectF>
#include <QSize>
#include <QTransform>

namespace platform {

/// A small picture, such as a circle or a line of text, that is drawn many times a second, at most
/// with another opacity. It is rendered once and then only blended: laying out a text costs more
/// than that, and for a translucent fill Qt wakes its pool of threads several times.
///
/// Threads: one at a time, the main one in a view. Real-time: not safe.
class KeptPicture {
 public:
  /// Draws what `render` paints into `area`, both in the painter's coordinates, at `opacity` from 0
  /// to 1. `render` is called again only if the area, or the place or scale of the painter, is
  /// another, or after forget(). Antialiasing is on.
  void draw(QPainter& painter, const QRectF& area, const std::function<void(QPainter&)>& render,
            double opacity);

  /// The picture would look otherwise now.
  void forget() { picture_ = QImage(); }

 private:
  /// What determines the picture's pixels besides `render`.
  struct Setting {
    QRectF area;
    QTransform toPicture;
    QSize size;

    bool operator==(const Setting&) const = default;
  };

  Setting setting_;
  QImage picture_;  // null if there is none
};

}  // namespace platform
