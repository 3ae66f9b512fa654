#pragma once

#include <future>

namespace platform {

/// Has the system's fonts looked up on a thread of its own, beside the rest of the start-up: the
/// longest single step before a window with text in it can be shown. Only where fontconfig is what
/// the toolkit asks for fonts; elsewhere it does nothing.
///
/// Threads: main. Real-time: not safe.
class FontPreparation {
 public:
  /// Begins. Nothing else may ask for a font until finish() has returned: two that find the fonts
  /// not looked up yet both do it.
  FontPreparation();

  /// Waits for the end.
  void finish();

 private:
  std::future<void> prepared_;
};

}  // namespace platform
