#pragma once

#include <string>

#include "platform/base/AudioTypes.h"

/// Plain, localised reasons why an audio file could not be read or written: the file's name, what
/// happened, what to do. Alerts show them below the message of CheckAudioStatus().
///
/// Threads: any. Real-time: not safe.

/// A file's name for display: the last component of its path, as platform::shownName() shows it, in
/// quotation marks.
[[nodiscard]] std::string shownFileName(const std::string& path);

/// A whole path for display, in the same form.
[[nodiscard]] std::string shownPath(const std::string& path);

/// For a file that could not be opened: nothing was loaded.
[[nodiscard]] std::string openingFailureReason(platform::AudioStatus status,
                                               const std::string& path);

/// For a file whose reading failed midway: the audio before the failure is good and was delivered.
[[nodiscard]] std::string readingFailureReason(platform::AudioStatus status,
                                               const std::string& path);

/// For a file that could not be written or finished. With a path, and not a mere name, looks at the
/// disk whether the folder is what may not be written in.
[[nodiscard]] std::string writingFailureReason(platform::AudioStatus status,
                                               const std::string& path);

/// For a file that could not be made because the user may not write in its folder.
[[nodiscard]] std::string closedFolderReason(const std::string& folder);
