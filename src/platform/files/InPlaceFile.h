#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "platform/base/Result.h"
#include "platform/files/Descriptor.h"
#include "platform/files/File.h"

namespace platform {

/// A file of the user's whose content is replaced in place, because no file can be made in its
/// folder. A failure in the middle leaves neither the old content nor the new one, so a copy of the
/// old file is on disk first.
///
///   at() --keepCopy()--> copied --replaceWith()--> replaced, or failed with the copy left
///
/// Threads: one at a time. Real-time: not safe.
class InPlaceFile {
 public:
  /// Whether a file at `path`, beside which none could be created because of `error` (an errno),
  /// can be written in place.
  [[nodiscard]] static bool isTheOnlyWay(const std::string& path, int error);

  /// Opens a regular file that belongs to the user. Fails with EACCES for another user's, or with a
  /// system error.
  [[nodiscard]] static Result<std::unique_ptr<InPlaceFile>> at(const std::string& path);

  /// Deletes the copy, unless it holds what the file has lost.
  ~InPlaceFile();
  InPlaceFile(const InPlaceFile&) = delete;
  InPlaceFile& operator=(const InPlaceFile&) = delete;

  /// Copies the file into the temporary directory and flushes the copy to disk. Returns 0, or the
  /// errno of the failure.
  [[nodiscard]] int keepCopy();

  /// Replaces the content with that of another file and flushes it to disk. Returns 0, or the errno
  /// of the failure. Needs a copy.
  [[nodiscard]] int replaceWith(File& content);

  /// Path of the copy when a failure has changed the file; empty if the file is whole.
  [[nodiscard]] std::string copyLeft() const { return isDamaged_ ? copyPath_ : std::string(); }

 private:
  InPlaceFile(Descriptor file, std::string path) : file_(std::move(file)), path_(std::move(path)) {}

  [[nodiscard]] int reserve(std::uint64_t byteCount) const;
  [[nodiscard]] int overwrite(File& content, std::uint64_t byteCount);

  const Descriptor file_;
  const std::string path_;  // as requested
  std::string copyPath_;
  bool isDamaged_ = false;  // neither the old content nor the new one
};

}  // namespace platform
