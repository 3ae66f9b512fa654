#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "platform/base/Result.h"
#include "platform/files/SharedMemory.h"
#include "storage/BlockList.h"
#include "storage/JournalLayout.h"
#include "storage/OVBufferState.h"

/// What happens to a block list, written into memory that another process can read: with the
/// journal and the temporary file, it can restore the recording after this process has died at any
/// moment.
///
/// A record is published by one atomic store, so that it is complete or not there. Two areas take
/// turns: when one is full, or holds many records, a new state is written to the other, and
/// published the same way. Kept states are not part of it, so restoring one that is older than the
/// journal's state also asks for a new state.
///
/// The buffer that owns it calls the operations below in pairs: a record under the lock of its
/// list, which makes no system call and never waits; then, without that lock, settle() in
/// OVBlockBuffer, if wantsSettling().
///
/// Threads: stated with each group. Real-time: not safe.
class BlockJournal {
 public:
  struct Origin {
    std::int64_t created = 0;   ///< seconds since 1970, UTC
    std::string recoveredFrom;  ///< name of the recovered file the recording came from, or empty
    std::uint64_t recoveredFile = 0;  ///< the system's number of that file; 0 if unknown
    /// When the first recording began, if that was before the journal: in seconds since 1970, UTC.
    std::int64_t firstRecording = 0;
    /// A new state is written after records of so many bytes, or of twice the state's size if that
    /// is more.
    std::uint64_t recordsPerState = std::uint64_t{256} << 10;
  };

  /// A journal without a state; nothing is recorded before the first one.
  [[nodiscard]] static platform::Result<std::unique_ptr<BlockJournal>> create(const Origin& origin);

  /// For the other process; open as long as the journal lives.
  [[nodiscard]] int descriptor() const { return memory_->descriptor(); }

  // About the document. Threads: any.

  void setState(journal::State state);
  [[nodiscard]] journal::State state() const;
  /// When a recording begins, in seconds since 1970, UTC. Whether it is the first: later ones
  /// change nothing.
  bool recordingBegins(std::int64_t time);
  /// The first recording never came about.
  void recordingTakenBack();

  // Records. Threads: under the lock of the list.

  void wrote(const OVBlock& block);
  void cutAfter(std::uint64_t position);
  void cutBefore(std::uint64_t position);
  void merged();
  /// The present list and length were kept, or replaced by kept ones.
  void kept(const OVBufferState& state);
  void restored(const OVBufferState& state);

  // Room. Threads: one at a time, without the lock of the list where not stated otherwise.

  /// Whether it lacks the present state: the other process would find an earlier one. Any thread.
  [[nodiscard]] bool isBehind() const { return isBehind_.load(std::memory_order_relaxed); }
  /// Whether makeRoom() or a new state is needed. Any thread.
  [[nodiscard]] bool wantsSettling() const { return wantsRoom() || wantsState(); }
  [[nodiscard]] bool wantsState() const;
  /// Reserves room for the next records. Returns 0 or an errno.
  [[nodiscard]] int makeRoom();
  /// Reserves room for a state of so many blocks and some more. Returns 0 or an errno, ENOSPC for
  /// more blocks than the journal can hold.
  [[nodiscard]] int prepareState(std::uint64_t blocks);
  /// Publishes a new state. False if the list has outgrown the room prepared. Under the lock of the
  /// list.
  [[nodiscard]] bool writeState(const BlockList& list, std::uint64_t fillSize);
  /// Frees the memory that is not needed after writeState().
  void releaseFormer();

 private:
  BlockJournal(std::unique_ptr<platform::SharedMemory> memory, const Origin& origin);

  [[nodiscard]] journal::Header& header() const;
  [[nodiscard]] std::byte* area(std::size_t number) const;
  [[nodiscard]] bool wantsRoom() const;
  void record(const journal::Record& record);
  void publish();

  const std::unique_ptr<platform::SharedMemory> memory_;
  const std::uint64_t recordsPerState_;

  // Changed under the lock of the list, ready_ also by makeRoom(); read without it by
  // wantsSettling(). Each alone says enough, so relaxed order does; ready_ is released after its
  // pages were reserved.
  std::atomic<std::uint64_t> end_{0};    // of the records in the active area
  std::atomic<std::uint64_t> ready_{0};  // bytes of the active area that are reserved
  std::atomic<std::uint64_t> limit_{0};  // a new state is written when the records end beyond it
  std::atomic<bool> isBehind_{true};     // a record is missing: nothing is recorded until a state

  std::size_t active_ = 1;       // changed under the lock of the list by the settling thread
  std::uint64_t firstKept_ = 0;  // serial of the first state kept after the journal's state
  std::uint64_t prepared_ = 0;   // bytes reserved in the other area; settling thread
};
