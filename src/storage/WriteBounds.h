#pragma once

#include <cstdint>

/// Whether a write of so many bytes at a byte offset ends at or below the highest address. One that
/// does not is to be refused, and a console line says so.
///
/// Threads: any. Real-time: not safe.
[[nodiscard]] bool refuseIfPastAddressSpace(std::uint64_t atByteOffset, std::uint32_t withSize);
