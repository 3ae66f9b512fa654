#pragma once

#include <QFocusEvent>
#include <QPainter>
#include <QRectF>

namespace platform {

/// The ring around the view with keyboard focus. It is shown only if a key moved the focus, not a
/// click or the activation of a window that focuses its first view. If the program takes the focus
/// away and later returns it, the ring is shown again.
///
/// Threads: main. Real-time: not safe.
class FocusRing {
 public:
  /// Handles a focus event of the view; true if the view needs a redraw.
  [[nodiscard]] bool handle(const QFocusEvent& event);

  [[nodiscard]] bool isShown() const { return isShown_; }

  /// What the ring is drawn on; its contrast with it is at least 3:1.
  enum class Ground {
    dark,   ///< the waveform, the displays' well
    light,  ///< the transport bar and its buttons
  };

  /// Draws the ring, if it is shown, 2 points wide along the inside of `bounds` with corners of
  /// `radius`. Any coordinate system; antialiasing is switched on.
  void draw(QPainter& painter, const QRectF& bounds, double radius, Ground ground) const;

 private:
  bool isShown_ = false;
  bool wasShown_ = false;  // when the program took the focus away
};

}  // namespace platform
