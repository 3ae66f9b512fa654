#pragma once

#include <cstdint>
#include <memory>

#include "platform/base/AudioTypes.h"

/// Result of a read. All three fields are zero, including the pointer, when nothing was read.
struct BufferReadResult {
  float* data = nullptr;         ///< the destination passed in
  std::uint64_t frameCount = 0;  ///< whole frames read (byteCount / mBytesPerFrame)
  std::uint64_t byteCount = 0;   ///< bytes read
};

/// Notified of every write to a buffer and of every storage failure.
class OVAudioBufferDelegate {
 public:
  virtual ~OVAudioBufferDelegate() = default;

  /// Called after every write with exactly its arguments: the caller's data, the byte offset and
  /// the byte count.
  ///
  /// Threads: the writer's, after the buffer's lock was released.
  /// Real-time: not safe.
  virtual void audioBufferDidWriteData(const void* data, std::uint64_t atByteOffset,
                                       std::uint32_t withSize) = 0;

  /// Part of the protocol; no buffer calls it.
  virtual void audioBufferDidReadData(const void* object) { static_cast<void>(object); }

  /// The storage could not store a write (`error` is an errno value, ENOSPC for a full disk). The
  /// write is mapped all the same; audioBufferDidWriteData() follows. Called for every failed
  /// write: the delegate decides how often to alert the user.
  ///
  /// Threads: the writer's, after the buffer's lock was released.
  /// Real-time: not safe.
  virtual void audioBufferFailedToWrite(int error) { static_cast<void>(error); }

  /// The storage could not return bytes that it holds (`error` is an errno value, EIO where the
  /// system gives no reason); the read ends before them. Called for every failed read: the delegate
  /// decides how often to alert the user.
  ///
  /// Threads: the reader's, after the buffer's lock was released.
  /// Real-time: not safe.
  virtual void audioBufferFailedToRead(int error) { static_cast<void>(error); }
};

/// The audio of one document. All kinds of storage are interchangeable behind this interface.
///
/// Offsets and counts of transfers are in bytes, sizes and cut positions in frames; a frame is
/// format().mBytesPerFrame bytes. Each buffer guards itself with one non-recursive lock.
///
/// Threads: any, unless noted. Real-time: not safe: it locks and may access files.
class OVAudioBufferInterface {
 public:
  virtual ~OVAudioBufferInterface() = default;

  /// Stores `withSize` bytes at a byte offset, overwriting existing audio, then notifies the
  /// delegate.
  virtual void writeData(const void* data, std::uint64_t atByteOffset, std::uint32_t withSize) = 0;

  /// Copies up to `withSize` bytes from a byte offset. Short at the end and at holes; the rest of
  /// the destination is left as it was.
  [[nodiscard]] virtual BufferReadResult readDataInto(void* destination, std::uint64_t withSize,
                                                      std::uint64_t fromOffset) = 0;

  /// Always platform::kWorkingFormat.
  [[nodiscard]] virtual platform::AudioStreamBasicDescription format() const = 0;

  /// Length of the recording in frames, read without the lock.
  [[nodiscard]] virtual std::uint64_t bufferSizeInFrames() const = 0;
  [[nodiscard]] virtual std::uint64_t bufferFillSizeInFrames() const = 0;

  /// Drops everything from a frame position on.
  virtual void cutoffBufferAfterPosition(std::uint64_t frames) = 0;
  /// Drops everything before a frame position and moves the rest to the start.
  virtual void cutoffBufferBeforePosition(std::uint64_t frames) = 0;
  /// Reverses the samples if the storage supports it (OVAudioBuffer); otherwise does nothing.
  virtual void reverseBuffer() = 0;

  /// Saves the current state for undo().
  virtual void setWaypoint() = 0;
  virtual void undo() = 0;
  virtual void redo() = 0;
  /// Restores and forgets the last waypoint, for a step that failed: undo() and redo() then behave
  /// as before that step. Same as undo() if the storage keeps no stack of waypoints.
  virtual void rollBack() { undo(); }

  /// Takes and releases the buffer's lock.
  virtual void lock() = 0;
  virtual void unlock() = 0;

  /// A level at a position; its unit and meaning depend on the implementation.
  [[nodiscard]] virtual double powerAtPosition(std::uint64_t position) = 0;

  [[nodiscard]] virtual std::weak_ptr<OVAudioBufferDelegate> delegate() const = 0;
  /// Not owning: an expired delegate is not called.
  virtual void setDelegate(std::weak_ptr<OVAudioBufferDelegate> delegate) = 0;

 protected:
  OVAudioBufferInterface() = default;
  OVAudioBufferInterface(const OVAudioBufferInterface&) = default;
  OVAudioBufferInterface& operator=(const OVAudioBufferInterface&) = default;
};
