#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "storage/BlockList.h"

/// A recording's block list and length at one moment. Because the bytes in the file never change,
/// this is a complete copy of what the recording held.
///
/// The state owns copies of the blocks; later changes of the list they came from do not reach it.
/// It never changes and can be restored any number of times.
///
/// Threads: any, once made. Making one copies the list, which must not change meanwhile.
/// Real-time: not safe.
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
