#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "platform/base/Result.h"

namespace platform {

/// A file that is written beside its target and then replaces it atomically: the target is always
/// the whole old file or the whole new one, even after a kill or a power failure.
///
/// If the target is a symbolic link, the file that it points to is replaced. The new file gets the
/// old one's permissions and, where the system allows it, its owner.
///
/// Threads: one at a time. Real-time: not safe.
class ReplacementFile {
 public:
  /// Creates an empty file beside `target`. A failure leaves nothing behind: EISDIR for a folder,
  /// EINVAL for a device or pipe, EACCES for a file that may not be written, or a system error.
  [[nodiscard]] static Result<std::unique_ptr<ReplacementFile>> beside(const std::string& target);

  /// The folder in which beside() creates the file: the target's, links followed where possible.
  /// Creates nothing.
  [[nodiscard]] static std::string folderBeside(const std::string& target);

  /// Deletes the new file unless it was committed.
  ~ReplacementFile();
  ReplacementFile(const ReplacementFile&) = delete;
  ReplacementFile& operator=(const ReplacementFile&) = delete;

  /// Path of the new file. Close anything written there before commit().
  [[nodiscard]] const std::string& path() const { return path_; }

  /// Replaces the new file's content. Returns 0, or the errno of the failure.
  [[nodiscard]] int write(const void* data, std::uint64_t byteCount);

  /// Flushes the new file to disk and replaces the target with it. Returns 0, or the errno of the
  /// failure; the target is then unchanged.
  [[nodiscard]] int commit();

 private:
  ReplacementFile(std::string target, std::string path);

  const std::string target_;  // the file itself, links followed
  const std::string path_;
  bool committed_ = false;
};

}  // namespace platform
