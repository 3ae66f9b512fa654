#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "platform/files/File.h"

/// Reads what the file gives of one stretch, going on after short reads; less than asked only where
/// it has no more, or fails.
///
/// Threads: any. Real-time: not safe.
[[nodiscard]] platform::FileTransfer readWhole(platform::File& file, void* destination,
                                               std::uint64_t byteCount, std::uint64_t fileOffset);

/// Why a transfer moved fewer bytes than it should have: its errno, EIO where it has none; 0 when
/// it moved them all.
///
/// Threads: any. Real-time: safe.
[[nodiscard]] int errorOfTransfer(const platform::FileTransfer& transfer, std::uint64_t byteCount);

/// Deletes the file at a path, if one is given; an error is ignored.
///
/// Threads: any. Real-time: not safe.
void deleteTemporaryFile(const std::optional<std::string>& path);

/// Shows a modal alert that a temporary file could not be made at a path. Hold no lock.
///
/// Threads: any. Real-time: not safe.
void alertThatNoTemporaryFileOpens(const std::string& path);

/// Whether a write of so many bytes at a byte offset would end past the highest address; then the
/// console says that it is refused.
///
/// Threads: any. Real-time: not safe.
[[nodiscard]] bool refuseIfPastAddressSpace(std::uint64_t atByteOffset, std::uint32_t withSize);
