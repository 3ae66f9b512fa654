#pragma once

#include <string>

#include "platform/base/Result.h"
#include "platform/files/Descriptor.h"

namespace platform {

/// What happens where there is no folder.
enum class MissingFolder {
  isAnError,  ///< ENOENT
  isMade,     ///< with the mode 0700
};

/// Opens the folder `name` inside the open folder `parent`, without following a link. Fails with
/// ENOTDIR or ELOOP for a link and for anything that is no folder, with EPERM for one that belongs
/// to someone else.
///
/// Threads: any. Real-time: not safe.
[[nodiscard]] Result<Descriptor> openOwnFolder(int parent, const std::string& name,
                                               MissingFolder missing);

/// Takes the rights of everybody but the user from a folder of the user's own. Files that others
/// may have put into it before are theirs, or links, and told by that. Returns 0, or EPERM if it
/// stays open to others.
///
/// Threads: any. Real-time: not safe.
[[nodiscard]] int closeToOthers(int folder);

}  // namespace platform
