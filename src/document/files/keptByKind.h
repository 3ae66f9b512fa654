#pragma once

#include <cstdint>
#include <string>

#include <QString>

#include "platform/media/AudioFileTags.h"

/// One line that says what a file of a kind keeps of a document with these tags: bits, rate,
/// channels, and the tags.
///
/// Threads: main. Real-time: not safe.
[[nodiscard]] QString keptByKind(std::int32_t type, const platform::AudioFileTags& tags);

/// What gets lost when the file at a path is replaced by one that Orvo writes under that name: a
/// sentence with its bits, rate and channels and those of the new one, as far as the new one has
/// less or another; empty if nothing is lost, or the file is no sound file. Takes up to a second,
/// and for as long as the disk does not answer.
///
/// Threads: any but main. Real-time: not safe.
[[nodiscard]] QString lossOfReplacing(const std::string& path);
