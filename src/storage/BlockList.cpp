#include "storage/BlockList.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace {

// Makes room for `added` in one existing block. A part after the added block that must become a
// separate block goes to `splitOff`. False when nothing of the block remains; the caller then
// removes it from the list. The order of the four steps, and whether bounds are inclusive, matter
// for empty blocks and blocks that only touch.
bool makeWay(OVBlock& block, const OVBlock& added, std::vector<OVBlock>& splitOff) {
  const std::uint64_t start = added.linear_addr_start();
  const std::uint64_t end = added.end();
  // 1. Covered.
  if (block.linear_addr_start() >= start && block.end() <= end) {
    return false;
  }
  // 2. A tail that runs into the added block.
  if (start <= block.end() && block.end() <= end) {
    block.setSize(start - block.linear_addr_start());
  }
  // 3. A head that starts inside it.
  if (start <= block.linear_addr_start() && block.linear_addr_start() <= end) {
    block.dropFront(end - block.linear_addr_start());
  }
  // 4. A block that contains it.
  if (block.linear_addr_start() <= start && end <= block.end()) {
    const std::uint64_t rest = block.end() - end;
    splitOff.emplace_back(end, block.file_offset_start() + block.size() - rest, rest);
    block.setSize(block.size() - rest - added.size());
  }
  return true;
}

bool followsInBothSpaces(const OVBlock& previous, const OVBlock& block) {
  return previous.end() == block.linear_addr_start() &&
         previous.file_offset_start() + previous.size() == block.file_offset_start();
}

bool standsBefore(const OrderedBlock& left, const OrderedBlock& right) {
  return left.order < right.order;
}

}  // namespace

BlockList::BlockList(const std::vector<OVBlock>& blocks) {
  for (const OVBlock& block : blocks) {
    add(block);
  }
}

std::vector<OVBlock> BlockList::blocks() const {
  std::vector<OVBlock> result;
  result.reserve(list_.size());
  forEach([&result](const OVBlock& block) { result.push_back(block); });
  return result;
}

std::vector<OVBlock> BlockList::reachableBlocks() const {
  std::vector<OVBlock> result;
  result.reserve(reachable_.size());
  reachable_.forEach([&result](const OrderedBlock& block) { result.push_back(block.block); });
  return result;
}

// The last reachable block that starts at or below an address; the end for none.
CowBlockSequence<BlockList::ByAddress>::Position BlockList::placeBefore(
    std::uint64_t address) const {
  const auto position = reachable_.lowerBound(address);
  if (position != reachable_.end() && reachable_[position].block.linear_addr_start() == address) {
    return position;
  }
  return position == reachable_.begin() ? reachable_.end() : reachable_.previous(position);
}

const OVBlock* BlockList::find(std::uint64_t address) const {
  const auto position = placeBefore(address);
  if (position == reachable_.end()) {
    return nullptr;
  }
  const OVBlock& block = reachable_[position].block;
  return block.contains(address) ? &block : nullptr;
}

std::uint64_t BlockList::endInFile() const {
  std::uint64_t result = 0;
  list_.forEach([&result](const OrderedBlock& each) {
    const std::uint64_t start = each.block.file_offset_start();
    const std::uint64_t end = start + each.block.size();
    if (each.block.size() > 0) {
      result = std::max(result, end < start ? std::numeric_limits<std::uint64_t>::max() : end);
    }
  });
  return result;
}

// Writing ---------------------------------------------------------------------------------------

void BlockList::map(const OVBlock& block) {
  std::vector<OVBlock> splitOff;
  for (const OrderedBlock& each : inReachOf(block)) {
    OVBlock left = each.block;
    if (!makeWay(left, block, splitOff)) {
      remove(each);
    } else if (left != each.block) {
      change(each, left);
    }
  }
  for (const OVBlock& part : splitOff) {
    add(part);
  }
  add(block);
}

// The blocks that a write can change, in list order: the reachable ones that it overlaps or
// touches, and all unreachable ones, which its steps may match.
std::vector<OrderedBlock> BlockList::inReachOf(const OVBlock& block) const {
  std::vector<OrderedBlock> result;
  auto position = reachable_.lowerBound(block.linear_addr_start());
  if (position != reachable_.begin()) {
    position = reachable_.previous(position);
  }
  for (; position != reachable_.end() &&
         reachable_[position].block.linear_addr_start() <= block.end();
       position = reachable_.next(position)) {
    if (reachable_[position].block.end() >= block.linear_addr_start()) {
      result.push_back(reachable_[position]);
    }
  }
  for (const std::uint64_t order : unreachable_) {
    result.push_back(list_[list_.find(order)]);
  }
  std::sort(result.begin(), result.end(), standsBefore);
  return result;
}

void BlockList::add(const OVBlock& block) {
  const OrderedBlock added{block, nextOrder_++};
  list_.insert(added);
  enter(added);
  unsettled_.push_back(added.order);
}

void BlockList::remove(const OrderedBlock& block) {
  const auto position = list_.find(block.order);
  unsettleNextTo(position);
  list_.erase(position);
  leave(block);
}

void BlockList::change(const OrderedBlock& from, const OVBlock& to) {
  const auto position = list_.find(from.order);
  unsettled_.push_back(from.order);
  unsettleNextTo(position);
  list_.replace(position, {to, from.order});
  leave(from);
  enter({to, from.order});
}

void BlockList::unsettleNextTo(CowBlockSequence<ByOrder>::Position position) {
  if (const auto next = list_.next(position); next != list_.end()) {
    unsettled_.push_back(list_[next].order);
  }
}

void BlockList::enter(const OrderedBlock& block) {
  if (isReachable(block.block)) {
    reachable_.insert(block);
  } else {
    unreachable_.insert(std::lower_bound(unreachable_.begin(), unreachable_.end(), block.order),
                        block.order);
  }
}

void BlockList::leave(const OrderedBlock& block) {
  if (isReachable(block.block)) {
    reachable_.erase(reachable_.find(block.block.linear_addr_start()));
  } else {
    unreachable_.erase(std::lower_bound(unreachable_.begin(), unreachable_.end(), block.order));
  }
}

// Cutting ---------------------------------------------------------------------------------------

// `edit` changes a block, or returns false to remove it. It must keep the order of addresses.
template <typename Edit>
void BlockList::editAll(Edit edit) {
  CowBlockSequence<ByOrder> list;
  unreachable_.clear();
  list_.forEach([&](OrderedBlock each) {
    if (edit(each.block)) {
      list.append(each);
      if (!isReachable(each.block)) {
        unreachable_.push_back(each.order);
      }
    }
  });
  list_ = std::move(list);
  CowBlockSequence<ByAddress> reachable;
  reachable_.forEach([&](OrderedBlock each) {
    if (edit(each.block) && isReachable(each.block)) {
      reachable.append(each);
    }
  });
  reachable_ = std::move(reachable);
  isAllUnsettled_ = true;
}

void BlockList::cutAfter(std::uint64_t address) {
  editAll([address](OVBlock& block) {
    if (block.linear_addr_start() < address && block.end() > address) {
      block.setSize(address - block.linear_addr_start());
    }
    return block.linear_addr_start() <= address;
  });
}

void BlockList::cutBefore(std::uint64_t address) {
  editAll([address](OVBlock& block) {
    if (block.end() < address) {
      return false;
    }
    if (block.linear_addr_start() < address && block.end() > address) {
      block.dropFront(address - block.linear_addr_start());
    }
    block.setLinear_addr_start(block.linear_addr_start() - address);
    return true;
  });
}

// Merging ---------------------------------------------------------------------------------------

void BlockList::mergeNeighbours() {
  if (isAllUnsettled_) {
    findNeighbours();
  }
  // Whether two blocks are neighbours depends only on their common edge, so pairs may be merged one
  // by one, in any order.
  for (const std::uint64_t order : std::exchange(unsettled_, {})) {
    const auto position = list_.find(order);
    if (position == list_.end() || position == list_.begin()) {
      continue;
    }
    const OrderedBlock previous = list_[list_.previous(position)];
    const OrderedBlock block = list_[position];
    if (followsInBothSpaces(previous.block, block.block)) {
      list_.erase(position);
      leave(block);
      leave(previous);
      OrderedBlock merged = previous;
      merged.block.setSize(previous.block.size() + block.block.size());
      list_.replace(list_.find(previous.order), merged);
      enter(merged);
    }
  }
}

void BlockList::findNeighbours() {
  unsettled_.clear();
  const OVBlock* previous = nullptr;
  list_.forEach([&](const OrderedBlock& each) {
    if (previous != nullptr && followsInBothSpaces(*previous, each.block)) {
      unsettled_.push_back(each.order);
    }
    previous = &each.block;
  });
  isAllUnsettled_ = false;
}
