#include "storage/DelegateNotification.h"

#include <cerrno>

void notifyOfWrite(const std::weak_ptr<OVAudioBufferDelegate>& delegate, const void* data,
                   std::uint64_t atByteOffset, std::uint32_t withSize, int error) {
  const auto living = delegate.lock();
  if (living == nullptr) {
    return;
  }
  if (error != 0) {
    living->audioBufferFailedToWrite(error);
  }
  living->audioBufferDidWriteData(data, atByteOffset, withSize);
}

void notifyOfFailedWrite(const std::weak_ptr<OVAudioBufferDelegate>& delegate, int error) {
  if (const auto living = delegate.lock()) {
    living->audioBufferFailedToWrite(error);
  }
}

void notifyOfFailedRead(const std::weak_ptr<OVAudioBufferDelegate>& delegate, int error) {
  if (const auto living = delegate.lock()) {
    living->audioBufferFailedToRead(error != 0 ? error : EIO);
  }
}
