#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/base/GuardedPointer.h"
#include "platform/base/Mutex.h"
#include "platform/files/TemporaryFiles.h"
#include "storage/BlockJournal.h"
#include "storage/BlockList.h"
#include "storage/FileStretch.h"
#include "storage/OVAudioBufferInterface.h"
#include "storage/OVBufferState.h"

/// Position of a linear address in the temporary file.
struct BlockLocation {
  std::uint64_t fileOffset = 0;
  std::uint64_t bytesAvailable = 0;  ///< from the address to the end of its block
  bool notFound = true;              ///< past the end, or in a hole
};

/// The audio of a document: a list of blocks over one append-only temporary file. Overwriting,
/// cutting and undo change only the list. The file keeps every byte ever written until the buffer
/// is destroyed, except what a step that was rolled back had written, and has no name.
///
/// Addresses, offsets and sizes are in bytes, positions of cuts and of powerAtPosition() in frames
/// of 8 bytes. Undo is many levels deep, redo one.
///
/// Locks. `bufferLock` guards the list, the length and the waypoints. It is held only while they
/// are read or changed, never during a file transfer. The bytes of a mapped block never change, so
/// a read looks up its stretches under the lock and transfers them afterwards: it returns the
/// recording as it was at the lookup and waits for no other transfer. `appendLock` serializes
/// writers: each holds it from reserving its place at the end of the file until its block is
/// mapped, so blocks are mapped in file order. It is always taken before bufferLock. `journalLock`
/// is held while room for the journal is made; also taken before bufferLock.
///
/// Threads: any, concurrently; lock() and unlock() in pairs on one thread, and between them only
/// operations documented to take no lock. Real-time: not safe.
class OVBlockBuffer : public OVAudioBufferInterface {
 public:
  /// See rollBack().
  static constexpr std::chrono::seconds kReadsPatience{2};

  /// Why a temporary file could not be created, in the user's language.
  using Explanation = std::function<std::string(const platform::NoTemporaryFile&)>;

  /// An empty buffer with its own temporary file. Null when the file cannot be created, which a
  /// modal alert reports, with the explanation, if any, below its message.
  [[nodiscard]] static std::shared_ptr<OVBlockBuffer> init(const Explanation& explanation = {});
  ~OVBlockBuffer() override;
  OVBlockBuffer(const OVBlockBuffer&) = delete;
  OVBlockBuffer& operator=(const OVBlockBuffer&) = delete;

  /// Appends the bytes to the file and maps them at the offset; every 21st write merges
  /// neighbouring blocks. A write of no bytes maps an empty block. Bytes that could not be written
  /// are mapped all the same: the file's end advances by the whole count, so the lost stretch reads
  /// as silence, never as other audio. If the file cannot be extended either, reads stop at the gap
  /// until a later write extends it. The delegate is notified of the errno first. A write that
  /// would end past the highest address is refused and logged to the console.
  void writeData(const void* data, std::uint64_t atByteOffset, std::uint32_t withSize) override;

  /// Stops at the end of the recording, at a hole, and where the file returns no bytes, of which
  /// the delegate is notified. A count of 2^63 or more is refused and logged to the console. Takes
  /// no lock at or past the end.
  [[nodiscard]] BufferReadResult readDataInto(void* destination, std::uint64_t withSize,
                                              std::uint64_t fromOffset) override;

  /// Takes no lock: call it between lock() and unlock().
  [[nodiscard]] BlockLocation getFileOffsetForLinearAddress(std::uint64_t address) const
      REQUIRES(bufferLock_);

  /// Merges blocks that are neighbours in the list, in the recording and in the file.
  void optimize();

  [[nodiscard]] platform::AudioStreamBasicDescription format() const override;

  /// Both return the length in whole frames. Take no lock.
  [[nodiscard]] std::uint64_t bufferSizeInFrames() const override;
  [[nodiscard]] std::uint64_t bufferFillSizeInFrames() const override;

  /// The recording ends at `frames`. If that is beyond its old end, it becomes longer, with a hole.
  /// A block that starts at the position stays in the list and is heard again if the recording is
  /// extended past it without overwriting it.
  void cutoffBufferAfterPosition(std::uint64_t frames) override;

  /// The recording begins at `frames`. The length underflows for a position past the end.
  void cutoffBufferBeforePosition(std::uint64_t frames) override;

  /// Does nothing: a block list cannot be reversed.
  void reverseBuffer() override;

  void setWaypoint() override;

  /// Restores the waypoint below the last one restored (the lowest one repeatedly) and keeps the
  /// current state for redo(). Throws std::out_of_range when there is no waypoint; the state for
  /// redo() is replaced even then.
  void undo() override;

  /// Restores the state kept by the last undo(), once. Does not move among the waypoints.
  void redo() override;

  /// Throws std::out_of_range when there is no waypoint. Also gives back what was written since the
  /// last waypoint: the file is cut off and the next write appends there. What a block, a waypoint
  /// or the redo state maps is kept; so is everything if the file cannot be shortened. A read that
  /// is under way still finds its bytes, and so does the keeper while the journal lacks the roll
  /// back: they are given back before a later write, at the latest before one for which there is no
  /// room otherwise, which waits for the reads, up to kReadsPatience.
  void rollBack() override;

  void lock() override ACQUIRE(bufferLock_);
  void unlock() override RELEASE(bufferLock_);

  /// Mean of the two channels of a frame, signed; 1.0 past the end, in a hole, and for a frame
  /// split over two blocks.
  [[nodiscard]] double powerAtPosition(std::uint64_t position) override;

  /// From now on the changes are written to a journal, which lives as long as the buffer; the first
  /// call creates it. Null if there is no memory for one, of which the console has one line.
  BlockJournal* beginJournal(const BlockJournal::Origin& origin) EXCLUDES(bufferLock_);
  /// Null before beginJournal().
  [[nodiscard]] BlockJournal* journal() const { return journal_.load(std::memory_order_acquire); }
  /// The system's descriptor of the temporary file, open as long as the buffer lives; -1 for none.
  [[nodiscard]] int fileDescriptor() const { return f_file_->descriptor(); }

  /// Deletes the file at a path, if one is given; an error is ignored.
  static void removeTempFile(const std::optional<std::string>& path);

  [[nodiscard]] std::weak_ptr<OVAudioBufferDelegate> delegate() const override;
  void setDelegate(std::weak_ptr<OVAudioBufferDelegate> delegate) override;

  /// The current state. Take no lock: call them between lock() and unlock(), or while no other
  /// thread uses the buffer, which is why the compiler does not check them.
  [[nodiscard]] std::vector<OVBlock> blocklist() const NO_THREAD_SAFETY_ANALYSIS {
    return blocklist_.blocks();
  }
  [[nodiscard]] std::uint64_t f_write_pos() const NO_THREAD_SAFETY_ANALYSIS { return f_write_pos_; }
  [[nodiscard]] const std::vector<std::shared_ptr<const OVBufferState>>& waypointStack() const
      NO_THREAD_SAFETY_ANALYSIS {
    return waypointStack_;
  }
  [[nodiscard]] std::uint64_t waypointPos() const NO_THREAD_SAFETY_ANALYSIS { return waypointPos_; }
  [[nodiscard]] std::uint64_t prevWaypointPos() const NO_THREAD_SAFETY_ANALYSIS {
    return prevWaypointPos_;
  }
  [[nodiscard]] std::shared_ptr<const OVBufferState> redoState() const NO_THREAD_SAFETY_ANALYSIS {
    return redoState_;
  }
  [[nodiscard]] std::uint64_t blocksAddedSinceOptimization() const NO_THREAD_SAFETY_ANALYSIS {
    return blocksAddedSinceOptimization_;
  }

  /// Length in bytes. Any thread; takes no lock.
  [[nodiscard]] std::uint64_t bufferFillSize() const {
    return bufferFillSize_.load(std::memory_order_relaxed);
  }
  /// Path at which the file was created; it is unlinked.
  [[nodiscard]] const std::string& f_file_name() const { return f_file_name_; }

 private:
  OVBlockBuffer(std::unique_ptr<platform::File> file, std::string fileName);

  // Settles the journal at the end of a scope. Declared before the scope's lock, so that the lock
  // is released by then.
  class SettlingAfterwards {
   public:
    explicit SettlingAfterwards(OVBlockBuffer& buffer) : buffer_(buffer) {}
    ~SettlingAfterwards() { buffer_.settleJournal(); }
    SettlingAfterwards(const SettlingAfterwards&) = delete;
    SettlingAfterwards& operator=(const SettlingAfterwards&) = delete;

   private:
    OVBlockBuffer& buffer_;
  };

  // Counts a read from before its lookup until after its transfer.
  class ReadScope {
   public:
    explicit ReadScope(std::atomic<std::uint32_t>& reads) : reads_(reads) {
      reads_.fetch_add(1, std::memory_order_relaxed);
    }
    ~ReadScope() { reads_.fetch_sub(1, std::memory_order_release); }
    ReadScope(const ReadScope&) = delete;
    ReadScope& operator=(const ReadScope&) = delete;

   private:
    std::atomic<std::uint32_t>& reads_;
  };

  std::uint64_t mapAppended(std::uint64_t atByteOffset, std::uint32_t withSize)
      REQUIRES(appendLock_, bufferLock_);
  std::vector<FileStretch> stretches(std::uint64_t address, std::uint64_t byteCount) const
      REQUIRES(bufferLock_);
  void restore(const OVBufferState& state) REQUIRES(bufferLock_);
  void leaveStep();
  platform::FileTransfer append(const void* data, std::uint32_t withSize) REQUIRES(appendLock_)
      EXCLUDES(bufferLock_);
  /// Both return whether the file has become shorter.
  bool giveBackTail() REQUIRES(appendLock_, bufferLock_);
  [[nodiscard]] bool giveBackTailAfterReads() REQUIRES(appendLock_) EXCLUDES(bufferLock_);
  [[nodiscard]] std::uint64_t endOfMappedBytes() const REQUIRES(bufferLock_);
  void listChanged() REQUIRES(bufferLock_);
  [[nodiscard]] std::shared_ptr<const OVBufferState> keepState() const REQUIRES(bufferLock_);
  void settleJournal() EXCLUDES(bufferLock_);
  [[nodiscard]] int settle(BlockJournal& journal) REQUIRES(journalLock_) EXCLUDES(bufferLock_);
  void journalFailed(int error);

  // Fixed after construction.
  const std::unique_ptr<platform::File> f_file_;
  const std::string f_file_name_;
  const platform::AudioStreamBasicDescription format_;

  // Serializes writers, see above. Taken before bufferLock_.
  platform::Mutex appendLock_;
  mutable platform::Mutex bufferLock_;

  // Taken before bufferLock_.
  platform::Mutex journalLock_;
  // Set once, with both locks held; read without them. The buffer owns the journal.
  std::unique_ptr<BlockJournal> ownJournal_ GUARDED_BY(journalLock_);
  std::atomic<BlockJournal*> journal_{nullptr};
  std::atomic<bool> journalFailureTold_{false};  // independent, relaxed order is enough

  // Written only with both locks held, so that it may be read with either.
  std::uint64_t f_write_pos_ GUARDED_BY(appendLock_) = 0;
  // Where the file ends once a rolled-back step has been given back; none: nothing to give back.
  std::optional<std::uint64_t> tailToGiveBack_ GUARDED_BY(appendLock_);
  BlockList blocklist_ GUARDED_BY(bufferLock_);
  std::vector<std::shared_ptr<const OVBufferState>> waypointStack_ GUARDED_BY(bufferLock_);
  std::uint64_t waypointPos_ GUARDED_BY(bufferLock_) = 0;
  std::uint64_t lastWaypointWritePos_ GUARDED_BY(bufferLock_) = 0;  // f_write_pos_ at that moment
  std::uint64_t prevWaypointPos_ GUARDED_BY(bufferLock_) = 0;
  std::shared_ptr<const OVBufferState> redoState_ GUARDED_BY(bufferLock_);
  std::uint64_t blocksAddedSinceOptimization_ GUARDED_BY(bufferLock_) = 0;

  // Written with bufferLock_ held, read without it by the size getters and by reads past the end.
  // They are independent, so relaxed order is enough: using the list takes the lock.
  std::atomic<std::uint64_t> bufferFillSize_{0};
  std::atomic<bool> listIsEmpty_{true};

  // Reads that may be using places in the file. Raised before the lookup, which takes bufferLock_:
  // whoever holds that lock sees every read that has looked up a place.
  std::atomic<std::uint32_t> readsUnderWay_{0};

  platform::GuardedPointer<std::weak_ptr<OVAudioBufferDelegate>> delegate_;
};
