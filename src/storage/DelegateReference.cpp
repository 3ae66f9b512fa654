#include "storage/DelegateReference.h"

#include <cerrno>

void DelegateReference::tellWrite(const void* data, std::uint64_t atByteOffset,
                                  std::uint32_t withSize, int error) const {
  const auto delegate = get().lock();
  if (delegate == nullptr) {
    return;
  }
  if (error != 0) {
    delegate->audioBufferFailedToWrite(error);
  }
  delegate->audioBufferDidWriteData(data, atByteOffset, withSize);
}

void DelegateReference::tellFailure(int error) const {
  if (const auto delegate = get().lock()) {
    delegate->audioBufferFailedToWrite(error);
  }
}

void DelegateReference::tellFailedRead(int error) const {
  if (const auto delegate = get().lock()) {
    delegate->audioBufferFailedToRead(error != 0 ? error : EIO);
  }
}
