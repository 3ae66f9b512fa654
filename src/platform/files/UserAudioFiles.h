#pragma once

#include <memory>
#include <string>

#include "platform/base/Installed.h"
#include "platform/base/Result.h"
#include "platform/files/File.h"

namespace platform {

/// Opens the files that a person reads sound from and writes sound to, with none installed the
/// operating system's. A test installs one whose files fail, fill up, hang or keep no zeros.
///
/// Only regular files are opened: a pipe or a device could hold its reader for ever. The errno that
/// stands for anything else is EISDIR for a folder and ESPIPE for the rest.
///
/// Threads: any. Real-time: not safe.
class UserAudioFiles {
 public:
  virtual ~UserAudioFiles() = default;
  static std::shared_ptr<UserAudioFiles> whenNoneIsInstalled();

  using Opened = Result<std::unique_ptr<File>>;

  [[nodiscard]] virtual Opened openForReading(const std::string& path) = 0;

  /// Makes the file, or empties the one that is there, which keeps its permissions.
  [[nodiscard]] virtual Opened createForWriting(const std::string& path) = 0;
};

inline std::shared_ptr<UserAudioFiles> userAudioFiles() {
  return Installed<UserAudioFiles>::get();
}

}  // namespace platform
