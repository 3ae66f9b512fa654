#pragma once

#include <cstdint>

#include "platform/ffmpeg/AudioFileView.h"

namespace platform {

/// Whether a length in a header means "until the end of the file": programs that write into a pipe
/// cannot go back to enter the real one, and put the largest number that they know, less a header
/// or rounded. 0 is another such length, which is not one here.
[[nodiscard]] bool standsForUntilTheEnd(std::uint64_t bytes);

/// Corrects the header of a WAV or AIFF file where it hides sound that is there:
///
///  - a WAV of more than 4 GiB, whose 32-bit length has wrapped, is shown with all its samples: if
///    the file is longer than promised by a multiple of 4 GiB, but for further chunks;
///  - so is a longer WAV whose length stands for "until the end";
///  - an AIFF whose lengths are 0, since it was written into a pipe, is given those of the file;
///  - integers of a WAV that do not fill their bytes (24 bits in 32) count as full, since their
///    lower bits are 0.
///
/// Everything else is left as it is. Threads: any, one at a time. Real-time: not safe.
void correctHeader(AudioFileView& view);

}  // namespace platform
