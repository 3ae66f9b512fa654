#pragma once

#include <memory>
#include <optional>
#include <string>

#include "platform/base/Result.h"
#include "platform/files/PosixFile.h"

/// A recovered recording while it is written: a file with the suffix ".part", locked (flock) so
/// that others can tell it from one whose writer has died.
///
/// Threads: one at a time. Real-time: not safe.
struct PartFile {
  std::unique_ptr<platform::PosixFile> file;
  std::string name;             ///< without the suffix
  bool replacesFormer = false;  ///< an earlier file of this name, see RecoveredFolder::create()
  bool isSynced = false;        ///< everything is on the disk; it only lacks its name
};

/// The folder of recovered recordings, which only the user can read.
///
/// Threads: one at a time. Real-time: not safe.
class RecoveredFolder {
 public:
  /// The folder "orvo/recovered" in the user's data directory, created if necessary. Not used, with
  /// the error EPERM, ELOOP or ENOTDIR, when it belongs to someone else or is a link. ENOENT when
  /// there is no data directory, nor a folder to create it in.
  [[nodiscard]] static platform::Result<std::unique_ptr<RecoveredFolder>> open(
      const std::string& dataDirectory);
  ~RecoveredFolder();
  RecoveredFolder(const RecoveredFolder&) = delete;
  RecoveredFolder& operator=(const RecoveredFolder&) = delete;

  /// An empty part file for `name`, which has no suffix; equal names get " 2", " 3". If `former` is
  /// the name of an earlier recovered file, the new one will replace it instead. What is not the
  /// plain name of such a file is ignored.
  [[nodiscard]] platform::Result<PartFile> create(const std::string& name,
                                                  const std::string& former);
  /// The part file is complete: writes it to disk and removes its suffix. Returns 0 or an errno,
  /// after which it can be called again.
  [[nodiscard]] int complete(PartFile& part);
  /// Deletes a part file that will not be completed.
  void discard(const PartFile& part);

 private:
  explicit RecoveredFolder(int descriptor) : descriptor_(descriptor) {}

  [[nodiscard]] bool exists(const std::string& name) const;
  [[nodiscard]] platform::Result<PartFile> createPart(const std::string& name) const;
  [[nodiscard]] bool removeDeadPart(const std::string& name) const;
  [[nodiscard]] int rename(const PartFile& part) const;

  const int descriptor_;
};

/// The user's data directory: XDG_DATA_HOME if it is an absolute path, otherwise .local/share in
/// the home directory. Empty if neither is known.
///
/// Threads: any, while the environment does not change.
[[nodiscard]] std::string userDataDirectory();
