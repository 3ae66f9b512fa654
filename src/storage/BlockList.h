#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "storage/CowBlockSequence.h"
#include "storage/OVBlock.h"

/// The blocks of a recording in the order in which they were added, and the arithmetic of writing
/// and cutting on them. It knows neither the file nor the recording's length.
///
/// All arithmetic is unsigned 64-bit and wraps. A block is *reachable* when its end lies above its
/// start; empty blocks, and blocks whose end has wrapped past 2^64, hold no address that a lookup
/// finds, yet stay in the list until an operation removes them. Reachable blocks never overlap.
///
/// What an operation does is told as if it went through the whole list. The list is kept so that a
/// write and a merge look only at the blocks that can matter: a block keeps a number, by which the
/// list is sorted, for life; the reachable ones stand in a second sequence, sorted by address; the
/// few others, and the blocks that may have become neighbours of the one before them since the last
/// merge, are remembered by their numbers. With n blocks a write costs about the logarithm of n and
/// what it touches, a cut n, a copy n / 128.
///
/// Threads: a plain value; whoever owns it guards it together with its copies, which share what has
/// not changed since. Real-time: not safe: allocates.
class BlockList {
 public:
  BlockList() = default;
  /// These blocks in this order. Reachable ones must not overlap.
  explicit BlockList(const std::vector<OVBlock>& blocks);

  /// In list order, which is not address order. Costs a copy.
  [[nodiscard]] std::vector<OVBlock> blocks() const;
  [[nodiscard]] bool empty() const { return list_.empty(); }
  [[nodiscard]] std::size_t size() const { return list_.size(); }

  /// The block that holds an address, none in a hole. Valid until the list changes. Costs the
  /// logarithm of the number of blocks.
  [[nodiscard]] const OVBlock* find(std::uint64_t address) const;

  /// Puts a block over the addresses it covers: blocks it covers go, blocks it touches are
  /// trimmed, a block that contains it is split. Then stand at the end of the list: the parts split
  /// off, in the order of the blocks they come from, and the new block, which is last.
  ///
  /// An empty block splits the block that holds its address, too. The block must not end past the
  /// highest address.
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
  struct ByOrder {
    static std::uint64_t of(const OrderedBlock& block) { return block.order; }
  };
  struct ByAddress {
    static std::uint64_t of(const OrderedBlock& block) { return block.block.linear_addr_start(); }
  };

  [[nodiscard]] static bool isReachable(const OVBlock& block) {
    return block.linear_addr_start() < block.end();
  }

  [[nodiscard]] std::vector<OrderedBlock> inReachOf(const OVBlock& block) const;
  void add(const OVBlock& block);
  void remove(const OrderedBlock& block);
  void change(const OrderedBlock& from, const OVBlock& to);
  void unsettleNextTo(CowBlockSequence<ByOrder>::Position position);
  void enter(const OrderedBlock& block);
  void leave(const OrderedBlock& block);

  template <typename Edit>
  void editAll(Edit edit);
  void findNeighbours();

  CowBlockSequence<ByOrder> list_;
  std::uint64_t nextOrder_ = 0;

  // Each block of list_ is in one of these two.
  CowBlockSequence<ByAddress> reachable_;
  std::vector<std::uint64_t> unreachable_;  // orders, ascending

  // Orders of the blocks that may be neighbours of the one before them; the others are not. Some
  // may have left the list.
  std::vector<std::uint64_t> unsettled_;
  bool isAllUnsettled_ = false;
};
