#pragma once

#include <cstdint>

/// Room that files take on a disk. All take open descriptors.
///
/// Threads: one at a time. Real-time: not safe.

/// Takes room for a file of so many bytes and gives it that length, so that a full disk is noticed
/// before anything is written. Disks that cannot promise room are taken at their word. Returns 0 or
/// an errno.
[[nodiscard]] int reserveRoom(int file, std::uint64_t byteCount);

/// Gives a file the length without any room. Returns 0 or an errno.
[[nodiscard]] int setLengthWithoutRoom(int file, std::uint64_t byteCount);

/// Whether what one file gives back is there for the other.
[[nodiscard]] bool areOnOneDisk(int file, int other);

/// Gives back the room of a stretch, which then reads as zeros. False where the disk cannot do it.
[[nodiscard]] bool giveBackRoom(int file, std::uint64_t offset, std::uint64_t byteCount);
