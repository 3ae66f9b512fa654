#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "storage/CowBlockSequence.h"
#include "storage/OVBlock.h"

/// The blocks of a recording in the order in which they were added, with the arithmetic of writing
/// and cutting. Independent of the file and the recording's length.
///
/// All arithmetic is unsigned 64-bit and wraps. A block is *reachable* when its end lies above its
/// start; empty blocks, and blocks whose end has wrapped past 2^64, hold no address that a lookup
/// finds, yet stay in the list until an operation removes them. Reachable blocks never overlap.
///
/// Operations are documented as if they scanned the whole list, but a write and a merge visit only
/// the blocks that can matter. Each block has a permanent number, by which the list is sorted.
/// Reachable blocks are also kept in a second sequence, sorted by address. The few others, and
/// blocks that may have become neighbours of their predecessor since the last merge, are remembered
/// by number. With n blocks a write costs about log n plus the blocks it touches, a cut n, and a
/// copy n / 128.
///
/// Threads: a plain value; the owner guards it together with its copies, which share unchanged
/// parts. Real-time: not safe: allocates.
class BlockList {
 public:
  BlockList() = default;
  /// A list of these blocks in this order. Reachable ones must not overlap.
  explicit BlockList(const std::vector<OVBlock>& blocks);

  /// In list order, which is not address order. Costs a copy.
  [[nodiscard]] std::vector<OVBlock> blocks() const;
  /// The reachable ones, by address. Costs a copy.
  [[nodiscard]] std::vector<OVBlock> reachableBlocks() const;
  /// Calls `each` with every block, in list order. Allocates nothing.
  template <typename Each>
  void forEach(Each each) const {
    list_.forEach([&each](const OrderedBlock& ordered) { each(ordered.block); });
  }
  [[nodiscard]] bool empty() const { return list_.empty(); }
  [[nodiscard]] std::size_t size() const { return list_.size(); }

  /// The block that holds an address; null in a hole. Valid until the list changes. Costs the
  /// logarithm of the number of blocks.
  [[nodiscard]] const OVBlock* find(std::uint64_t address) const;

  /// Calls `each` with the block that holds an address and with those that follow it without a gap,
  /// until it returns false. It must not change the list. Costs the logarithm of the number of
  /// blocks, and the calls.
  template <typename Each>
  void forEachFrom(std::uint64_t address, Each each) const {
    for (auto position = placeBefore(address); position != reachable_.end();
         position = reachable_.next(position)) {
      const OVBlock& block = reachable_[position].block;
      const std::uint64_t end = block.end();
      if (!block.contains(address) || !each(block)) {
        return;
      }
      address = end;
    }
  }

  /// The end of the last byte of the file that a block maps, reachable or not; 0 for none. Visits
  /// all blocks.
  [[nodiscard]] std::uint64_t endInFile() const;

  /// Maps a block over the addresses it covers: blocks inside it are removed, overlapping ones
  /// trimmed, and one that contains it is split. The parts split off go to the end of the list, in
  /// the order of their original blocks, followed by the new block.
  ///
  /// An empty block also splits the block that holds its address. The block must not end past the
  /// highest address.
  void map(const OVBlock& block);

  /// Removes the blocks that start beyond `address` and truncates the one that contains it. A block
  /// that starts exactly at the address is neither removed nor cut.
  void cutAfter(std::uint64_t address);

  /// Removes the blocks that end before `address`, trims the one that contains it, and moves the
  /// rest down so that the address becomes 0. A block that ends exactly at the address stays, and
  /// its start wraps below 0, where no lookup reaches it.
  void cutBefore(std::uint64_t address);

  /// Merges each block into its predecessor in the list if they are neighbours in the recording and
  /// in the file; a whole run collapses into its first block. A block merged into a wrapped one
  /// becomes unreachable as well.
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

  [[nodiscard]] CowBlockSequence<ByAddress>::Position placeBefore(std::uint64_t address) const;
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

  // Each block of list_ is in exactly one of these two.
  CowBlockSequence<ByAddress> reachable_;
  std::vector<std::uint64_t> unreachable_;  // orders, ascending

  // Orders of the blocks that may be neighbours of their predecessor; the others are not. Some may
  // have left the list.
  std::vector<std::uint64_t> unsettled_;
  bool isAllUnsettled_ = false;
};
