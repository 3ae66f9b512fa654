#pragma once

#include <cstdint>
#include <string>

#include "platform/File.h"

/// Reads what the file gives of one stretch, going on after short reads; less than asked only where
/// it has no more, or fails.
///
/// Threads: any. Real-time: not safe.
[[nodiscard]] platform::FileTransfer readWhole(platform::File& file, void* destination,
                                               std::uint64_t byteCount, std::uint64_t fileOffset);

/// Tells in a modal alert that a temporary file could not be made at a path. Hold no lock.
///
/// Threads: any. Real-time: not safe.
void tellThatNoTemporaryFileOpens(const std::string& path);
