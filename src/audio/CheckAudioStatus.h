#pragma once

#include <string>

#include "platform/base/AudioTypes.h"

/// A status as reports show it in parentheses: its four bytes, most significant first, in single
/// quotes if all are printable ('wht?'), otherwise the signed decimal number (-50). At most 255
/// bytes.
///
/// Threads: any. Real-time: not safe.
[[nodiscard]] std::string AudioStatusCodeText(platform::AudioStatus status);

/// Reports a failed audio call: prints "Error: LABEL (CODE)" to standard error, shows an alert and
/// returns false. For status 0 only returns true.
///
/// @param label   names the call, as in "AudioQueueStart failed"
/// @param reason  plain, localised words for the user: the file's name, what happened, what to do.
///                Shown below the alert's message after a blank line; empty for none
///
/// Waits for the user, as ShowModalAlert() does, except on the thread of an audio queue.
///
/// Threads: any. Real-time: not safe.
bool CheckAudioStatus(platform::AudioStatus status, const std::string& label,
                      const std::string& reason = {});

/// The alert of CheckAudioStatus() alone, for a failure that was printed already.
///
/// Threads: any. Real-time: not safe.
void ShowAudioStatusAlert(platform::AudioStatus status, const std::string& label,
                          const std::string& reason);

/// CheckAudioStatus() without the alert, for a failure that was alerted already.
///
/// Threads: any. Real-time: not safe.
bool CheckAudioStatusWithoutAlert(platform::AudioStatus status, const std::string& label);
