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
#include "platform/files/File.h"
#include "storage/BlockList.h"
#include "storage/OVAudioBufferInterface.h"
#include "storage/OVBufferState.h"

/// Where a linear address lies in the temporary file.
struct BlockLocation {
  std::uint64_t fileOffset = 0;
  std::uint64_t bytesAvailable = 0;  ///< from the address to the end of its block
  bool notFound = true;              ///< past the end, or in a hole
};

/// The audio of a document: a list of blocks over one temporary file that is only ever appended
/// to. Writing over audio, cutting and undo change the list alone; the file keeps every byte that
/// was ever written until the buffer goes, and has no name while it lives.
///
/// Addresses, offsets and sizes are in bytes, positions of cuts and of powerAtPosition() in frames
/// of 8 bytes. Undo is many levels deep, redo one.
///
/// Locks. `bufferLock` guards the list, the length and the waypoints, and is held only while they
/// are looked at or changed, never during a file transfer. Because the bytes of a mapped block
/// never change, a read looks all its stretches up under the lock and reads them after: it returns
/// the recording as it stood at that moment, and waits for no disk but its own. `appendLock`
/// brings writers in line: each holds it from taking its place at the file's end until its block
/// is mapped, so blocks are mapped in file order. It is always taken before bufferLock.
///
/// Threads: any, at the same time; lock() and unlock() in pairs on one thread, and between them
/// only the operations that say they take no lock. Real-time: not safe.
class OVBlockBuffer : public OVAudioBufferInterface {
 public:
  /// An empty buffer with a temporary file of its own. Null when the file cannot be made, which
  /// is told in a modal alert.
  [[nodiscard]] static std::shared_ptr<OVBlockBuffer> init();
  ~OVBlockBuffer() override;
  OVBlockBuffer(const OVBlockBuffer&) = delete;
  OVBlockBuffer& operator=(const OVBlockBuffer&) = delete;

  /// Appends the bytes to the file and maps them at the offset; every 21st write merges
  /// neighbouring blocks. A write of no bytes maps an empty block. Bytes that the disk does not
  /// take are mapped all the same: the file's end moves on by the whole count, so that the lost
  /// stretch reads as silence, never as other audio (where the file cannot be made longer either,
  /// it ends a read until a later write succeeds), and the delegate hears of the errno first. A
  /// write that would end past the highest address is refused with a console line.
  void writeData(const void* data, std::uint64_t atByteOffset, std::uint32_t withSize) override;

  /// Ends at the recording's end, at a hole, and where the file answers with no bytes, which the
  /// delegate hears of. A count of 2^63 and more is refused with a console line. At or past the end
  /// it takes no lock.
  [[nodiscard]] BufferReadResult readDataInto(void* destination, std::uint64_t withSize,
                                              std::uint64_t fromOffset) override;

  /// Takes no lock: call it between lock() and unlock().
  [[nodiscard]] BlockLocation getFileOffsetForLinearAddress(std::uint64_t address) const;

  /// Merges blocks that are neighbours in the list, in the recording and in the file.
  void optimize();

  [[nodiscard]] platform::AudioStreamBasicDescription format() const override;

  /// Both the length in whole frames. Take no lock.
  [[nodiscard]] std::uint64_t bufferSizeInFrames() const override;
  [[nodiscard]] std::uint64_t bufferFillSizeInFrames() const override;

  /// The recording ends at `frames`, also when that is beyond its old end: it is then longer, with
  /// a hole. A block that starts at the position stays in the list and is heard again when the
  /// recording is lengthened past it without writing over it.
  void cutoffBufferAfterPosition(std::uint64_t frames) override;

  /// The recording begins at `frames`. The length underflows for a position past the end.
  void cutoffBufferBeforePosition(std::uint64_t frames) override;

  /// Nothing: a block list cannot be reversed.
  void reverseBuffer() override;

  void setWaypoint() override;

  /// Restores the waypoint below the last one restored, the lowest one again and again, and keeps
  /// the present state for redo(). Throws std::out_of_range when there is no waypoint; the state
  /// for redo() has been replaced by then.
  void undo() override;

  /// Restores what the last undo() kept, once. Does not move among the waypoints.
  void redo() override;

  /// Throws std::out_of_range when there is no waypoint.
  void rollBack() override;

  void lock() override;
  void unlock() override;

  /// Mean of the two channels of a frame, signed; 1.0 past the end, in a hole, and for a frame
  /// that lies in two blocks.
  [[nodiscard]] double powerAtPosition(std::uint64_t position) override;

  /// Deletes the file at a path, if one is given; an error is ignored.
  static void removeTempFile(const std::optional<std::string>& path);

  [[nodiscard]] std::weak_ptr<OVAudioBufferDelegate> delegate() const override;
  void setDelegate(std::weak_ptr<OVAudioBufferDelegate> delegate) override;

  /// The state as it stands. Take no lock: call them between lock() and unlock(), or while no other
  /// thread works on the buffer.
  [[nodiscard]] std::vector<OVBlock> blocklist() const { return blocklist_.blocks(); }
  [[nodiscard]] std::uint64_t f_write_pos() const { return f_write_pos_; }
  [[nodiscard]] const std::vector<std::shared_ptr<const OVBufferState>>& waypointStack() const {
    return waypointStack_;
  }
  [[nodiscard]] std::uint64_t waypointPos() const { return waypointPos_; }
  [[nodiscard]] std::uint64_t prevWaypointPos() const { return prevWaypointPos_; }
  [[nodiscard]] std::shared_ptr<const OVBufferState> redoState() const { return redoState_; }
  [[nodiscard]] std::uint64_t blocksAddedSinceOptimization() const {
    return blocksAddedSinceOptimization_;
  }

  /// Length in bytes. Any thread, takes no lock.
  [[nodiscard]] std::uint64_t bufferFillSize() const {
    return bufferFillSize_.load(std::memory_order_relaxed);
  }
  /// Path under which the file was made; nothing stands there any more.
  [[nodiscard]] const std::string& f_file_name() const { return f_file_name_; }

 private:
  OVBlockBuffer(std::unique_ptr<platform::File> file, std::string fileName);

  // A stretch of the file that holds neighbouring addresses.
  struct Stretch {
    std::uint64_t fileOffset;
    std::uint64_t byteCount;
  };

  // These four with bufferLock held.
  std::uint64_t mapAppended(std::uint64_t atByteOffset, std::uint32_t withSize);
  std::vector<Stretch> stretches(std::uint64_t address, std::uint64_t byteCount) const;
  void restore(const OVBufferState& state);
  void listChanged();

  // Fixed after construction.
  const std::unique_ptr<platform::File> f_file_;
  const std::string f_file_name_;
  const platform::AudioStreamBasicDescription format_;

  // Brings writers in line, see above. Taken before bufferLock_.
  std::mutex appendLock_;
  mutable std::mutex bufferLock_;

  // Guarded by bufferLock_. f_write_pos_ is written only with both locks held and may be read
  // with either.
  std::uint64_t f_write_pos_ = 0;
  BlockList blocklist_;
  std::vector<std::shared_ptr<const OVBufferState>> waypointStack_;
  std::uint64_t waypointPos_ = 0;
  std::uint64_t prevWaypointPos_ = 0;
  std::shared_ptr<const OVBufferState> redoState_;
  std::uint64_t blocksAddedSinceOptimization_ = 0;

  // Written with bufferLock_ held, read without it by the size getters and by reads past the end.
  // Each stands for itself, so relaxed order is enough: whoever acts on the list takes the lock.
  std::atomic<std::uint64_t> bufferFillSize_{0};
  std::atomic<bool> listIsEmpty_{true};

  platform::GuardedPointer<std::weak_ptr<OVAudioBufferDelegate>> delegate_;
};
