#pragma once

#include <algorithm>
#include <cstdint>
#include <ostream>
#include <random>

#include "storage/BufferPair.h"
#include "support/ModelTest.h"
#include "support/PlainBlockBuffer.h"

/// Random sequences of operations on a block buffer.
///
/// Threads: one.
namespace support {

/// Parameters of the random operations. In small spaces blocks often touch.
struct BlockSteps {
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

inline void PrintTo(const BlockSteps& shape, std::ostream* out) {
  *out << shape.name;
}

inline std::uint64_t drawAddress(const BlockSteps& shape, std::mt19937_64& random) {
  if (shape.wild && modeltest::below(random, 20) == 0) {
    return kHighestAddress - modeltest::below(random, shape.space);
  }
  return modeltest::below(random, shape.space / shape.grain) * shape.grain;
}

inline std::uint64_t drawCut(const BlockSteps& shape, std::mt19937_64& random,
                             const PlainBlockBuffer& model) {
  const std::uint64_t end = model.live.fillSize / 8;
  switch (modeltest::below(random, shape.wild ? 12 : 10)) {
    case 10:
      return end + modeltest::below(random, 20);
    case 11:
      return kHighestAddress - modeltest::below(random, 400);
    case 0:
      return 0;
    case 1:
    case 2:
    case 3:
    case 4:  // an edge of a block
      return model.live.blocks.empty()
                 ? 0
                 : model.live.blocks[modeltest::below(random, model.live.blocks.size())].end() / 8;
    default:
      return end == 0 ? 0 : modeltest::below(random, std::min(end, shape.space) + 1);
  }
}

inline modeltest::Step drawWrite(const BlockSteps& shape, std::mt19937_64& random,
                                 const PlainBlockBuffer& model) {
  const bool goesOn = modeltest::below(random, 3) == 0 && model.live.fillSize < 4 * shape.space;
  const std::uint64_t offset = goesOn ? model.live.fillSize : drawAddress(shape, random);
  const std::uint64_t size =
      modeltest::below(random, 12) == 0
          ? 0
          : modeltest::below(random, shape.longest / shape.grain + 1) * shape.grain;
  return {"write", offset, size, random() % 1000};
}

inline modeltest::Step drawStep(const BlockSteps& shape, std::mt19937_64& random,
                                const PlainBlockBuffer& model) {
  std::uint64_t choice = modeltest::below(random, 1000);
  const auto isOf = [&choice](unsigned share) {
    const bool is = choice < share;
    choice -= is ? 0 : share;
    return is;
  };
  if (isOf(shape.cuts)) {
    return {modeltest::below(random, 2) == 0 ? "cutAfter" : "cutBefore",
            drawCut(shape, random, model)};
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
  return drawWrite(shape, random, model);
}

/// The name of a test with these steps.
template <typename Parameter>
std::string nameOfSteps(const Parameter& info) {
  return info.param.name;
}

/// The sequences that every test of a block buffer runs.
inline auto allBlockSteps() {
  return testing::Values(BlockSteps{"tiny", 64, 24, 8, 1500, 60, false},
                         BlockSteps{"bytes", 48, 16, 1, 1500, 60, false},
                         BlockSteps{"long", 4096, 256, 8, 40, 500, false},
                         BlockSteps{"many", 60'000, 80, 8, 2, 2500, false, 1, 4},
                         BlockSteps{"wild", 96, 32, 8, 1500, 60, true});
}

}  // namespace support
