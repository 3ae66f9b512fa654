#pragma once

#include <QRectF>
#include <QTransform>

class QWidget;

/// Where a button's bezel is drawn. The transform is relative to the window's content view, y
/// upward: it moves by (frame origin x, frame origin y + height) of the button in its superview and
/// flips y downward. The rectangle is the button's bounds moved by the superview's frame origin, x
/// added and y subtracted. Together they cover the button exactly if its superview is a direct
/// child of the content view.
///
/// Threads: main. Real-time: not safe.
struct OVBezelFrameOfReference {
  QTransform toWidget;  ///< from the bezel's coordinates to the button's own, y downward
  QRectF bezel;         ///< in the bezel's coordinates

  explicit OVBezelFrameOfReference(const QWidget& button);
};
