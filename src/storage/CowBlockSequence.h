#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <utility>
#include <vector>

#include "storage/OVBlock.h"

/// A block and its place in the list, which is sorted by ascending number.
struct OrderedBlock {
  OVBlock block;
  std::uint64_t order = 0;

  friend constexpr bool operator==(const OrderedBlock&, const OrderedBlock&) = default;
};

/// Blocks sorted by a unique key, `Key::of(block)`. They are stored in chunks of up to 256, which
/// copies of a sequence share until one changes (copy on write).
///
/// With n blocks a search costs log n, a change log n plus the length of a chunk, and a copy about
/// n / 256 references.
///
/// Threads: a plain value; the owner guards it together with all copies that may share its chunks.
/// Real-time: not safe: allocates.
template <typename Key>
class CowBlockSequence {
  using Chunk = std::vector<OrderedBlock>;

 public:
  static constexpr std::size_t kMaxBlocks = 256;  ///< blocks in a chunk

  /// Position of a block. Valid until the sequence changes.
  struct Position {
    std::size_t chunk = 0;
    std::size_t at = 0;

    friend bool operator==(const Position&, const Position&) = default;
  };

  [[nodiscard]] std::size_t size() const { return size_; }
  [[nodiscard]] bool empty() const { return size_ == 0; }

  [[nodiscard]] Position begin() const { return {}; }
  [[nodiscard]] Position end() const { return {chunks_.size(), 0}; }
  [[nodiscard]] const OrderedBlock& operator[](Position position) const {
    return (*chunks_[position.chunk].blocks)[position.at];
  }
  [[nodiscard]] Position next(Position position) const {
    ++position.at;
    return position.at < chunks_[position.chunk].blocks->size() ? position
                                                                : Position{position.chunk + 1, 0};
  }
  /// Not from begin().
  [[nodiscard]] Position previous(Position position) const {
    if (position.at == 0) {
      --position.chunk;
      position.at = chunks_[position.chunk].blocks->size();
    }
    --position.at;
    return position;
  }

  /// The first block whose key is not below this one.
  [[nodiscard]] Position lowerBound(std::uint64_t key) const {
    const std::size_t chunk = chunkOf(key);
    if (chunk == chunks_.size()) {
      return end();
    }
    const std::size_t at = placeIn(*chunks_[chunk].blocks, key);
    return at < chunks_[chunk].blocks->size() ? Position{chunk, at} : Position{chunk + 1, 0};
  }
  /// The block of this key, or end().
  [[nodiscard]] Position find(std::uint64_t key) const {
    const Position position = lowerBound(key);
    return position != end() && Key::of((*this)[position]) == key ? position : end();
  }

  /// Appends a block, whose key must be the highest. Full chunks stay full.
  void append(const OrderedBlock& block) {
    ++size_;
    if (chunks_.empty() || chunks_.back().blocks->size() >= kMaxBlocks) {
      startChunk(block);
    } else {
      own(chunks_.size() - 1).push_back(block);
    }
  }

  /// Inserts a block, whose key must be new.
  void insert(const OrderedBlock& block) {
    const std::uint64_t key = Key::of(block);
    if (chunks_.empty() || Key::of(chunks_.back().blocks->back()) < key) {
      append(block);
      return;
    }
    ++size_;
    const std::size_t chunk = chunkOf(key);
    Chunk& blocks = own(chunk);
    const std::size_t at = placeIn(blocks, key);
    blocks.insert(blocks.begin() + static_cast<std::ptrdiff_t>(at), block);
    chunks_[chunk].firstKey = Key::of(blocks.front());
    if (blocks.size() > kMaxBlocks) {
      split(chunk);
    }
  }

  void erase(Position position) {
    --size_;
    Chunk& blocks = own(position.chunk);
    blocks.erase(blocks.begin() + static_cast<std::ptrdiff_t>(position.at));
    if (blocks.empty()) {
      chunks_.erase(chunks_.begin() + static_cast<std::ptrdiff_t>(position.chunk));
      return;
    }
    chunks_[position.chunk].firstKey = Key::of(blocks.front());
    joinSmall(position.chunk);
  }

  /// Replaces the block at a position; its place in the order must stay the same.
  void replace(Position position, const OrderedBlock& block) {
    own(position.chunk)[position.at] = block;
    if (position.at == 0) {
      chunks_[position.chunk].firstKey = Key::of(block);
    }
  }

  /// All blocks in their order.
  template <typename Each>
  void forEach(Each each) const {
    for (const Slot& slot : chunks_) {
      for (const OrderedBlock& block : *slot.blocks) {
        each(block);
      }
    }
  }

 private:
  struct Slot {
    std::uint64_t firstKey;  // so that a search reads one chunk only
    std::shared_ptr<Chunk> blocks;
  };

  void startChunk(const OrderedBlock& first) {
    auto blocks = std::make_shared<Chunk>();
    blocks->reserve(kMaxBlocks + 1);
    blocks->push_back(first);
    chunks_.push_back({Key::of(first), std::move(blocks)});
  }

  // The last chunk that begins at or below a key, or the first one if all begin above it. The
  // number of chunks, 0, when there is none.
  [[nodiscard]] std::size_t chunkOf(std::uint64_t key) const {
    const auto behind = std::partition_point(
        chunks_.begin(), chunks_.end(), [key](const Slot& slot) { return slot.firstKey <= key; });
    return behind == chunks_.begin() ? 0 : static_cast<std::size_t>(behind - chunks_.begin()) - 1;
  }

  static std::size_t placeIn(const Chunk& blocks, std::uint64_t key) {
    return static_cast<std::size_t>(
        std::partition_point(blocks.begin(), blocks.end(),
                             [key](const OrderedBlock& block) { return Key::of(block) < key; }) -
        blocks.begin());
  }

  // Returns the chunk after unsharing it from copies of the sequence.
  Chunk& own(std::size_t chunk) {
    auto& blocks = chunks_[chunk].blocks;
    if (blocks.use_count() > 1) {
      auto copy = std::make_shared<Chunk>();
      copy->reserve(kMaxBlocks + 1);
      copy->assign(blocks->begin(), blocks->end());
      blocks = std::move(copy);
    }
    return *blocks;
  }

  void split(std::size_t chunk) {
    Chunk& blocks = own(chunk);
    const auto middle = blocks.begin() + static_cast<std::ptrdiff_t>(blocks.size() / 2);
    auto upper = std::make_shared<Chunk>();
    upper->reserve(kMaxBlocks + 1);
    upper->assign(middle, blocks.end());
    blocks.erase(middle, blocks.end());
    chunks_.insert(chunks_.begin() + static_cast<std::ptrdiff_t>(chunk) + 1,
                   {Key::of(upper->front()), std::move(upper)});
  }

  // Joins a chunk with the next one if together they fill at most half a chunk: overwriting a list
  // block by block must not leave one block per chunk.
  void joinSmall(std::size_t chunk) {
    if (chunk + 1 == chunks_.size() && chunk > 0) {
      --chunk;
    }
    if (chunk + 1 >= chunks_.size() ||
        chunks_[chunk].blocks->size() + chunks_[chunk + 1].blocks->size() > kMaxBlocks / 2) {
      return;
    }
    Chunk& blocks = own(chunk);
    const Chunk& following = *chunks_[chunk + 1].blocks;
    blocks.insert(blocks.end(), following.begin(), following.end());
    chunks_.erase(chunks_.begin() + static_cast<std::ptrdiff_t>(chunk) + 1);
  }

  std::vector<Slot> chunks_;  // none is empty
  std::size_t size_ = 0;
};
