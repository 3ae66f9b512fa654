#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "storage/BlockList.h"

/// A recording's block list and length at one moment. Since the bytes in the file never change,
/// this is a complete snapshot of the recording.
///
/// Immutable: later changes to the original list do not affect it, and it can be restored any
/// number of times. It shares the unchanged parts of the list, so it is cheap to create.
///
/// Threads: those that hold the lock of the buffer it belongs to. Real-time: not safe.
class OVBufferState {
 public:
  /// Never null. `bufferFillSize` in bytes.
  [[nodiscard]] static std::shared_ptr<const OVBufferState> initWithBlocklist(
      const std::vector<OVBlock>& blocklist, std::uint64_t andBufferFillSize);
  [[nodiscard]] static std::shared_ptr<const OVBufferState> initWithBlocklist(
      const BlockList& blocklist, std::uint64_t andBufferFillSize);

  /// In the order of the list copied.
  [[nodiscard]] std::vector<OVBlock> blocklist() const { return blocklist_.blocks(); }
  /// Bytes.
  [[nodiscard]] std::uint64_t bufferFillSize() const { return bufferFillSize_; }

  /// Higher than that of every state created before.
  [[nodiscard]] std::uint64_t serial() const { return serial_; }
  /// The serial number of the next state.
  [[nodiscard]] static std::uint64_t nextSerial();

  /// For a buffer to copy when it restores this state.
  [[nodiscard]] const BlockList& list() const { return blocklist_; }

 private:
  OVBufferState(BlockList blocklist, std::uint64_t bufferFillSize);

  const BlockList blocklist_;
  const std::uint64_t bufferFillSize_;
  const std::uint64_t serial_;
};
