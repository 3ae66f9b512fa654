#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "platform/base/GuardedPointer.h"
#include "platform/base/SerialQueue.h"
#include "platform/files/TemporaryFiles.h"
#include "storage/OVAudioBufferInterface.h"

/// The audio of a recording, flat in a temporary file: the byte at an offset of the recording is
/// the byte at that offset of the file, and writing over audio changes it in place. A cache in
/// memory of ten seconds, filled ahead of the reader, serves reads that go on from each other. No
/// undo, no reversal.
///
/// A second implementation of the interface, interchangeable with the block list where undo is not
/// needed; no document of the application makes one. Its file has a name, "orvo_" and six more
/// characters with the extension "flt", registered with the application for deletion at its end,
/// and deleted when the buffer goes.
///
/// Offsets, counts and sizes are in bytes, positions of cuts and of powerAtPosition() in frames of
/// 8 bytes.
///
/// Locks. `bufferLock` ("buffer lock") guards the file and its size through every transfer, so a
/// read never sees half a write, and waits for a slow disk with the rest. The cache has a short
/// lock of its own inside it: its three fields belong together, and reading them while a fill
/// changes them would be undefined. It is not held while the file is read, so a read that the cache
/// does not serve never waits for it. A fill publishes its bytes and their position together before
/// it releases bufferLock: a write, which empties the cache after it has released bufferLock,
/// always empties it of what stood there before. Bytes of before a cut can be served until the
/// cache is filled again.
///
/// Threads: any, at the same time; lock() and unlock() in pairs on one thread, and between them
/// only the operations that say they take no lock. Real-time: not safe.
class OVDiskAudioBuffer : public OVAudioBufferInterface,
                          public std::enable_shared_from_this<OVDiskAudioBuffer> {
 public:
  /// Ten seconds, in bytes.
  static constexpr std::uint64_t kCacheCapacity =
      10 * platform::kWorkingRate * platform::kWorkingFrameBytes;
  /// A cut before a position that would keep fewer bytes keeps none: the audio that stays is
  /// thought of as 512 chunks of whole bytes, and with less than that a chunk has none.
  static constexpr std::uint64_t kSmallestKept = 512;

  /// An empty buffer with a temporary file of its own. Null when the file cannot be made, which is
  /// told in a modal alert.
  [[nodiscard]] static std::shared_ptr<OVDiskAudioBuffer> init();
  ~OVDiskAudioBuffer() override;
  OVDiskAudioBuffer(const OVDiskAudioBuffer&) = delete;
  OVDiskAudioBuffer& operator=(const OVDiskAudioBuffer&) = delete;

  /// Writes the bytes in their place and empties the cache. Bytes that were never written before it
  /// read as zeros. What the disk does not take counts as written all the same, and the delegate
  /// hears of the errno first. A write that would end past the highest address is refused with a
  /// console line.
  void writeData(const void* data, std::uint64_t atByteOffset, std::uint32_t withSize) override;

  /// From the cache where it holds all that is asked for, to the byte; otherwise as
  /// readDataIntoNoCache(), and a fill of the cache from `fromOffset` on is put into the queue
  /// unless one stands there.
  [[nodiscard]] BufferReadResult readDataInto(void* destination, std::uint64_t withSize,
                                              std::uint64_t fromOffset) override;
  /// From the file, in whole frames; the cache stays as it is. The delegate hears of what the file
  /// does not give back.
  [[nodiscard]] BufferReadResult readDataIntoNoCache(void* destination, std::uint64_t withSize,
                                                     std::uint64_t fromOffset);

  /// Copies `withSize` bytes from the cache if it holds all of them, and gives their number,
  /// otherwise 0. Fills the cache anew from `fromPosition` on, before it returns, when less than
  /// four times as much remains behind them and no other fill is under way.
  [[nodiscard]] std::uint64_t getDataFromCache(void* destination, std::uint64_t fromPosition,
                                               std::uint64_t withSize);
  /// Reads what the file has from a byte offset on, up to the cache's capacity, into the cache. The
  /// cache is empty until then.
  void fillCacheFromPosition(std::uint64_t byteOffset);
  void discardCache();

  [[nodiscard]] platform::AudioStreamBasicDescription format() const override;

  /// All three the size of the recording in whole frames. Take no lock.
  [[nodiscard]] std::uint64_t bufferCapacityInFrames() const;
  [[nodiscard]] std::uint64_t bufferSizeInFrames() const override;
  [[nodiscard]] std::uint64_t bufferFillSizeInFrames() const override;

  /// The recording ends at `frames`, with silence where that is beyond its old end. The cache keeps
  /// what it holds. A file that cannot be cut is told on the console.
  void cutoffBufferAfterPosition(std::uint64_t frames) override;

  /// Copies what follows `frames` into a new file, which takes the place of the old one; past the
  /// end that is nothing. The cache keeps what it holds. When the new file cannot be made (told in
  /// a modal alert) or filled (told to the delegate as a failed write, with no write following),
  /// the recording stays as it was.
  void cutoffBufferBeforePosition(std::uint64_t frames) override;

  /// Nothing, all four: what was written over is gone.
  void reverseBuffer() override;
  void setWaypoint() override;
  void undo() override;
  void redo() override;

  void lock() override;
  void unlock() override;

  /// Mean of the two channels of a frame, signed; 0.0 for what the file does not hold.
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
  [[nodiscard]] const std::string& f_file_name() const { return f_file_name_; }

  /// The cache as it stands. Take only its own lock.
  [[nodiscard]] std::uint64_t cache_fillsize() const;
  [[nodiscard]] std::uint64_t cached_position() const;
  /// A fill is running or stands in the queue.
  [[nodiscard]] bool cacheFilling() const { return cacheFilling_; }

 private:
  explicit OVDiskAudioBuffer(platform::TemporaryFile created);

  [[nodiscard]] static platform::TemporaryFiles::Created createFile();
  [[nodiscard]] BufferReadResult resultOf(void* destination, std::uint64_t byteCount) const;
  void emptyCacheAt(std::uint64_t position);

  const platform::AudioStreamBasicDescription format_;
  mutable std::mutex bufferLock_;

  // Guarded by bufferLock_.
  std::unique_ptr<platform::File> f_file_;
  std::string f_file_name_;

  // Written with bufferLock_ held, read without it by the size getters; it stands for itself.
  std::atomic<std::uint64_t> f_size_{0};

  // Innermost: nothing is locked under it.
  mutable std::mutex cacheLock_;

  // Guarded by cacheLock_, except that the holder of bufferLock_ alone fills cacheBuffer_, without
  // it, while cache_fillsize_ is 0 and nobody looks at the bytes.
  std::vector<std::byte> cacheBuffer_;
  std::uint64_t cache_fillsize_ = 0;
  std::uint64_t cached_position_ = 0;

  // Keeps fills from doubling, no more. Set by whoever is about to fill or to queue a fill, cleared
  // by the fill.
  std::atomic<bool> cacheFilling_{false};

  std::atomic<std::uint64_t> framesToPlay_{0};
  platform::GuardedPointer<std::weak_ptr<OVAudioBufferDelegate>> delegate_;
  platform::SerialQueue q_{"disk buffer"};
};
