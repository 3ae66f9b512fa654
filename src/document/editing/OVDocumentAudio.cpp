#include "document/editing/OVDocumentAudio.h"

#include <utility>

std::shared_ptr<OVAudioBufferInterface> OVDocumentAudio::buffer() const {
  const std::lock_guard lock(mutex_);
  return buffer_;
}

// The former buffer is released with the parameter, after the lock.
void OVDocumentAudio::setBuffer(std::shared_ptr<OVAudioBufferInterface> buffer) {
  const std::lock_guard lock(mutex_);
  buffer_.swap(buffer);
}

std::uint64_t OVDocumentAudio::bytesPerFrame() const {
  const auto audio = buffer();
  return audio ? audio->format().mBytesPerFrame : 0;
}

std::uint64_t OVDocumentAudio::sizeInFrames() const {
  const auto audio = buffer();
  return audio ? audio->bufferSizeInFrames() : 0;
}

double OVDocumentAudio::secondsOfFrames(std::uint64_t frames) const {
  const auto audio = buffer();
  return audio ? static_cast<double>(frames) / audio->format().mSampleRate : 0.0;
}

double OVDocumentAudio::fractionOfFrames(std::uint64_t frames) const {
  const std::uint64_t size = sizeInFrames();
  return size == 0 ? 0.0 : static_cast<double>(frames) / static_cast<double>(size);
}
