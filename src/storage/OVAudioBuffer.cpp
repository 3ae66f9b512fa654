#include "storage/OVAudioBuffer.h"

#include <algorithm>
#include <cerrno>
#include <cinttypes>
#include <cmath>
#include <cstring>
#include <limits>
#include <new>
#include <stdexcept>
#include <utility>

#include "platform/base/ApplicationServices.h"
#include "storage/BufferTransfer.h"
#include "storage/DelegateNotification.h"

namespace {

constexpr auto kHighestAddress = std::numeric_limits<std::uint64_t>::max();

// Ten seconds, in bytes.
constexpr std::uint64_t kInitialCapacity =
    std::uint64_t{10} * platform::kWorkingRate * platform::kWorkingFrameBytes;

// The capacity that exceeds `end`, repeatedly grown by half; 0 for none.
std::uint64_t capacityBeyond(std::uint64_t capacity, std::uint64_t end) {
  if (capacity < 2) {
    capacity = kInitialCapacity;  // growing by half would not help
  }
  while (capacity <= end) {
    if (capacity / 2 > kHighestAddress - capacity) {
      return 0;
    }
    capacity += capacity / 2;
  }
  return capacity;
}

}  // namespace

OVAudioBuffer::OVAudioBuffer()
    : format_(platform::kWorkingFormat),
      sampleBuffer_(kInitialCapacity),
      bufferCapacity_(kInitialCapacity) {}

OVAudioBuffer::~OVAudioBuffer() = default;

std::shared_ptr<OVAudioBuffer> OVAudioBuffer::init() {
  return std::shared_ptr<OVAudioBuffer>(new OVAudioBuffer);
}

void OVAudioBuffer::writeData(const void* data, std::uint64_t atByteOffset,
                              std::uint32_t withSize) {
  if (refuseIfPastAddressSpace(atByteOffset, withSize)) {
    return;
  }
  const std::uint64_t end = atByteOffset + withSize;
  bool hasRoom = true;
  {
    const platform::MutexLock lock(bufferLock_);
    hasRoom = end < bufferCapacity_ || growBeyond(end);
    if (hasRoom && withSize > 0) {
      std::memcpy(sampleBuffer_.data() + atByteOffset, data, withSize);
    }
    if (hasRoom && end > bufferFillSize_) {
      bufferFillSize_ = end;
    }
  }
  notifyOfWrite(delegate_.get(), data, atByteOffset, withSize, hasRoom ? 0 : ENOMEM);
}

bool OVAudioBuffer::growBeyond(std::uint64_t end) {
  const std::uint64_t capacity = capacityBeyond(bufferCapacity_, end);
  try {
    if (capacity == 0 || capacity > sampleBuffer_.max_size()) {
      return false;
    }
    sampleBuffer_.resize(capacity);
  } catch (const std::bad_alloc&) {
    return false;
  }
  bufferCapacity_ = capacity;
  return true;
}

BufferReadResult OVAudioBuffer::readDataInto(void* destination, std::uint64_t withSize,
                                             std::uint64_t fromOffset) {
  const std::uint64_t fillSize = bufferFillSize_;
  if (fillSize == 0 || fromOffset >= fillSize) {
    return {};
  }
  const platform::MutexLock lock(bufferLock_);
  const std::uint64_t count = readableFrom(fromOffset, withSize);
  if (count == 0) {
    return {};
  }
  std::memcpy(destination, sampleBuffer_.data() + fromOffset, count);
  return {.data = static_cast<float*>(destination),
          .frameCount = count / format_.mBytesPerFrame,
          .byteCount = count};
}

// Bytes of a read inside both the recording and the block: the length can have underflowed, and the
// recording can have been cut since its length was read.
std::uint64_t OVAudioBuffer::readableFrom(std::uint64_t offset, std::uint64_t byteCount) const {
  const std::uint64_t end = std::min<std::uint64_t>(bufferFillSize_, sampleBuffer_.size());
  return offset < end ? std::min(byteCount, end - offset) : 0;
}

BufferReadResult OVAudioBuffer::readDataIntoNoCache(void* destination, std::uint64_t withSize,
                                                    std::uint64_t fromOffset) {
  return readDataInto(destination, withSize, fromOffset);
}

platform::AudioStreamBasicDescription OVAudioBuffer::format() const {
  return platform::kWorkingFormat;
}

std::uint64_t OVAudioBuffer::bufferCapacityInFrames() const {
  return bufferCapacity_ / format_.mBytesPerFrame;
}

std::uint64_t OVAudioBuffer::bufferSizeInFrames() const {
  return bufferFillSize_ / format_.mBytesPerFrame;
}

std::uint64_t OVAudioBuffer::bufferFillSizeInFrames() const {
  return bufferFillSize_ / format_.mBytesPerFrame;
}

void OVAudioBuffer::cutoffBufferAfterPosition(std::uint64_t frames) {
  const platform::MutexLock lock(bufferLock_);
  const std::uint64_t position = frames * format_.mBytesPerFrame;
  if (position > bufferCapacity_) {
    return;
  }
  sampleBuffer_.resize(position);
  sampleBuffer_.shrink_to_fit();
  bufferCapacity_ = position;
  bufferFillSize_ = position;
}

void OVAudioBuffer::cutoffBufferBeforePosition(std::uint64_t frames) {
  const platform::MutexLock lock(bufferLock_);
  const std::uint64_t position = frames * format_.mBytesPerFrame;
  if (position >= bufferCapacity_) {
    return;
  }
  bufferCapacity_ -= position;
  std::memmove(sampleBuffer_.data(), sampleBuffer_.data() + position, bufferCapacity_);
  bufferFillSize_ -= position;
}

void OVAudioBuffer::reverseBuffer() {
  const platform::MutexLock lock(bufferLock_);
  constexpr std::size_t kSample = sizeof(std::uint32_t);  // bits are moved, not interpreted
  const std::uint64_t length = std::min<std::uint64_t>(bufferFillSize_, sampleBuffer_.size());
  std::byte* const samples = sampleBuffer_.data();
  for (std::size_t left = 0, right = length / kSample; left + 1 < right; ++left) {
    --right;
    std::swap_ranges(samples + left * kSample, samples + (left + 1) * kSample,
                     samples + right * kSample);
  }
}

void OVAudioBuffer::setWaypoint() {
  bool copied = false;
  {
    const platform::MutexLock lock(bufferLock_);
    copied = makeCopy();
  }
  if (!copied) {
    ConsoleLog("could not keep a copy of %" PRIu64 " bytes for undo: out of memory",
               bufferCapacity_.load());
  }
}

bool OVAudioBuffer::makeCopy() {
  tmpBuffer_.reset();  // released first, so that at most two copies exist
  tmpBufferFillSize_ = 0;
  tmpBufferCapacity_ = 0;
  try {
    tmpBuffer_ = std::make_unique<Samples>(
        sampleBuffer_.begin(),
        sampleBuffer_.begin() + static_cast<std::ptrdiff_t>(bufferCapacity_.load()));
  } catch (const std::bad_alloc&) {
    return false;
  }
  tmpBufferFillSize_ = bufferFillSize_;
  tmpBufferCapacity_ = bufferCapacity_;
  return true;
}

void OVAudioBuffer::undo() {
  exchangeWithCopy();
}

void OVAudioBuffer::redo() {
  exchangeWithCopy();
}

void OVAudioBuffer::exchangeWithCopy() {
  const platform::MutexLock lock(bufferLock_);
  if (tmpBuffer_ == nullptr) {
    return;
  }
  std::swap(sampleBuffer_, *tmpBuffer_);
  tmpBufferFillSize_ = bufferFillSize_.exchange(tmpBufferFillSize_);
  tmpBufferCapacity_ = bufferCapacity_.exchange(tmpBufferCapacity_);
}

void OVAudioBuffer::lock() {
  bufferLock_.lock();
}

void OVAudioBuffer::unlock() {
  bufferLock_.unlock();
}

double OVAudioBuffer::powerAtPosition(std::uint64_t position) {
  float samples[2] = {};
  const std::uint64_t sampleCount = sampleBuffer_.size() / sizeof(float);
  if (sampleCount < 2 || position > sampleCount - 2) {
    return 0.0;
  }
  std::memcpy(samples, sampleBuffer_.data() + position * sizeof(float), sizeof samples);
  return (std::abs(static_cast<double>(samples[0])) + std::abs(static_cast<double>(samples[1]))) *
         0.5;
}

float* OVAudioBuffer::exposeBuffer() {
  return reinterpret_cast<float*>(sampleBuffer_.data());
}

std::weak_ptr<OVAudioBufferDelegate> OVAudioBuffer::delegate() const {
  return delegate_.get();
}

void OVAudioBuffer::setDelegate(std::weak_ptr<OVAudioBufferDelegate> delegate) {
  delegate_.set(std::move(delegate));
}
