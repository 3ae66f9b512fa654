#pragma once

#include <cstdint>
#include <memory>

#include "storage/OVAudioBufferInterface.h"

/// How a buffer notifies its delegate, if that still lives. Hold no lock of the buffer.
///
/// Threads: any. Real-time: not safe.

/// Notifies of a write, and before that of the errno with which it failed; 0 for none.
void notifyOfWrite(const std::weak_ptr<OVAudioBufferDelegate>& delegate, const void* data,
                   std::uint64_t atByteOffset, std::uint32_t withSize, int error);

/// Notifies of a failure that no write follows.
void notifyOfFailedWrite(const std::weak_ptr<OVAudioBufferDelegate>& delegate, int error);

/// Notifies of a read for which storage did not return all bytes; an errno of 0 becomes EIO.
void notifyOfFailedRead(const std::weak_ptr<OVAudioBufferDelegate>& delegate, int error);
