#pragma once

#include <cstdint>

class OVRecorderWindow;

/// Receives the events of a recorder window. The window refers to it weakly.
///
/// Threads: main. Real-time: not safe.
class OVRecorderWindowDelegate {
 public:
  virtual ~OVRecorderWindowDelegate() = default;

  /// A key went down in the window, including auto-repeats. `keyCode` is a hardware code of
  /// platform/views/KeyCodes.h, kKeyCodeUnmapped for keys without one.
  virtual void windowDidReceiveKeyDown(OVRecorderWindow* window, std::uint16_t keyCode) = 0;

  /// The key came up again: once for each physical release.
  virtual void windowDidReceiveKeyUp(OVRecorderWindow* window, std::uint16_t keyCode) = 0;

  /// A transport key went down but no key-up will follow: the window lost the keyboard, or the key
  /// was pressed again as part of a command. Undo what its key-down showed, without running the
  /// command of its key-up. Once for each such key.
  virtual void windowDidCancelKey(OVRecorderWindow* window, std::uint16_t keyCode) = 0;

  /// Asked each time the window is about to close; false keeps it open.
  [[nodiscard]] virtual bool windowShouldClose(OVRecorderWindow* window) = 0;

  /// Called exactly once, before the window closes. The delegate may be destroyed during the call;
  /// it must not delete the window, which deletes itself afterwards.
  virtual void windowWillClose(OVRecorderWindow* window) = 0;
};
