#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <optional>
#include <stdexcept>
#include <vector>

#include "storage/OVBlock.h"
#include "support/TransferHelpers.h"

namespace support {

/// A reference model of the block buffer, simple rather than fast: four separate passes, every
/// lookup a scan, the file an append-only vector. Tests compare the real buffer with it.
///
/// Threads: one.
class PlainBlockBuffer {
 public:
  struct State {
    std::vector<OVBlock> blocks;
    std::uint64_t fillSize = 0;
  };

  void write(const Bytes& data, std::uint64_t o) {
    const std::uint64_t fileOffset = file.size();
    file.insert(file.end(), data.begin(), data.end());
    map(OVBlock(o, fileOffset, data.size()));
    if (added >= 21) {
      optimize();
    }
  }

  /// A write's effect on the list.
  void map(const OVBlock& b) {
    const std::uint64_t o = b.linear_addr_start();
    const std::uint64_t n = b.size();
    live.fillSize = std::max(live.fillSize, o + n);
    removeCovered(o, o + n);
    trimTails(o, o + n);
    trimHeads(o, o + n);
    const auto tails = split(o, o + n, n);
    live.blocks.insert(live.blocks.end(), tails.begin(), tails.end());
    live.blocks.push_back(b);
    ++added;
  }

  /// The first block in list order that holds an address.
  static std::optional<OVBlock> locate(const State& state, std::uint64_t a) {
    if (a >= state.fillSize) {
      return std::nullopt;
    }
    for (const OVBlock& x : state.blocks) {
      if (x.linear_addr_start() <= a && a < x.linear_addr_start() + x.size()) {
        return x;
      }
    }
    return std::nullopt;
  }
  std::optional<OVBlock> locate(std::uint64_t a) const { return locate(live, a); }

  Bytes read(std::uint64_t count, std::uint64_t address) const {
    Bytes result;
    while (count > 0 && address < live.fillSize) {
      const auto block = locate(address);
      if (!block) {
        break;
      }
      const std::uint64_t in = address - block->linear_addr_start();
      const std::uint64_t k = std::min(count, block->size() - in);
      const auto from = file.begin() + static_cast<std::ptrdiff_t>(block->file_offset_start() + in);
      result.insert(result.end(), from, from + static_cast<std::ptrdiff_t>(k));
      address += k;
      count -= k;
    }
    return result;
  }

  double power(std::uint64_t frame) const {
    const auto block = locate(frame * 8);
    const std::uint64_t in = block ? frame * 8 - block->linear_addr_start() : 0;
    if (!block || block->size() - in < 8) {
      return 1.0;
    }
    float channels[2];
    std::memcpy(channels, file.data() + block->file_offset_start() + in, 8);
    return static_cast<double>(channels[0] + channels[1]) * 0.5;
  }

  void optimize() {
    std::vector<OVBlock> merged;
    for (const OVBlock& x : live.blocks) {
      if (!merged.empty() &&
          merged.back().linear_addr_start() + merged.back().size() == x.linear_addr_start() &&
          merged.back().file_offset_start() + merged.back().size() == x.file_offset_start()) {
        merged.back().setSize(merged.back().size() + x.size());
      } else {
        merged.push_back(x);
      }
    }
    live.blocks = merged;
    added = 0;
  }

  void cutAfter(std::uint64_t frames) {
    const std::uint64_t q = frames * 8;
    std::vector<OVBlock> kept;
    for (OVBlock x : live.blocks) {
      if (x.linear_addr_start() > q) {
        continue;
      }
      if (x.linear_addr_start() < q && x.linear_addr_start() + x.size() > q) {
        x.setSize(q - x.linear_addr_start());
      }
      kept.push_back(x);
    }
    live = {kept, q};
  }

  void cutBefore(std::uint64_t frames) {
    const std::uint64_t q = frames * 8;
    std::vector<OVBlock> kept;
    for (OVBlock x : live.blocks) {
      if (x.linear_addr_start() + x.size() < q) {
        continue;
      }
      if (x.linear_addr_start() < q && x.linear_addr_start() + x.size() > q) {
        const std::uint64_t k = q - x.linear_addr_start();
        x = OVBlock(x.linear_addr_start() + k, x.file_offset_start() + k, x.size() - k);
      }
      x.setLinear_addr_start(x.linear_addr_start() - q);
      kept.push_back(x);
    }
    live = {kept, live.fillSize - q};
  }

  void setWaypoint() {
    waypoints.insert(waypoints.begin() + static_cast<std::ptrdiff_t>(position), live);
    ++position;
    lastWaypoint = file.size();
  }

  void undo() {
    redoable = live;
    if (position > 0) {
      --position;
    }
    if (waypoints.empty()) {
      throw std::out_of_range("no waypoint");
    }
    live = waypoints[position];
  }

  void redo() {
    if (redoable) {
      live = *redoable;
      redoable.reset();
    }
  }

  /// Gives back the end of the file that nothing maps any more, down to where the last waypoint was
  /// set.
  void rollBack() {
    if (position == 0) {
      throw std::out_of_range("no waypoint");
    }
    --position;
    live = waypoints[position];
    waypoints.erase(waypoints.begin() + static_cast<std::ptrdiff_t>(position));
    std::uint64_t end = std::min<std::uint64_t>(lastWaypoint, file.size());
    for (const State& state : everyState()) {
      for (const OVBlock& block : state.blocks) {
        if (block.size() > 0) {
          end = std::max(end, block.file_offset_start() + block.size());
        }
      }
    }
    file.resize(std::min<std::uint64_t>(end, file.size()));
    lastWaypoint = std::min<std::uint64_t>(lastWaypoint, file.size());
  }

  State live;
  Bytes file;
  std::vector<State> waypoints;
  std::uint64_t position = 0;
  std::optional<State> redoable;
  std::uint64_t added = 0;
  std::uint64_t lastWaypoint = 0;  ///< length of the file when the last waypoint was set

 private:
  std::vector<State> everyState() const {
    std::vector<State> states = waypoints;
    states.push_back(live);
    if (redoable) {
      states.push_back(*redoable);
    }
    return states;
  }

  void removeCovered(std::uint64_t bs, std::uint64_t be) {
    std::erase_if(live.blocks, [=](const OVBlock& x) {
      return x.linear_addr_start() >= bs && x.linear_addr_start() + x.size() <= be;
    });
  }

  void trimTails(std::uint64_t bs, std::uint64_t be) {
    for (OVBlock& x : live.blocks) {
      const std::uint64_t end = x.linear_addr_start() + x.size();
      if (bs <= end && end <= be) {
        x.setSize(bs - x.linear_addr_start());
      }
    }
  }

  void trimHeads(std::uint64_t bs, std::uint64_t be) {
    for (OVBlock& x : live.blocks) {
      if (bs <= x.linear_addr_start() && x.linear_addr_start() <= be) {
        const std::uint64_t k = be - x.linear_addr_start();
        x = OVBlock(x.linear_addr_start() + k, x.file_offset_start() + k, x.size() - k);
      }
    }
  }

  std::vector<OVBlock> split(std::uint64_t bs, std::uint64_t be, std::uint64_t n) {
    std::vector<OVBlock> tails;
    for (OVBlock& x : live.blocks) {
      const std::uint64_t end = x.linear_addr_start() + x.size();
      if (x.linear_addr_start() <= bs && be <= end) {
        const std::uint64_t size = end - be;
        tails.emplace_back(be, x.file_offset_start() + x.size() - size, size);
        x.setSize(x.size() - size - n);
      }
    }
    return tails;
  }
};

}  // namespace support
