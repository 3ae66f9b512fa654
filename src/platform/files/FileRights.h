#pragma once

namespace platform {

/// Gives a new file the owner, permissions, access control list and extended attributes of an old
/// one, as far as the system permits. Where the list or the group cannot be taken over, the new
/// file's rights are narrower: nobody but the user may do more with it than with the old one. It
/// is the user's alone until it has them.
///
/// Both are descriptors; `oldFile` may be negative for a file that cannot be opened, then the new
/// file stays the user's alone.
///
/// Threads: any. Real-time: not safe.
void takeOverRights(int newFile, int oldFile);

}  // namespace platform
