#include "platform/cubeb/CubebStream.h"

#include <algorithm>

namespace platform {

// The format is always the same and valid: a device that refuses it counts as unavailable.
AudioStatus statusOfCubeb(int result) {
  return result == CUBEB_OK ? kAudioStatusOk : kDeviceUnavailableStatus;
}

CubebStream::~CubebStream() {
  if (stream_ != nullptr) {
    cubeb_stream_stop(stream_);
    cubeb_stream_destroy(stream_);
  }
}

AudioStatus CubebStream::open(std::uint32_t latencyFrames) {
  latencyFrames_ = latencyFrames;
  cubeb_stream_params format{};
  format.format = CUBEB_SAMPLE_FLOAT32NE;
  format.rate = static_cast<std::uint32_t>(kWorkingFormat.mSampleRate);
  format.channels = kWorkingFormat.mChannelsPerFrame;
  format.layout = CUBEB_LAYOUT_STEREO;
  format.prefs = CUBEB_STREAM_PREF_NONE;
  const bool input = direction_ == Direction::kInput;
  int result =
      cubeb_stream_init(connection_->context(), &stream_, input ? "Recording" : "Playback", nullptr,
                        input ? &format : nullptr, nullptr, input ? nullptr : &format,
                        latencyFrames, transferCallback, stateCallback, this);
  if (result != CUBEB_OK) {
    stream_ = nullptr;
  } else if (input) {
    result = cubeb_stream_start(stream_);
  }
  AudioStatus status = statusOfCubeb(result);
  Life expected = Life::kOpening;
  const Life outcome = status == kAudioStatusOk ? Life::kOpen : Life::kDead;
  if (!life_.compare_exchange_strong(expected, outcome) && status == kAudioStatusOk) {
    status = kDeviceUnavailableStatus;
  }
  if (status != kAudioStatusOk) {
    connection_->markBroken();
  }
  return status;
}

AudioStatus CubebStream::start() {
  return checked(cubeb_stream_start(stream_));
}

AudioStatus CubebStream::stop() {
  return checked(cubeb_stream_stop(stream_));
}

AudioStatus CubebStream::checked(int result) {
  const AudioStatus status = statusOfCubeb(result);
  if (status != kAudioStatusOk) {
    connection_->markBroken();
  }
  return status;
}

std::string CubebStream::currentInput() {
  std::string id;
  cubeb_device* device = nullptr;
  if (life_.load() == Life::kOpen &&
      cubeb_stream_get_current_device(stream_, &device) == CUBEB_OK && device != nullptr) {
    id = device->input_name == nullptr ? "" : device->input_name;
    cubeb_stream_device_destroy(stream_, device);
  }
  return id;
}

std::uint64_t CubebStream::position() {
  std::uint64_t frames = 0;
  if (life_.load() != Life::kDead && cubeb_stream_get_position(stream_, &frames) == CUBEB_OK) {
    // cubeb extrapolates from the start on: it can be hundreds of frames ahead of a server that has
    // not begun to play. The last buffer's worth of frames may still be in the stream.
    const std::uint64_t given = transferred_.load(std::memory_order_relaxed);
    position_ = std::min(frames, given - std::min<std::uint64_t>(given, latencyFrames_));
  }
  return position_;
}

long CubebStream::transferCallback(cubeb_stream*, void* user, const void* input, void* output,
                                   long frames) {
  auto* self = static_cast<CubebStream*>(user);
  self->transfer_(self->client_, input, output, static_cast<std::uint32_t>(frames));
  self->transferred_.fetch_add(static_cast<std::uint64_t>(frames), std::memory_order_relaxed);
  return frames;  // never fewer: that would start a drain, which cuts off short clips
}

void CubebStream::stateCallback(cubeb_stream*, void* user, cubeb_state state) {
  auto* self = static_cast<CubebStream*>(user);
  if (state != CUBEB_STATE_ERROR) {
    return;
  }
  self->connection_->markBroken();
  if (self->life_.exchange(Life::kDead) == Life::kOpen) {
    self->died_(self->client_);
  }
}

}  // namespace platform
