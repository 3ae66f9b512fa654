#include "storage/BlockIndex.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace {

bool startsBefore(const OVBlock& left, const OVBlock& right) {
  return left.linear_addr_start() < right.linear_addr_start();
}

std::vector<OVBlock> reachableInOrder(const std::vector<OVBlock>& blocks) {
  std::vector<OVBlock> result;
  result.reserve(blocks.size());
  std::copy_if(blocks.begin(), blocks.end(), std::back_inserter(result), BlockIndex::isReachable);
  std::sort(result.begin(), result.end(), startsBefore);
  return result;
}

}  // namespace

BlockIndex::BlockIndex(const std::vector<OVBlock>& blocks) : blocks_(reachableInOrder(blocks)) {}

BlockIndex::Position BlockIndex::firstEndingBehind(std::uint64_t address) const {
  return std::partition_point(blocks_.begin(), blocks_.end(),
                              [address](const OVBlock& block) { return block.end() <= address; });
}

BlockIndex::Position BlockIndex::firstStartingAt(std::uint64_t address) const {
  return std::partition_point(blocks_.begin(), blocks_.end(), [address](const OVBlock& block) {
    return block.linear_addr_start() < address;
  });
}

const OVBlock* BlockIndex::find(std::uint64_t address) const {
  const Position block = firstEndingBehind(address);
  return block != blocks_.end() && block->contains(address) ? &*block : nullptr;
}

bool BlockIndex::touches(std::uint64_t start, std::uint64_t end) const {
  const Position block = firstEndingBehind(start);
  return block != blocks_.end() && block->linear_addr_start() < end;
}

void BlockIndex::map(const OVBlock& block) {
  const std::uint64_t start = block.linear_addr_start();
  const std::uint64_t end = block.end();
  const Position first = firstEndingBehind(start);
  const Position last = std::max(first, firstStartingAt(end));

  std::array<OVBlock, 3> instead;  // what takes the place of [first, last): head, block, tail
  std::size_t count = 0;
  if (first != last && first->linear_addr_start() < start) {
    instead[count] = *first;
    instead[count++].setSize(start - first->linear_addr_start());
  }
  if (isReachable(block)) {
    instead[count++] = block;
  }
  if (first != last && std::prev(last)->end() > end) {
    instead[count] = *std::prev(last);
    instead[count++].dropFront(end - std::prev(last)->linear_addr_start());
  }
  exchange(first, last, instead.data(), count);
}

void BlockIndex::exchange(Position first, Position last, const OVBlock* instead,
                          std::size_t count) {
  const std::size_t common = std::min(count, static_cast<std::size_t>(last - first));
  const auto at = std::copy_n(instead, common, blocks_.begin() + (first - blocks_.cbegin()));
  if (common < count) {
    blocks_.insert(at, instead + common, instead + count);
  } else {
    blocks_.erase(at, last);
  }
}

void BlockIndex::cutAfter(std::uint64_t address) {
  auto beyond = blocks_.begin() + (firstStartingAt(address) - blocks_.cbegin());
  if (beyond != blocks_.begin() && std::prev(beyond)->end() > address) {
    std::prev(beyond)->setSize(address - std::prev(beyond)->linear_addr_start());
  }
  if (beyond != blocks_.end() && beyond->linear_addr_start() == address) {
    ++beyond;  // it stays, as it does in the list
  }
  blocks_.erase(beyond, blocks_.end());
}

void BlockIndex::cutBefore(std::uint64_t address) {
  blocks_.erase(blocks_.begin(), firstEndingBehind(address));
  if (!blocks_.empty() && blocks_.front().linear_addr_start() < address) {
    blocks_.front().dropFront(address - blocks_.front().linear_addr_start());
  }
  for (OVBlock& block : blocks_) {
    block.setLinear_addr_start(block.linear_addr_start() - address);
  }
}

std::vector<OVBlock>::iterator BlockIndex::startOf(const OVBlock& block) {
  return blocks_.begin() + (firstStartingAt(block.linear_addr_start()) - blocks_.cbegin());
}

void BlockIndex::replace(const std::vector<OVBlock>& before, const std::vector<OVBlock>& after) {
  const std::vector<OVBlock> out = reachableInOrder(before);
  const std::vector<OVBlock> in = reachableInOrder(after);
  if (!out.empty()) {
    // Only the part of the index between the first and the last that go is looked at.
    const auto first = startOf(out.front());
    const auto last = std::next(startOf(out.back()));
    const auto kept = std::remove_if(first, last, [&out](const OVBlock& block) {
      return std::binary_search(out.begin(), out.end(), block, startsBefore);
    });
    blocks_.erase(kept, last);
  }
  if (!in.empty()) {
    // Everything below the first that comes stays where it is.
    const auto below = startOf(in.front()) - blocks_.begin();
    const auto middle = static_cast<std::ptrdiff_t>(blocks_.size());
    blocks_.insert(blocks_.end(), in.begin(), in.end());
    std::inplace_merge(blocks_.begin() + below, blocks_.begin() + middle, blocks_.end(),
                       startsBefore);
  }
}
