#include "platform/sound/QueueBuffers.h"

#include <algorithm>
#include <utility>

namespace platform {

Result<AudioQueueBuffer*, AudioStatus> QueueBuffers::allocate(std::uint32_t byteCapacity) {
  if (byteCapacity == 0 || byteCapacity % kWorkingFrameBytes != 0 ||
      buffers_.size() == kMaxBuffers) {
    return kInvalidParameterStatus;
  }
  auto owned = std::make_unique<Owned>();
  owned->samples.resize(byteCapacity / sizeof(float));
  owned->buffer.mAudioData = reinterpret_cast<std::byte*>(owned->samples.data());
  owned->buffer.mAudioDataBytesCapacity = byteCapacity;
  buffers_.push_back(std::move(owned));
  return &buffers_.back()->buffer;
}

QueueBuffers::Owned* QueueBuffers::find(const AudioQueueBuffer* buffer) {
  const auto found = std::find_if(buffers_.begin(), buffers_.end(),
                                  [&](const auto& owned) { return &owned->buffer == buffer; });
  return found == buffers_.end() ? nullptr : found->get();
}

AudioStatus QueueBuffers::markEnqueued(const AudioQueueBuffer* buffer) {
  Owned* owned = find(buffer);
  if (owned == nullptr || owned->enqueued ||
      buffer->mAudioDataByteSize > buffer->mAudioDataBytesCapacity) {
    return kInvalidParameterStatus;
  }
  owned->enqueued = true;
  return kAudioStatusOk;
}

void QueueBuffers::markReturned(const AudioQueueBuffer* buffer) {
  if (Owned* owned = find(buffer)) {
    owned->enqueued = false;
  }
}

std::uint32_t QueueBuffers::smallestFrames() const {
  std::uint32_t bytes = 0;
  for (const auto& owned : buffers_) {
    const std::uint32_t capacity = owned->buffer.mAudioDataBytesCapacity;
    bytes = bytes == 0 ? capacity : std::min(bytes, capacity);
  }
  return bytes / kWorkingFrameBytes;
}

}  // namespace platform
