#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "platform/base/Installed.h"

namespace platform {

/// The documents that were opened lately, in the desktop's own list. With none installed, the list
/// is empty, and what is noted is only written to standard error.
///
/// Threads: any, one at a time. Real-time: not safe.
class RecentDocuments {
 public:
  virtual ~RecentDocuments() = default;
  static std::shared_ptr<RecentDocuments> whenNoneIsInstalled();

  /// Says that the file at `path` was opened or saved just now. A relative path counts from the
  /// working folder. Failures are told to the diagnostics console and to nobody else.
  virtual void noteNewRecentDocument(const std::string& path) = 0;

  /// Paths of audio files that Orvo has noted, the latest first, at most `most`, only those that
  /// still exist. Empty when there is no list, or none that can be read.
  [[nodiscard]] virtual std::vector<std::string> recentDocuments(std::size_t most) const = 0;
};

inline std::shared_ptr<RecentDocuments> recentDocuments() {
  return Installed<RecentDocuments>::get();
}

}  // namespace platform
