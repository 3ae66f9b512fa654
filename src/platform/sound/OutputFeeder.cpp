#include "platform/sound/OutputFeeder.h"

#include <algorithm>
#include <cassert>
#include <cstddef>

namespace platform {

void OutputFeeder::push(AudioQueueBuffer* buffer) noexcept {
  pushedBuffers_.store(pushedBuffers_.load(std::memory_order_relaxed) + 1,
                       std::memory_order_release);
  [[maybe_unused]] const bool pushed = waiting_.push(buffer);
  assert(pushed);
}

AudioQueueBuffer* OutputFeeder::popTaken() noexcept {
  AudioQueueBuffer* buffer = nullptr;
  return taken_.pop(buffer) ? buffer : nullptr;
}

void OutputFeeder::close() noexcept {
  closed_.store(true, std::memory_order_seq_cst);
  section_.waitUntilLeft();
}

bool OutputFeeder::isAllTaken() const noexcept {
  return emptiedBuffers_.load(std::memory_order_acquire) ==
         pushedBuffers_.load(std::memory_order_acquire);
}

std::uint32_t OutputFeeder::take(float* samples, std::uint32_t frames,
                                 std::uint32_t& emptied) noexcept {
  std::uint32_t filled = 0;
  // Also takes empty buffers after the last frame, so that they return without delay.
  while (current_ != nullptr || waiting_.pop(current_)) {
    const std::uint32_t length = current_->mAudioDataByteSize / kWorkingFrameBytes;
    const std::uint32_t part = std::min(frames - filled, length - currentDone_);
    const auto* source = reinterpret_cast<const float*>(current_->mAudioData);
    std::copy_n(source + currentDone_ * kWorkingChannels, part * kWorkingChannels,
                samples + filled * kWorkingChannels);
    filled += part;
    currentDone_ += part;
    if (currentDone_ < length) {
      break;
    }
    [[maybe_unused]] const bool pushed = taken_.push(current_);
    assert(pushed);
    current_ = nullptr;
    currentDone_ = 0;
    ++emptied;
  }
  return filled;
}

std::uint32_t OutputFeeder::fill(float* samples, std::uint32_t frames) noexcept {
  section_.enter();
  std::uint32_t emptied = 0;
  const std::uint32_t filled =
      closed_.load(std::memory_order_seq_cst) ? 0 : take(samples, frames, emptied);
  section_.leave();

  const std::uint64_t before = given_.load(std::memory_order_relaxed);
  const bool begins = filled > 0 && realEnd_.load(std::memory_order_relaxed) == 0;
  if (begins && filled < frames && !draining_.load(std::memory_order_relaxed)) {
    // More audio will follow, so silence goes before the first frame: after the last it would be a
    // gap.
    std::copy_backward(samples, samples + filled * kWorkingChannels,
                       samples + frames * kWorkingChannels);
    std::fill_n(samples, (frames - filled) * kWorkingChannels, 0.0F);
    realEnd_.store(before + frames, std::memory_order_release);
  } else {
    std::fill(samples + filled * kWorkingChannels, samples + frames * kWorkingChannels, 0.0F);
    if (filled > 0) {
      realEnd_.store(before + filled, std::memory_order_release);
    }
    countUnderrun(frames - filled);
  }
  given_.store(before + frames, std::memory_order_release);
  emptiedBuffers_.store(emptiedBuffers_.load(std::memory_order_relaxed) + emptied,
                        std::memory_order_release);
  return emptied;
}

void OutputFeeder::countUnderrun(std::uint32_t frames) noexcept {
  const bool begun = realEnd_.load(std::memory_order_relaxed) > 0;
  if (begun && !draining_.load(std::memory_order_relaxed) &&
      !closed_.load(std::memory_order_relaxed)) {
    underruns_.store(underruns_.load(std::memory_order_relaxed) + frames,
                     std::memory_order_relaxed);
  }
}

}  // namespace platform
