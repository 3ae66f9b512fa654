#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "storage/BlockList.h"

/// A recording's block list and length at one moment. Because the bytes in the file never change,
/// this is a complete copy of what the recording held.
///
/// Later changes of the list that it came from do not reach the state. It never changes and can be
/// restored any number of times. What of the list has not changed since, the two share: a state
/// costs next to nothing to make.
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

  /// What a restored buffer takes a copy of.
  [[nodiscard]] const BlockList& list() const { return blocklist_; }

 private:
  OVBufferState(BlockList blocklist, std::uint64_t bufferFillSize);

  const BlockList blocklist_;
  const std::uint64_t bufferFillSize_;
};
