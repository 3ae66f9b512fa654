#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "platform/base/SerialQueue.h"

/// The recently opened files as the menu shows them: a copy of Orvo's entries in the desktop's
/// list. That list is read and written on a queue of its own, so that no window waits for a disk.
///
/// Threads: main. Real-time: not safe.
class OVRecentFiles {
 public:
  static constexpr std::size_t kShown = 10;

  /// Adds a file to the list as the latest.
  void note(const std::string& path);

  /// Reads the list again in the background; latest() changes afterwards.
  void refresh();

  /// The latest first, at most kShown. Empty until the list has been read.
  [[nodiscard]] const std::vector<std::string>& latest() const { return *latest_; }

 private:
  std::shared_ptr<std::vector<std::string>> latest_ = std::make_shared<std::vector<std::string>>();
  platform::SerialQueue queue_{"recent files"};
};
