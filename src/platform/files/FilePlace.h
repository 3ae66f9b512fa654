#pragma once

#include <sys/stat.h>

#include <string>

#include "platform/base/Result.h"
#include "platform/files/Descriptor.h"

namespace platform {

/// Where a file is or is to be: its folder, open, and its name there. What happens to the folder's
/// own path no longer matters: the name is looked up in the folder itself.
///
/// Threads: one at a time. Real-time: not safe.
class FilePlace {
 public:
  /// Follows symbolic links, also to a file that does not exist yet. Fails with EISDIR for a path
  /// that names no file, ELOOP for links in a circle, EACCES for a link that another user put into
  /// a folder that others may write: he could choose which of the user's files is replaced.
  [[nodiscard]] static Result<FilePlace> of(const std::string& path);

  [[nodiscard]] int folder() const { return folder_.get(); }
  [[nodiscard]] const std::string& name() const { return name_; }

  /// 0 if a file may be placed here: nothing or a regular file that may be written. EISDIR for a
  /// folder, EINVAL for a link, a device or a pipe, EACCES for a file that may not be written, or a
  /// system error.
  [[nodiscard]] int check() const;
  /// Whether there is something; true if unknown.
  [[nodiscard]] bool isOccupied() const;
  [[nodiscard]] bool isSameAs(const FilePlace& other) const;

  /// 0 if `name` in the folder is the open file itself, not a link to it; ESTALE if it is another
  /// one, or a system error.
  [[nodiscard]] int checkName(const std::string& name, int openFile) const;

  /// Opens the file for reading, or else for writing; none if that fails or it is no regular file.
  [[nodiscard]] Descriptor openExisting() const;

  /// Makes the change of a name survive a power failure. Systems that cannot sync a folder do not
  /// need it.
  void sync() const;

 private:
  FilePlace(Descriptor folder, std::string name)
      : folder_(std::move(folder)), name_(std::move(name)) {}

  Descriptor folder_;
  std::string name_;
};

}  // namespace platform
