#pragma once

#include <string>
#include <vector>

#include "support/TemporaryFolder.h"

namespace support {

/// A folder that, from stall() on, answers no call of one program any more, as if it was on a disk
/// on a network that is gone, and takes no data. A library that is preloaded into the program makes
/// it so; other processes see the folder as before.
///
/// Threads: any.
class StalledFolder {
 public:
  explicit StalledFolder(std::string folder) : folder_(std::move(folder)) {}

  /// Program and arguments to put before a command.
  [[nodiscard]] std::vector<std::string> wrapper() const;

  void stall() const;
  /// Lets the waiting calls go on.
  void release() const;

 private:
  const std::string folder_;
  TemporaryFolder marks_;
};

}  // namespace support
