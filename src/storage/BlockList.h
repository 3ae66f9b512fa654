#pragma once

#include <cstdint>
#include <vector>

#include "storage/BlockIndex.h"
#include "storage/OVBlock.h"

/// The blocks of a recording in the order in which they were added, and the arithmetic of writing
/// and cutting on them. It knows neither the file nor the recording's length.
///
/// All arithmetic is unsigned 64-bit and wraps. A block is *reachable* when its end lies above its
/// start; empty blocks, and blocks whose end has wrapped past 2^64, hold no address that a lookup
/// finds, yet stay in the list until an operation removes them. Reachable blocks never overlap.
///
/// Beside the list stands an index by address, for lookups. The list alone decides what happens;
/// the index follows it.
///
/// Threads: a plain value; whoever owns it guards it. Real-time: not safe: allocates.
class BlockList {
 public:
  /// An empty list with room for 256 blocks.
  BlockList();
  /// These blocks in this order. Reachable ones must not overlap.
  explicit BlockList(std::vector<OVBlock> blocks);

  /// In list order, which is not address order.
  [[nodiscard]] const std::vector<OVBlock>& blocks() const { return blocks_; }

  /// A copy of the block that holds an address, none in a hole. Valid until the list changes.
  /// Costs the logarithm of the number of blocks.
  [[nodiscard]] const OVBlock* find(std::uint64_t address) const { return index_.find(address); }

  /// Puts a block over the addresses it covers: blocks it covers go, blocks it touches are
  /// trimmed, a block that contains it is split. Then stand at the end of the list: the parts split
  /// off, in the order of the blocks they come from, and the new block, which is last.
  ///
  /// An empty block splits the block that holds its address, too. The block must not end past the
  /// highest address. Where it touches none, it costs no walk through the list.
  void map(const OVBlock& block);

  /// Removes the blocks that start beyond `address` and ends the one that contains it there. A
  /// block that starts exactly at the address is neither removed nor cut.
  void cutAfter(std::uint64_t address);

  /// Removes the blocks that end before `address`, trims the one that contains it, and moves the
  /// rest down so that the address becomes 0. A block that ends exactly at the address stays, and
  /// its start wraps below 0, where no lookup reaches it.
  void cutBefore(std::uint64_t address);

  /// Merges each block into the one before it in the list where the two are neighbours in the
  /// recording and in the file; a whole run collapses into its first block. A wrapped block that
  /// swallows the one behind it makes that one unreachable, too.
  void mergeNeighbours();

 private:
  std::vector<OVBlock> blocks_;
  BlockIndex index_;  // the reachable ones of blocks_, always
};
