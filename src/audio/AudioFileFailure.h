#pragma once

#include <string>

#include "platform/base/AudioTypes.h"

/// Plain, localised words for an audio file that could not be read or written: the file's name,
/// what happened, what to do. They stand below the message of CheckAudioStatus().
///
/// Threads: any. Real-time: not safe.

/// A file's name for display: the last component of its path in quotation marks, with unprintable
/// characters such as line breaks as spaces, and bytes that are not UTF-8 as replacement
/// characters.
[[nodiscard]] std::string shownFileName(const std::string& path);

/// For a file that could not be opened: nothing was loaded.
[[nodiscard]] std::string openingFailureReason(platform::AudioStatus status,
                                               const std::string& path);

/// For a file whose reading failed midway: the audio before the failure is good and was delivered.
[[nodiscard]] std::string readingFailureReason(platform::AudioStatus status,
                                               const std::string& path);

/// For a file that could not be written or finished.
[[nodiscard]] std::string writingFailureReason(platform::AudioStatus status,
                                               const std::string& path);
