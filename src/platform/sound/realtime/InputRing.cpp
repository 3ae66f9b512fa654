#include "platform/sound/realtime/InputRing.h"

#include <algorithm>
#include <cassert>
#include <cstddef>

#include "platform/base/AudioTypes.h"

namespace platform {

InputRing::InputRing(std::uint32_t blockFrames, std::uint32_t blockCount)
    : blockFrames_(blockFrames),
      blockCount_(blockCount),
      blocks_(blockCount),
      samples_(std::size_t{blockFrames} * blockCount * kWorkingChannels) {
  assert(blockFrames > 0 && blockCount > 1);
}

bool InputRingProducer::beginBlock() noexcept {
  const std::uint64_t head = ring_.head_.load(std::memory_order_relaxed);
  if (head - ring_.tail_.load(std::memory_order_acquire) == ring_.blockCount_) {
    return false;
  }
  auto& block = ring_.blocks_[head % ring_.blockCount_];
  block.firstFrame = captured_;
  block.lostBefore = lostPending_;
  block.skippedBefore = skippedPending_;
  block.skippedAtFrame = skippedAtFrame_;
  lostPending_ = 0;
  skippedPending_ = 0;
  return true;
}

void InputRingProducer::endBlock() noexcept {
  const std::uint64_t head = ring_.head_.load(std::memory_order_relaxed);
  ring_.blocks_[head % ring_.blockCount_].endFrame = captured_;
  filled_ = 0;
  ring_.head_.store(head + 1, std::memory_order_release);
  ring_.publishedEndFrame_.store(captured_, std::memory_order_release);
}

void InputRingProducer::lose(std::uint64_t frames) noexcept {
  captured_ += frames;
  lostPending_ += frames;
  ring_.lostFrames_.store(ring_.lostFrames_.load(std::memory_order_relaxed) + frames,
                          std::memory_order_release);
}

std::uint32_t InputRingProducer::write(const float* samples, std::uint32_t frames) noexcept {
  std::uint32_t completed = 0;
  while (frames > 0) {
    if (filled_ == 0 && !beginBlock()) {
      lose(frames);
      break;
    }
    const std::uint64_t head = ring_.head_.load(std::memory_order_relaxed);
    const std::uint32_t part = std::min(frames, ring_.blockFrames_ - filled_);
    const std::size_t place = (head % ring_.blockCount_) * ring_.blockFrames_ + filled_;
    std::copy_n(samples, part * kWorkingChannels, &ring_.samples_[place * kWorkingChannels]);
    samples += part * kWorkingChannels;
    frames -= part;
    captured_ += part;
    filled_ += part;
    if (filled_ == ring_.blockFrames_) {
      endBlock();
      ++completed;
    }
  }
  return completed;
}

std::uint32_t InputRingProducer::skip(std::uint64_t frames, std::uint64_t capturedSince) noexcept {
  const std::uint32_t completed = filled_ > 0 ? 1 : 0;
  finish();
  skippedPending_ += frames;
  skippedAtFrame_ = captured_ - std::min(captured_, capturedSince);
  lose(frames);
  return completed;
}

void InputRingProducer::finish() noexcept {
  if (filled_ > 0) {
    endBlock();
  }
}

const InputRing::Block* InputRingConsumer::front() const noexcept {
  const std::uint64_t tail = ring_.tail_.load(std::memory_order_relaxed);
  if (ring_.head_.load(std::memory_order_acquire) == tail) {
    return nullptr;
  }
  return &ring_.blocks_[tail % ring_.blockCount_];
}

const float* InputRingConsumer::frontSamples() const noexcept {
  const std::uint64_t tail = ring_.tail_.load(std::memory_order_relaxed);
  return &ring_.samples_[(tail % ring_.blockCount_) * ring_.blockFrames_ * kWorkingChannels];
}

void InputRingConsumer::pop() noexcept {
  const std::uint64_t tail = ring_.tail_.load(std::memory_order_relaxed);
  assert(ring_.head_.load(std::memory_order_acquire) != tail);
  ring_.tail_.store(tail + 1, std::memory_order_release);
}

}  // namespace platform
