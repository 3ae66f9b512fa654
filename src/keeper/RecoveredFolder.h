#pragma once

#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "platform/base/Result.h"
#include "platform/files/Descriptor.h"
#include "platform/files/PosixFile.h"

/// A recovered recording while it is written: a file with the suffix ".part", locked (flock) so
/// that others can tell it from one whose writer has died.
///
/// Threads: one at a time. Real-time: not safe.
struct PartFile {
  std::unique_ptr<platform::PosixFile> file;
  std::string name;                ///< without the suffix
  bool replacesFormer = false;     ///< an earlier file of this name, see RecoveredFolder::create()
  std::uint64_t formerNumber = 0;  ///< the system's number of that one; 0 if unknown
  bool isSynced = false;           ///< everything is on the disk; it only lacks its name
  std::string formerPart = {};  ///< part file of a dead keeper that it supersedes; empty for none
};

/// The folder of recovered recordings, which only the user can read.
///
/// Threads: one at a time. Real-time: not safe.
class RecoveredFolder {
 public:
  /// An earlier recovered file, or the part file that a dead keeper left.
  struct Former {
    std::string name;          ///< empty for none
    std::uint64_t number = 0;  ///< the system's number of it; 0 if unknown
  };

  /// The folder "orvo/recovered" in the user's data directory, created if necessary and closed to
  /// others. Not used, with the error EPERM, ELOOP or ENOTDIR, when it or "orvo" belongs to someone
  /// else or is a link. EINVAL without a data directory.
  [[nodiscard]] static platform::Result<std::unique_ptr<RecoveredFolder>> open(
      const std::string& dataDirectory);
  ~RecoveredFolder() = default;
  RecoveredFolder(const RecoveredFolder&) = delete;
  RecoveredFolder& operator=(const RecoveredFolder&) = delete;

  /// An empty part file for `name`, which has no suffix; equal names get " 2", " 3". If there is a
  /// `former` file, the new one will replace it instead, but no other one that has taken its name.
  /// What is not the plain name of such a file is ignored.
  [[nodiscard]] platform::Result<PartFile> create(const std::string& name, const Former& former);
  /// The part file is complete: writes it to disk and removes its suffix. Returns 0 or an errno,
  /// after which it can be called again.
  [[nodiscard]] int complete(PartFile& part);
  /// Deletes a part file that will not be completed.
  void discard(const PartFile& part);

 private:
  explicit RecoveredFolder(platform::Descriptor folder) : folder_(std::move(folder)) {}

  [[nodiscard]] bool exists(const std::string& name) const;
  [[nodiscard]] platform::Result<PartFile> createPart(const std::string& name) const;
  [[nodiscard]] platform::Result<PartFile> createNumbered(const std::string& name) const;
  [[nodiscard]] bool removeDeadPart(const std::string& name) const;
  [[nodiscard]] int rename(const PartFile& part) const;
  [[nodiscard]] bool isFormerThere(const PartFile& part) const;

  const platform::Descriptor folder_;
};
