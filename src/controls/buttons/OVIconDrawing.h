#pragma once

#include <QImage>
#include <QPointF>
#include <QSizeF>

namespace platform {
class NamedImage;
}
class QPainter;

/// How an icon is composited with the picture below it.
enum class OVIconBlend {
  sourceAtop,  ///< over it, only where it is not transparent
  plusDarker,  ///< the sum of both darknesses: 1 - min(1, (1 - below) + (1 - icon))
};

/// The bottom left corner of an icon in a view of size `bounds`, y upward: centred, a half pixel
/// being rounded to the right and downward.
[[nodiscard]] QPointF centredIconOrigin(const QSizeF& bounds, const QSizeF& icon);

/// Draws `image` centred in a view of size `bounds` with `opacity` 0 to 1; a null image draws
/// nothing. The painter has the widget's own coordinates, y downward. plusDarker ignores the
/// opacity and needs an opaque background, as every window has.
///
/// Threads: main. Real-time: not safe.
void drawCentredIcon(QPainter& painter, const QSizeF& bounds, const platform::NamedImage& image,
                     OVIconBlend blend, qreal opacity);
