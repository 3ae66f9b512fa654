#pragma once

#include <string>

#include "platform/base/AudioTypes.h"

/// Plain, localised words for an audio file that could not be read or written: the file's name,
/// what happened, what to do. They stand below the message of CheckAudioStatus().
///
/// Threads: any. Real-time: not safe.

/// How a file is called in a text that a person reads: the last component of its path in quotation
/// marks; line breaks and other characters that do not print as spaces, bytes that are no UTF-8 as
/// replacement characters.
[[nodiscard]] std::string shownFileName(const std::string& path);

/// For a file that could not be opened: nothing of it was taken over.
[[nodiscard]] std::string openingFailureReason(platform::AudioStatus status,
                                               const std::string& path);

/// For a file of which reading broke off: what came before it is good and was delivered.
[[nodiscard]] std::string readingFailureReason(platform::AudioStatus status,
                                               const std::string& path);

/// For a file that could not be written or finished.
[[nodiscard]] std::string writingFailureReason(platform::AudioStatus status,
                                               const std::string& path);
