#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "platform/base/Result.h"

namespace platform {

/// A file that is written beside the one it will replace and takes its place in one step: whoever
/// looks at the target sees the old file whole or the new file whole, also after the program was
/// killed or the power went.
///
/// A symbolic link at the target stays one: the file that it points to is replaced. The new file
/// gets the permissions, and where the system allows it the owner, of the old one.
///
/// Threads: one at a time. Real-time: not safe.
class ReplacementFile {
 public:
  /// Makes an empty file beside `target`. Fails without a trace: EISDIR for a folder, EINVAL for
  /// what is neither a file nor missing (a device, a pipe), EACCES for a file that may not be
  /// written, and with the system's own errors.
  [[nodiscard]] static Result<std::unique_ptr<ReplacementFile>> beside(const std::string& target);

  /// Deletes the new file unless it has taken its place.
  ~ReplacementFile();
  ReplacementFile(const ReplacementFile&) = delete;
  ReplacementFile& operator=(const ReplacementFile&) = delete;

  /// Path of the new file. What is written there must be closed before commit().
  [[nodiscard]] const std::string& path() const { return path_; }

  /// Replaces what the new file holds. 0, or the errno of the failure.
  [[nodiscard]] int write(const void* data, std::uint64_t byteCount);

  /// Brings the new file to the disk and puts it in the target's place. 0, or the errno of the
  /// failure: then the target is as it was.
  [[nodiscard]] int commit();

 private:
  ReplacementFile(std::string target, std::string path);

  const std::string target_;  // the file itself, links followed
  const std::string path_;
  bool committed_ = false;
};

}  // namespace platform
