#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "platform/base/Result.h"
#include "platform/files/Descriptor.h"
#include "platform/files/PosixFile.h"

namespace platform {

/// A regular file of the user's own in a PrivateFolder, open.
///
/// Threads: one at a time; content() from any. Real-time: not safe.
class PrivateFile {
 public:
  ~PrivateFile();  ///< releases the lock
  PrivateFile(const PrivateFile&) = delete;
  PrivateFile& operator=(const PrivateFile&) = delete;

  [[nodiscard]] const std::string& name() const { return name_; }
  [[nodiscard]] File& content() { return file_; }
  /// Tells it from another file that takes its name while this object exists.
  [[nodiscard]] std::uint64_t number() const;
  /// Bytes that the disk has set aside for it: fewer than its length where there are holes.
  [[nodiscard]] std::uint64_t allocatedBytes() const;
  /// When its content last changed.
  [[nodiscard]] std::chrono::system_clock::time_point modified() const;

  enum class Lock {
    taken,          ///< until this object's end
    heldByAnother,  ///< object, of this program or another
    notToBeHad,     ///< the file system has no locks, or did not answer: nobody knows of others
  };
  /// Takes the lock of the whole file, without waiting.
  [[nodiscard]] Lock lock();

  /// 0 if the file still has its name; ESTALE if another one has it, ENOENT if none has.
  [[nodiscard]] int checkName() const;
  /// Deletes the file if it still has its name. Returns 0 or an errno.
  [[nodiscard]] int remove();

 private:
  friend class PrivateFolder;
  PrivateFile(std::shared_ptr<const Descriptor> folder, std::string name, int descriptor);

  const std::shared_ptr<const Descriptor> folder_;
  const std::string name_;
  const int descriptor_;  // file_ owns it
  PosixFile file_;
};

/// A folder that belongs to the user and that nobody else may enter. Files are reached through its
/// descriptor, and no link in it or to it is followed.
///
/// Threads: any. Real-time: not safe.
class PrivateFolder {
 public:
  using Opened = Result<std::shared_ptr<PrivateFile>>;

  /// Opens the folder, and closes it to others if they may read, change or enter it. The last
  /// `ownFolders` folders of the path must be the user's own and no links. Fails with ENOENT where
  /// there is none, with ENOTDIR or ELOOP for a link and for anything that is no folder, and with
  /// EPERM for a folder that belongs to someone else or cannot be closed to others.
  [[nodiscard]] static Result<PrivateFolder> at(const std::string& path, int ownFolders = 1);

  /// Calls `found` with each name in it, in no order, without "." and "..".
  void forEachName(const std::function<void(const std::string& name)>& found) const;

  /// Opens a file for reading. Fails with EPERM for a file of someone else's, and with EINVAL or
  /// ELOOP for anything but a regular file.
  [[nodiscard]] Opened open(const std::string& name) const;

 private:
  explicit PrivateFolder(Descriptor folder);

  std::shared_ptr<const Descriptor> folder_;
};

}  // namespace platform
