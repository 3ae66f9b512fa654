#pragma once

#include <cstdint>
#include <memory>

#include "storage/OVAudioBufferInterface.h"

/// Notifications from a buffer to its delegate, if it still exists. Hold no lock of the buffer.
///
/// Threads: any. Real-time: not safe.

/// Notifies of a write; first of its failure, if `error` (an errno) is not 0.
void notifyOfWrite(const std::weak_ptr<OVAudioBufferDelegate>& delegate, const void* data,
                   std::uint64_t atByteOffset, std::uint32_t withSize, int error);

/// Notifies of a failure with no write following.
void notifyOfFailedWrite(const std::weak_ptr<OVAudioBufferDelegate>& delegate, int error);

/// Notifies of a read that did not get all bytes from storage; an errno of 0 becomes EIO.
void notifyOfFailedRead(const std::weak_ptr<OVAudioBufferDelegate>& delegate, int error);
