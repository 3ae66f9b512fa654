#pragma once

#include <future>

namespace platform {

/// Scans the system's fonts on its own thread during start-up: the longest single step before a
/// window with text can be shown. Only where Qt uses fontconfig; elsewhere it does nothing.
///
/// Threads: main. Real-time: not safe.
class FontPreparation {
 public:
  /// Starts the scan. Nothing else may request a font until finish() has returned; otherwise the
  /// scan runs twice.
  FontPreparation();

  /// Waits for the end of the scan.
  void finish();

 private:
  std::future<void> prepared_;
};

}  // namespace platform
