#include "platform/sound/realtime/InputRing.h"

#include <algorithm>
#include <cassert>
#include <cstddef>

#include "platform/base/AudioTypes.h"

namespace platform {

InputRing::InputRing(std::uint32_t blockFrames, std::uint32_t blockCount,
                     std::uint32_t blocksAtFirst)
    : blockFrames_(blockFrames),
      blockCount_(blockCount),
      blocks_(blockCount),
      places_(blockCount),
      samples_(std::make_unique_for_overwrite<float[]>(std::size_t{blockFrames} * blockCount *
                                                       kWorkingChannels)),
      usablePlaces_(blocksAtFirst) {
  assert(blockFrames > 0 && blockCount > 1 && blocksAtFirst > 0 && blocksAtFirst <= blockCount);
  touch(0, blocksAtFirst);
}

void InputRing::grow() {
  const std::uint32_t usable = usablePlaces_.load(std::memory_order_relaxed);
  touch(usable, blockCount_);
  usablePlaces_.store(blockCount_, std::memory_order_release);
}

float* InputRing::samplesAt(std::uint32_t place) const noexcept {
  return samples_.get() + std::size_t{place} * blockFrames_ * kWorkingChannels;
}

// The system gives a page when it is first written to, which takes longer than the device's thread
// may.
void InputRing::touch(std::uint32_t firstPlace, std::uint32_t endPlace) noexcept {
  std::fill(samplesAt(firstPlace), samplesAt(endPlace), 0.0F);
}

InputRingProducer::InputRingProducer(InputRing& ring) : ring_(ring) {
  freePlaces_.reserve(ring.blockCount_);
}

bool InputRingProducer::takePlace() noexcept {
  const std::uint32_t usable = ring_.usablePlaces_.load(std::memory_order_acquire);
  for (; knownPlaces_ < usable; ++knownPlaces_) {
    freePlaces_.push_back(knownPlaces_);
  }
  const std::uint64_t returned = ring_.tail_.load(std::memory_order_acquire);
  for (; returnedBlocks_ < returned; ++returnedBlocks_) {
    freePlaces_.push_back(ring_.places_[returnedBlocks_ % ring_.blockCount_]);
  }
  if (freePlaces_.empty()) {
    return false;
  }
  place_ = freePlaces_.back();
  freePlaces_.pop_back();
  return true;
}

bool InputRingProducer::beginBlock() noexcept {
  if (!takePlace()) {
    return false;
  }
  const std::uint64_t head = ring_.head_.load(std::memory_order_relaxed);
  ring_.places_[head % ring_.blockCount_] = place_;
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
    const std::uint32_t part = std::min(frames, ring_.blockFrames_ - filled_);
    std::copy_n(samples, part * kWorkingChannels,
                ring_.samplesAt(place_) + std::size_t{filled_} * kWorkingChannels);
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
  return ring_.samplesAt(ring_.places_[tail % ring_.blockCount_]);
}

void InputRingConsumer::pop() noexcept {
  const std::uint64_t tail = ring_.tail_.load(std::memory_order_relaxed);
  assert(ring_.head_.load(std::memory_order_acquire) != tail);
  ring_.tail_.store(tail + 1, std::memory_order_release);
}

}  // namespace platform
