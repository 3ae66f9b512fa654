#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "platform/base/Result.h"
#include "platform/files/Descriptor.h"
#include "platform/files/FilePlace.h"

namespace platform {

/// A file that is written beside its target and then replaces it atomically: the target is always
/// the whole old file or the whole new one, even after a kill or a power failure.
///
/// The new file is open from its creation to its renaming, and its folder too: what others do to
/// the names in the folder cannot make it write to another file. A change is noticed before the
/// target is replaced.
///
/// A program that is killed leaves the new file behind, hidden; the next one that is made in the
/// folder removes it once it is an hour old (removeLeftReplacements()).
///
/// If the target is a symbolic link, the file that it points to is replaced. The new file gets the
/// old one's permissions, access control list, extended attributes and, where the system allows it,
/// its owner; nothing of a file that took the target's place meanwhile.
///
/// Threads: one at a time. Real-time: not safe.
class ReplacementFile {
 public:
  /// Who may read a file that replaces none.
  enum class NewFile {
    usual,      ///< whoever the user's mask permits
    ownerOnly,  ///< the user alone
  };

  /// Creates an empty file beside `target`. A failure leaves nothing behind: EISDIR for a folder,
  /// EINVAL for a device or pipe, EACCES for a file that may not be written, or a system error.
  [[nodiscard]] static Result<std::unique_ptr<ReplacementFile>> beside(
      const std::string& target, NewFile rights = NewFile::usual);

  /// The folder in which beside() creates the file: the target's, links followed where possible.
  /// Creates nothing.
  [[nodiscard]] static std::string folderBeside(const std::string& target);

  /// That folder, if the user may not make files in it and `error` of a failure to write `target`,
  /// an errno, can come of that; otherwise, or if it is not there, empty.
  [[nodiscard]] static std::string closedFolderBeside(const std::string& target, int error);

  /// Deletes the new file unless it was committed.
  ~ReplacementFile();
  ReplacementFile(const ReplacementFile&) = delete;
  ReplacementFile& operator=(const ReplacementFile&) = delete;

  /// Descriptor of the new file, for reading and writing. It stays this object's.
  [[nodiscard]] int descriptor() const { return file_.get(); }

  /// Replaces the new file's content and flushes it to disk. Returns 0, or the errno of the
  /// failure.
  [[nodiscard]] int write(const void* data, std::uint64_t byteCount);

  /// Flushes the new file to disk and replaces the target with it. Returns 0, or the errno of the
  /// failure; the target is then unchanged, or, with ESTALE, was changed by another program, as the
  /// new file or a folder on the way may have been.
  [[nodiscard]] int commit();

 private:
  ReplacementFile(std::string target, FilePlace place, Descriptor old, std::string temporaryName,
                  Descriptor file)
      : target_(std::move(target)),
        place_(std::move(place)),
        old_(std::move(old)),
        temporaryName_(std::move(temporaryName)),
        file_(std::move(file)) {}

  [[nodiscard]] int checkAgain() const;

  const std::string target_;  // as requested
  const FilePlace place_;     // links followed
  const Descriptor old_;      // the file to be replaced; none if there was none
  const std::string temporaryName_;
  const Descriptor file_;
  bool committed_ = false;
};

}  // namespace platform
