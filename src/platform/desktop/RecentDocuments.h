#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "platform/base/Installed.h"

namespace platform {

/// Recently opened documents, in the desktop's list. With none installed, the list is empty, and a
/// noted document is only written to standard error.
///
/// Threads: any, one at a time. Real-time: not safe.
class RecentDocuments {
 public:
  virtual ~RecentDocuments() = default;
  static std::shared_ptr<RecentDocuments> whenNoneIsInstalled();

  /// Records that the file at `path` was just opened or saved. A relative path is relative to the
  /// working directory. Failures are only logged to the diagnostics console.
  virtual void noteNewRecentDocument(const std::string& path) = 0;

  /// Paths of audio files that Orvo has noted and that still exist, latest first, at most `most`.
  /// Empty if the list cannot be read.
  [[nodiscard]] virtual std::vector<std::string> recentDocuments(std::size_t most) const = 0;
};

inline std::shared_ptr<RecentDocuments> recentDocuments() {
  return Installed<RecentDocuments>::get();
}

}  // namespace platform
