#include "storage/BlockList.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace {

constexpr std::size_t kInitialCapacity = 256;  // blocks; a recording rarely has more

// Makes way for `added` in one block that stood in the list before it. A part behind the added
// block that must become a block of its own goes to `splitOff`. False when nothing is left of the
// block and it goes from the list. The order of the four steps, and whether a bound counts, matter
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

}  // namespace

BlockList::BlockList() {
  blocks_.reserve(kInitialCapacity);
}

BlockList::BlockList(std::vector<OVBlock> blocks) : blocks_(std::move(blocks)), index_(blocks_) {}

void BlockList::map(const OVBlock& block) {
  // Only blocks that it touches make way, and, by the steps' bounds, unreachable ones.
  const bool allReachable = index_.size() == blocks_.size();
  const bool free =
      block.size() > 0 && allReachable && !index_.touches(block.linear_addr_start(), block.end());
  index_.map(block);
  if (free) {
    blocks_.push_back(block);
    return;
  }
  std::vector<OVBlock> splitOff;
  std::size_t kept = 0;  // blocks_[0, kept) is the list so far
  for (OVBlock each : blocks_) {
    if (makeWay(each, block, splitOff)) {
      blocks_[kept++] = each;
    }
  }
  blocks_.resize(kept);
  blocks_.insert(blocks_.end(), splitOff.begin(), splitOff.end());
  blocks_.push_back(block);
}

void BlockList::cutAfter(std::uint64_t address) {
  std::erase_if(blocks_,
                [address](const OVBlock& block) { return block.linear_addr_start() > address; });
  for (OVBlock& block : blocks_) {
    if (block.linear_addr_start() < address && block.end() > address) {
      block.setSize(address - block.linear_addr_start());
    }
  }
  index_.cutAfter(address);
}

void BlockList::cutBefore(std::uint64_t address) {
  std::erase_if(blocks_, [address](const OVBlock& block) { return block.end() < address; });
  for (OVBlock& block : blocks_) {
    if (block.linear_addr_start() < address && block.end() > address) {
      block.dropFront(address - block.linear_addr_start());
    }
    block.setLinear_addr_start(block.linear_addr_start() - address);
  }
  index_.cutBefore(address);
}

void BlockList::mergeNeighbours() {
  std::vector<OVBlock> merging;  // every block of a run, as it stood
  std::vector<OVBlock> merged;   // what became of each run
  std::size_t kept = 0;          // blocks_[0, kept) is the merged list so far
  bool inRun = false;            // its last block is a run that goes on
  for (const OVBlock block : blocks_) {
    if (kept > 0 && followsInBothSpaces(blocks_[kept - 1], block)) {
      OVBlock& head = blocks_[kept - 1];
      if (!inRun) {
        merging.push_back(head);
      }
      merging.push_back(block);
      head.setSize(head.size() + block.size());
      inRun = true;
    } else {
      if (inRun) {
        merged.push_back(blocks_[kept - 1]);
      }
      blocks_[kept++] = block;
      inRun = false;
    }
  }
  if (inRun) {
    merged.push_back(blocks_[kept - 1]);
  }
  blocks_.resize(kept);
  index_.replace(merging, merged);
}
