#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "storage/BufferPair.h"
#include "storage/OVBlockBuffer.h"
#include "support/ModelTest.h"
#include "support/PlainBlockBuffer.h"

namespace support {

/// A block buffer and its model.
///
/// Threads: one.
class BlockBufferPair : protected BufferPair {
 public:
  static constexpr const char* kName = "BlockBufferPair";

  BlockBufferPair() { watch(*real_); }

  void apply(const modeltest::Step& step) {
    if (step.what == "write") {
      if (step.a <= kHighestAddress - step.b) {
        model_.write(writeReal(*real_, step.a, step.b, step.c), step.a);
      }
    } else if (step.what == "cutAfter") {
      real_->cutoffBufferAfterPosition(step.a);
      model_.cutAfter(step.a);
    } else if (step.what == "cutBefore") {
      real_->cutoffBufferBeforePosition(step.a);
      model_.cutBefore(step.a);
    } else if (step.what == "waypoint") {
      real_->setWaypoint();
      model_.setWaypoint();
    } else if (step.what == "undo") {
      realThrew_ = throwsOutOfRange([this] { real_->undo(); });
      modelThrew_ = throwsOutOfRange([this] { model_.undo(); });
    } else if (step.what == "rollBack") {
      realThrew_ = throwsOutOfRange([this] { real_->rollBack(); });
      modelThrew_ = throwsOutOfRange([this] { model_.rollBack(); });
    } else if (step.what == "redo") {
      real_->redo();
      model_.redo();
    } else if (step.what == "optimize") {
      real_->optimize();
      model_.optimize();
    } else if (step.what == "reverse") {
      real_->reverseBuffer();
    }
  }

  std::string difference() {
    modeltest::Comparison comparison;
    comparison.tell("out of range", realThrew_, modelThrew_);
    comparison.tellSequence("block list", real_->blocklist(), model_.live.blocks);
    comparison.tell("fill size", real_->bufferFillSize(), model_.live.fillSize);
    comparison.tell("frames", real_->bufferSizeInFrames(), model_.live.fillSize / 8);
    comparison.tell("filled frames", real_->bufferFillSizeInFrames(), model_.live.fillSize / 8);
    comparison.tell("end of the file", real_->f_write_pos(), model_.file.size());
    comparison.tell("waypoints", real_->waypointStack().size(), model_.waypoints.size());
    comparison.tell("waypoint position", real_->waypointPos(), model_.position);
    comparison.tell("redo state", real_->redoState() != nullptr, model_.redoable.has_value());
    comparison.tell("writes since optimizing", real_->blocksAddedSinceOptimization(), model_.added);
    const std::vector<OVBlock>& blocks = model_.live.blocks;
    for (std::size_t i = 0; i < blocks.size(); i += 1 + blocks.size() / kLookedUp) {
      const OVBlock& block = blocks[i];
      for (const std::uint64_t edge : {block.linear_addr_start(), block.end()}) {
        for (const std::uint64_t address : {edge - 1, edge, edge + 1}) {
          compareLookup(comparison, address);
        }
      }
    }
    compareReads(comparison);
    compareDelegateCalls(comparison);
    return comparison.text();
  }

  [[nodiscard]] const PlainBlockBuffer& model() const { return model_; }

 protected:
  [[nodiscard]] OVBlockBuffer& real() const { return *real_; }

 private:
  static constexpr std::size_t kLookedUp = 64;  // maximum blocks, since each lookup scans the model

  template <typename Call>
  static bool throwsOutOfRange(Call call) {
    try {
      call();
      return false;
    } catch (const std::out_of_range&) {
      return true;
    }
  }

  void compareLookup(modeltest::Comparison& comparison, std::uint64_t address) const {
    const auto expected = model_.locate(address);
    real_->lock();
    const BlockLocation location = real_->getFileOffsetForLinearAddress(address);
    real_->unlock();
    const std::uint64_t in = expected ? address - expected->linear_addr_start() : 0;
    const std::uint64_t offset = expected ? expected->file_offset_start() + in : 0;
    const std::uint64_t available = expected ? expected->size() - in : 0;
    if (location.notFound == expected.has_value() || location.fileOffset != offset ||
        location.bytesAvailable != available) {
      const std::string at = " of " + std::to_string(address);
      comparison.tell("place not found" + at, location.notFound, !expected.has_value());
      comparison.tell("place" + at, location.fileOffset, offset);
      comparison.tell("bytes" + at, location.bytesAvailable, available);
    }
  }

  // At the start and at two places that vary from step to step.
  void compareReads(modeltest::Comparison& comparison) {
    const std::uint64_t length = std::min<std::uint64_t>(model_.live.fillSize, 20'000);
    const std::uint64_t some = length == 0 ? 0 : model_.file.size() * 31 % length;
    for (const auto& [from, count] :
         {std::pair{std::uint64_t{0}, length + 8}, std::pair{some, some / 2 + 1},
          std::pair{length / 2, length}}) {
      comparison.tellSequence("read of " + std::to_string(count) + " at " + std::to_string(from),
                              read(*real_, count, from), model_.read(count, from));
      const double level = real_->powerAtPosition(from / 8);
      if (!isSameLevel(level, model_.power(from / 8))) {
        comparison.tell("level of frame " + std::to_string(from / 8), level,
                        model_.power(from / 8));
      }
    }
  }

  const std::shared_ptr<OVBlockBuffer> real_ = OVBlockBuffer::init();
  PlainBlockBuffer model_;
  bool realThrew_ = false;
  bool modelThrew_ = false;
};

}  // namespace support
