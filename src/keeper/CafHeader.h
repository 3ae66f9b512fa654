#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/// Everything of a CAF file that precedes its samples: stereo 32-bit floats in native byte order at
/// 44100 Hz. `recorded` is shown by programs that show when a file was recorded.
///
/// Threads: any. Real-time: not safe.
[[nodiscard]] std::vector<std::byte> cafHeader(std::uint64_t audioBytes,
                                               const std::string& recorded);
