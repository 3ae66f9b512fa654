#pragma once

#include <QFocusEvent>
#include <QPainter>
#include <QRectF>

namespace platform {

/// The ring around the view that has the keyboard. It shows only where the keyboard itself brought
/// the focus there: a click, or a window that comes to the front and gives the keyboard to its
/// first view, shows none. A view from which the program takes the keyboard shows its ring again
/// when the program gives it back.
///
/// Threads: main. Real-time: not safe.
class FocusRing {
 public:
  /// Takes a focus event of the view; true if the view is to be redrawn.
  [[nodiscard]] bool handle(const QFocusEvent& event);

  [[nodiscard]] bool isShown() const { return isShown_; }

  /// Draws the ring, if it is shown, 2 points wide along the inside of `bounds` with corners of
  /// `radius`. Any coordinates will do; antialiasing is switched on for it.
  void draw(QPainter& painter, const QRectF& bounds, double radius) const;

 private:
  bool isShown_ = false;
  bool wasShown_ = false;  // when the program took the keyboard away
};

}  // namespace platform
