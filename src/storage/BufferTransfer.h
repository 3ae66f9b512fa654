#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "platform/files/File.h"

/// Reads a range of the file, continuing after short reads; returns less only at the end of the
/// file or on failure.
///
/// Threads: any. Real-time: not safe.
[[nodiscard]] platform::FileTransfer readWhole(platform::File& file, void* destination,
                                               std::uint64_t byteCount, std::uint64_t fileOffset);

/// The errno of a transfer that moved fewer than `byteCount` bytes, EIO if it has none; 0 if it
/// moved them all.
///
/// Threads: any. Real-time: safe.
[[nodiscard]] int errorOfTransfer(const platform::FileTransfer& transfer, std::uint64_t byteCount);

/// Deletes the file at a path, if one is given; errors are ignored.
///
/// Threads: any. Real-time: not safe.
void deleteTemporaryFile(const std::optional<std::string>& path);

/// Shows a modal alert that a temporary file could not be created at a path, with the explanation,
/// if any, below its message. Hold no lock.
///
/// Threads: any. Real-time: not safe.
void alertThatNoTemporaryFileOpens(const std::string& path, const std::string& explanation = {});

/// Whether a write would end past the highest address. If so, logs to the console that it is
/// refused.
///
/// Threads: any. Real-time: not safe.
[[nodiscard]] bool refuseIfPastAddressSpace(std::uint64_t atByteOffset, std::uint32_t withSize);
