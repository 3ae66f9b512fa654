#pragma once

#include <memory>
#include <string>

#include "platform/base/Installed.h"
#include "platform/base/Result.h"
#include "platform/files/File.h"

namespace platform {

/// Opens the user's sound files; by default, those of the operating system. Tests install one whose
/// files fail, fill up, hang or lose their zeros.
///
/// Opens regular files only, since a pipe or a device could block its reader forever. Fails with
/// EISDIR for a folder and ESPIPE for anything else.
///
/// Every function is pure, so that the module that reads and writes through it needs no symbol of
/// the program.
///
/// Threads: any. Real-time: not safe.
class UserAudioFiles {
 public:
  virtual ~UserAudioFiles() = default;
  static std::shared_ptr<UserAudioFiles> whenNoneIsInstalled();

  using Opened = Result<std::unique_ptr<File>>;

  [[nodiscard]] virtual Opened openForReading(const std::string& path) = 0;

  /// Creates the file, or truncates an existing one, which keeps its permissions.
  [[nodiscard]] virtual Opened createForWriting(const std::string& path) = 0;

  /// A file over an open descriptor, which stays the caller's: that of a new, empty file.
  [[nodiscard]] virtual Opened writeTo(int descriptor) = 0;
};

inline std::shared_ptr<UserAudioFiles> userAudioFiles() {
  return Installed<UserAudioFiles>::get();
}

}  // namespace platform
