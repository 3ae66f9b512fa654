#pragma once

#include <string>

namespace platform {

/// The files that are written beside their targets: their names, who holds them, and the removal of
/// those that nobody will finish.
///
/// Threads: any. Real-time: not safe.

/// A name for such a file, hidden and random: ".orvo-" and eight letters or digits. Independent of
/// the target's name, which may already have the maximum length.
[[nodiscard]] std::string freshReplacementName();

/// Marks an open file as being written until its last descriptor is closed, also by the end of the
/// program. File systems without locks ignore it.
void holdReplacement(int file);

/// Removes the files of such names in a folder that killed programs have left: the user's own
/// regular files, unchanged for more than an hour, and held by nobody. Failures are ignored; in a
/// folder that cannot be listed, and on file systems without locks, everything stays.
///
/// @param folder  a descriptor of it; it need not be readable
void removeLeftReplacements(int folder);

}  // namespace platform
