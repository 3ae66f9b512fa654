#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "storage/BufferPair.h"
#include "storage/OVBlockBuffer.h"
#include "support/ModelTest.h"
#include "support/PlainBlockBuffer.h"

namespace {

using modeltest::below;
using modeltest::Step;
using support::kHighestAddress;
using support::PlainBlockBuffer;

class BlockBufferPair : support::BufferPair {
 public:
  static constexpr const char* kName = "BlockBufferPair";

  BlockBufferPair() { watch(*real_); }

  void apply(const Step& step) {
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
                              support::read(*real_, count, from), model_.read(count, from));
      const double level = real_->powerAtPosition(from / 8);
      if (!support::isSameLevel(level, model_.power(from / 8))) {
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

// Parameters of the random operations. In small spaces blocks often touch.
struct Shape {
  const char* name;
  std::uint64_t space;    // bytes: limit of write addresses and cut positions
  std::uint64_t longest;  // bytes of a write
  std::uint64_t grain;    // addresses and sizes are multiples of this
  unsigned sequences;     // number of sequences, seeds 1, 2, 3, …
  unsigned operations;    // in each
  bool wild;              // cuts beyond the end, addresses near 2^64
  unsigned cuts = 140;    // in a thousand operations
  unsigned undos = 60;    // in a thousand operations
};

void PrintTo(const Shape& shape, std::ostream* out) {
  *out << shape.name;
}

std::uint64_t drawAddress(const Shape& shape, std::mt19937_64& random) {
  if (shape.wild && below(random, 20) == 0) {
    return kHighestAddress - below(random, shape.space);
  }
  return below(random, shape.space / shape.grain) * shape.grain;
}

std::uint64_t drawCut(const Shape& shape, std::mt19937_64& random, const PlainBlockBuffer& model) {
  const std::uint64_t end = model.live.fillSize / 8;
  switch (below(random, shape.wild ? 12 : 10)) {
    case 10:
      return end + below(random, 20);
    case 11:
      return kHighestAddress - below(random, 400);
    case 0:
      return 0;
    case 1:
    case 2:
    case 3:
    case 4:  // an edge of a block
      return model.live.blocks.empty()
                 ? 0
                 : model.live.blocks[below(random, model.live.blocks.size())].end() / 8;
    default:
      return end == 0 ? 0 : below(random, std::min(end, shape.space) + 1);
  }
}

Step drawWrite(const Shape& shape, std::mt19937_64& random, const PlainBlockBuffer& model) {
  const bool goesOn = below(random, 3) == 0 && model.live.fillSize < 4 * shape.space;
  const std::uint64_t offset = goesOn ? model.live.fillSize : drawAddress(shape, random);
  const std::uint64_t size =
      below(random, 12) == 0 ? 0 : below(random, shape.longest / shape.grain + 1) * shape.grain;
  return {"write", offset, size, random() % 1000};
}

Step drawStep(const Shape& shape, std::mt19937_64& random, const BlockBufferPair& pair) {
  std::uint64_t choice = below(random, 1000);
  const auto isOf = [&choice](unsigned share) {
    const bool is = choice < share;
    choice -= is ? 0 : share;
    return is;
  };
  if (isOf(shape.cuts)) {
    return {below(random, 2) == 0 ? "cutAfter" : "cutBefore", drawCut(shape, random, pair.model())};
  }
  if (isOf(shape.undos)) {
    return {"undo"};
  }
  if (isOf(shape.undos / 2)) {
    return {"redo"};
  }
  if (isOf(shape.undos / 2)) {
    return {"rollBack"};
  }
  if (isOf(60)) {
    return {"waypoint"};
  }
  if (isOf(50)) {
    return {choice < 10 ? "reverse" : "optimize"};
  }
  return drawWrite(shape, random, pair.model());
}

class OVBlockBufferModelTest : public testing::TestWithParam<Shape> {};

TEST_P(OVBlockBufferModelTest, DoesTheSameThroughEverySequence) {
  const Shape& shape = GetParam();
  const auto draw = [&shape](std::mt19937_64& random, const BlockBufferPair& pair) {
    return drawStep(shape, random, pair);
  };
  EXPECT_TRUE(modeltest::holds<BlockBufferPair>(shape.sequences, shape.operations, draw));
}

INSTANTIATE_TEST_SUITE_P(Shapes, OVBlockBufferModelTest,
                         testing::Values(Shape{"tiny", 64, 24, 8, 1500, 60, false},
                                         Shape{"bytes", 48, 16, 1, 1500, 60, false},
                                         Shape{"long", 4096, 256, 8, 40, 500, false},
                                         Shape{"many", 60'000, 80, 8, 2, 2500, false, 1, 4},
                                         Shape{"wild", 96, 32, 8, 1500, 60, true}),
                         [](const testing::TestParamInfo<Shape>& shape) {
                           return shape.param.name;
                         });

}  // namespace
