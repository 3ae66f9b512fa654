#include "document/editing/OVFramePositions.h"

std::uint64_t OVFramePositions::playback() const {
  return playbackPosQueue_.sync([this] { return _playbackPosition; });
}

void OVFramePositions::setPlayback(std::uint64_t frames) {
  playbackPosQueue_.sync([this, frames] { _playbackPosition = frames; });
}

std::uint64_t OVFramePositions::recording() const {
  return recordingPosQueue_.sync([this] { return _recordingPosition; });
}

void OVFramePositions::setRecording(std::uint64_t frames) {
  recordingPosQueue_.sync([this, frames] { _recordingPosition = frames; });
}
