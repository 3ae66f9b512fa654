#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "storage/OVBlock.h"

/// Copies of the reachable blocks of a block list, ordered by address, so that a lookup need not
/// scan the list. The list keeps it in step with itself; what it holds follows from the list alone.
///
/// Reachable blocks do not overlap: each address lies in one of them at most, and their ends are in
/// the order of their starts.
///
/// Threads: a plain value; whoever owns it guards it. Real-time: not safe: allocates.
class BlockIndex {
 public:
  /// Whether an index holds a block: it is not empty and its end has not wrapped past 2^64.
  [[nodiscard]] static bool isReachable(const OVBlock& block) {
    return block.linear_addr_start() < block.end();
  }

  BlockIndex() = default;
  /// The reachable ones of these blocks.
  explicit BlockIndex(const std::vector<OVBlock>& blocks);

  [[nodiscard]] std::size_t size() const { return blocks_.size(); }

  /// The block that holds an address, none in a hole. Valid until the index changes. Costs the
  /// logarithm of the number of blocks.
  [[nodiscard]] const OVBlock* find(std::uint64_t address) const;

  /// Whether a block lies over an address of [start, end), or over both sides of `start` when the
  /// two are the same.
  [[nodiscard]] bool touches(std::uint64_t start, std::uint64_t end) const;

  /// Each as the operation of the same name of BlockList.
  void map(const OVBlock& block);
  void cutAfter(std::uint64_t address);
  void cutBefore(std::uint64_t address);

  /// Takes `before` out and puts `after` in, as far as they are reachable. Both in any order.
  void replace(const std::vector<OVBlock>& before, const std::vector<OVBlock>& after);

 private:
  using Position = std::vector<OVBlock>::const_iterator;

  // The first block that ends behind an address, and the first that starts at one or behind it.
  [[nodiscard]] Position firstEndingBehind(std::uint64_t address) const;
  [[nodiscard]] Position firstStartingAt(std::uint64_t address) const;

  // Where a block stands, or would.
  [[nodiscard]] std::vector<OVBlock>::iterator startOf(const OVBlock& block);
  // Puts `count` blocks in the place of [first, last).
  void exchange(Position first, Position last, const OVBlock* instead, std::size_t count);

  std::vector<OVBlock> blocks_;  // by linear_addr_start()
};
