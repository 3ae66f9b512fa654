#pragma once

#include <string>

#include "platform/base/AudioTypes.h"

/// The text of a status between the parentheses of a report: its four bytes, most significant
/// first, between single quotes when all of them are printable ('wht?'), else the signed decimal
/// number (-50). At most 255 bytes.
///
/// Threads: any. Real-time: not safe.
[[nodiscard]] std::string AudioStatusCodeText(platform::AudioStatus status);

/// Reports a platform audio call that failed. 0 returns true and does nothing else; any other
/// status prints "Error: LABEL (CODE)" to standard error, shows an alert and returns false.
///
/// @param label   names the call, as in "AudioQueueStart failed"
/// @param reason  plain words for the user, already localised: the file's name, what happened,
///                what to do. Stands below the alert's message after a blank line; empty for none
///
/// The alert is shown by ShowModalAlert: waited for, except on the thread of an audio queue.
///
/// Threads: any. Real-time: not safe.
bool CheckAudioStatus(platform::AudioStatus status, const std::string& label,
                      const std::string& reason = {});

/// Like CheckAudioStatus() without its alert, for a failure that was alerted already.
///
/// Threads: any. Real-time: not safe.
bool CheckAudioStatusWithoutAlert(platform::AudioStatus status, const std::string& label);
