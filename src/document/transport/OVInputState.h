#pragma once

#include <cstdint>
#include <vector>

#include "audio/OVRecordingLosses.h"
#include "platform/sound/AudioQueue.h"

/// What a person at the microphone must know, at one moment.
struct OVInputState {
  bool isRecording = false;
  /// The recording, or the last one, has written something.
  bool hasRecorded = false;
  platform::AudioInputSource source;
  /// Frames of digital silence that have come in last; 0 while not recording.
  std::uint64_t silentFrames = 0;
  /// The gaps of the recording, or of the last one.
  std::vector<OVRecordingLoss> losses;
};
