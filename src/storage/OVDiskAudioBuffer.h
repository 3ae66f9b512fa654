#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/base/GuardedPointer.h"
#include "platform/base/Mutex.h"
#include "platform/base/SerialQueue.h"
#include "platform/files/TemporaryFiles.h"
#include "storage/OVAudioBufferInterface.h"

/// The audio of a recording, flat in a temporary file: each byte has the same offset in the
/// recording and in the file, and overwriting changes it in place. A memory cache of ten seconds,
/// filled ahead of the reader, serves sequential reads. No undo, no reversal.
///
/// Interchangeable with the block list where undo is not needed; no document of the application
/// uses it. Its file is named "orvo_" plus six characters with the extension "flt", registered with
/// the application for deletion on exit, and deleted with the buffer.
///
/// Offsets, counts and sizes are in bytes, positions of cuts and of powerAtPosition() in frames of
/// 8 bytes.
///
/// Locks. `bufferLock` ("buffer lock") guards the file and its size during every transfer, so a
/// read never sees half a write, but waits for other transfers on a slow disk. Inside it, the cache
/// has its own short lock for its three fields, which change together. That lock is not held while
/// the file is read, so a read that misses the cache never waits for it. A fill publishes its bytes
/// and their position together before it releases bufferLock. A write empties the cache after
/// releasing bufferLock, so it always discards older bytes. After a cut, bytes from before it can
/// be served until the cache is filled again.
///
/// Threads: any, concurrently; lock() and unlock() in pairs on one thread, and between them only
/// operations documented to take no lock. Real-time: not safe.
class OVDiskAudioBuffer : public OVAudioBufferInterface,
                          public std::enable_shared_from_this<OVDiskAudioBuffer> {
 public:
  /// Ten seconds, in bytes.
  static constexpr std::uint64_t kCacheCapacity =
      std::uint64_t{10} * platform::kWorkingRate * platform::kWorkingFrameBytes;
  /// cutoffBufferBeforePosition() keeps no audio if fewer bytes would remain: it treats the
  /// remaining audio as 512 chunks of whole bytes, which would then be empty.
  static constexpr std::uint64_t kSmallestKept = 512;

  /// An empty buffer with its own temporary file. Null when the file cannot be created, which a
  /// modal alert reports.
  [[nodiscard]] static std::shared_ptr<OVDiskAudioBuffer> init();
  ~OVDiskAudioBuffer() override;
  OVDiskAudioBuffer(const OVDiskAudioBuffer&) = delete;
  OVDiskAudioBuffer& operator=(const OVDiskAudioBuffer&) = delete;

  /// Writes the bytes in place and empties the cache. Bytes skipped before the offset read as
  /// zeros. Bytes that could not be written count as written all the same, and the delegate is
  /// notified of the errno first. A write that would end past the highest address is refused and
  /// logged to the console.
  void writeData(const void* data, std::uint64_t atByteOffset, std::uint32_t withSize) override;

  /// Reads from the cache if it holds every requested byte. Otherwise reads as
  /// readDataIntoNoCache() does, and queues a fill of the cache from `fromOffset` on unless one is
  /// queued already.
  [[nodiscard]] BufferReadResult readDataInto(void* destination, std::uint64_t withSize,
                                              std::uint64_t fromOffset) override;
  /// Reads from the file, in whole frames; the cache stays unchanged. The delegate is notified of
  /// bytes that the file does not return.
  [[nodiscard]] BufferReadResult readDataIntoNoCache(void* destination, std::uint64_t withSize,
                                                     std::uint64_t fromOffset);

  /// Copies `withSize` bytes from the cache if it holds all of them, and returns their number,
  /// otherwise 0. Before returning it refills the cache from `fromPosition` on if less than four
  /// times as much remains after them and no other fill is under way.
  [[nodiscard]] std::uint64_t getDataFromCache(void* destination, std::uint64_t fromPosition,
                                               std::uint64_t withSize);
  /// Reads from the file into the cache, from a byte offset on, up to the cache's capacity. The
  /// cache is empty meanwhile.
  void fillCacheFromPosition(std::uint64_t byteOffset);
  void discardCache();

  [[nodiscard]] platform::AudioStreamBasicDescription format() const override;

  /// All three return the size of the recording in whole frames. Take no lock.
  [[nodiscard]] std::uint64_t bufferCapacityInFrames() const;
  [[nodiscard]] std::uint64_t bufferSizeInFrames() const override;
  [[nodiscard]] std::uint64_t bufferFillSizeInFrames() const override;

  /// The recording ends at `frames`, extended with silence if that is beyond its old end. The cache
  /// keeps its content. Failure to resize the file is logged to the console.
  void cutoffBufferAfterPosition(std::uint64_t frames) override;

  /// Copies the audio after `frames` (none past the end) into a new file, which replaces the old
  /// one. The cache keeps its content. The recording stays unchanged if the new file cannot be
  /// created (a modal alert reports it) or filled (the delegate is notified of a failed write with
  /// no write following).
  void cutoffBufferBeforePosition(std::uint64_t frames) override;

  /// All four do nothing: overwritten audio is gone.
  void reverseBuffer() override;
  void setWaypoint() override;
  void undo() override;
  void redo() override;

  void lock() override ACQUIRE(bufferLock_);
  void unlock() override RELEASE(bufferLock_);

  /// Mean of the two channels of a frame, signed; 0.0 for a frame not in the file.
  [[nodiscard]] double powerAtPosition(std::uint64_t position) override;

  /// Deletes the file at a path, if one is given; an error is ignored.
  static void removeTempFile(const std::optional<std::string>& path);

  [[nodiscard]] std::weak_ptr<OVAudioBufferDelegate> delegate() const override;
  void setDelegate(std::weak_ptr<OVAudioBufferDelegate> delegate) override;

  /// Kept for callers; the buffer does not use it.
  [[nodiscard]] std::uint64_t framesToPlay() const { return framesToPlay_; }
  void setFramesToPlay(std::uint64_t frames) { framesToPlay_ = frames; }

  /// Size of the recording in bytes: the highest end written, or the last cut. Takes no lock.
  [[nodiscard]] std::uint64_t f_size() const { return f_size_.load(std::memory_order_relaxed); }
  /// Takes no lock: call it between lock() and unlock(), or while no other thread cuts.
  [[nodiscard]] const std::string& f_file_name() const NO_THREAD_SAFETY_ANALYSIS {
    return f_file_name_;
  }

  /// The cache's current state. Take only its own lock.
  [[nodiscard]] std::uint64_t cache_fillsize() const;
  [[nodiscard]] std::uint64_t cached_position() const;
  /// A fill is running or queued.
  [[nodiscard]] bool cacheFilling() const { return cacheFilling_; }

 private:
  explicit OVDiskAudioBuffer(platform::TemporaryFile created);

  [[nodiscard]] static platform::TemporaryFiles::Created createFile();
  [[nodiscard]] BufferReadResult resultOf(void* destination, std::uint64_t byteCount) const;
  void emptyCacheAt(std::uint64_t position) EXCLUDES(cacheLock_);

  const platform::AudioStreamBasicDescription format_;
  mutable platform::Mutex bufferLock_;

  std::unique_ptr<platform::File> f_file_ GUARDED_BY(bufferLock_) PT_GUARDED_BY(bufferLock_);
  std::string f_file_name_ GUARDED_BY(bufferLock_);

  // Written with bufferLock_ held, read without it by the size getters; independent of other state.
  std::atomic<std::uint64_t> f_size_{0};

  // Innermost: nothing is locked under it.
  mutable platform::Mutex cacheLock_;

  // Read with cacheLock_; filled with bufferLock_ alone, while cache_fillsize_ is 0 and no thread
  // reads the bytes. The compiler cannot check that.
  std::vector<std::byte> cacheBuffer_;
  std::uint64_t cache_fillsize_ GUARDED_BY(cacheLock_) = 0;
  std::uint64_t cached_position_ GUARDED_BY(cacheLock_) = 0;

  // Only prevents duplicate fills. Set before filling or queueing a fill, cleared by the fill.
  std::atomic<bool> cacheFilling_{false};

  std::atomic<std::uint64_t> framesToPlay_{0};
  platform::GuardedPointer<std::weak_ptr<OVAudioBufferDelegate>> delegate_;
  platform::SerialQueue q_{"disk buffer"};
};
