#pragma once

#include <cstdint>
#include <vector>

#include <QString>

#include "audio/OVRecordingLosses.h"

/// Lost frames in localised words.
///
/// Threads: main. Real-time: not safe.

/// "0.3 s were lost at 12:31".
[[nodiscard]] QString lossText(const OVRecordingLoss& loss);

/// The sum of a recording's losses and the place of the first; empty if there are none.
[[nodiscard]] QString lossesText(const std::vector<OVRecordingLoss>& losses);

/// A place in the document: "12:31", or "1:02:31".
[[nodiscard]] QString lossPlaceText(std::uint64_t frame);

/// The length of so many frames in seconds.
[[nodiscard]] double lossSeconds(std::uint64_t frames);
