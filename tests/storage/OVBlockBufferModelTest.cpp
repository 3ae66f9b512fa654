#include <gmock/gmock.h>

#include <limits>
#include <memory>
#include <random>
#include <sstream>
#include <stdexcept>

#include "storage/OVBlockBuffer.h"
#include "storage/PlainBlockBuffer.h"
#include "storage/TransferHelpers.h"
#include "support/FailingTemporaryFiles.h"

namespace {

using storagetest::Bytes;
using storagetest::PlainBlockBuffer;

// How a sequence of operations is drawn. Small spaces make blocks meet at their edges.
struct Shape {
  const char* name;
  std::uint64_t space;    // bytes: addresses of writes and positions of cuts lie below
  std::uint64_t longest;  // bytes of a write
  std::uint64_t grain;    // addresses and sizes are multiples of this
  unsigned sequences;     // how many are run, seeds 1, 2, 3, …
  unsigned operations;    // in each
  bool wild;              // cuts beyond the end, addresses near 2^64
};

void PrintTo(const Shape& shape, std::ostream* out) {
  *out << shape.name;
}

class OVBlockBufferBesideItsModel : public testing::TestWithParam<Shape> {
 protected:
  void start(unsigned seed) {
    random_.seed(seed);
    real_ = OVBlockBuffer::init();
    model_ = PlainBlockBuffer();
    story_.str("");
    story_ << "seed " << seed << ":";
  }

  std::uint64_t below(std::uint64_t end) {
    return std::uniform_int_distribution<std::uint64_t>(0, end - 1)(random_);
  }

  std::uint64_t address() {
    if (GetParam().wild && below(20) == 0) {
      return std::numeric_limits<std::uint64_t>::max() - below(GetParam().space);
    }
    return below(GetParam().space / GetParam().grain) * GetParam().grain;
  }

  std::uint64_t cutPosition() {
    const std::uint64_t end = model_.live.fillSize / 8;
    switch (below(GetParam().wild ? 12 : 10)) {
      case 10:
        return end + below(20);
      case 11:
        return std::numeric_limits<std::uint64_t>::max() - below(400);
      case 0:
        return 0;
      case 1:
      case 2:
      case 3:
      case 4:  // an edge of a block
        return model_.live.blocks.empty()
                   ? 0
                   : model_.live.blocks[below(model_.live.blocks.size())].end() / 8;
      default:
        return end == 0 ? 0 : below(std::min(end, GetParam().space) + 1);
    }
  }

  void write() {
    std::uint64_t offset = address();
    const std::uint64_t size =
        below(12) == 0 ? 0 : below(GetParam().longest / GetParam().grain + 1) * GetParam().grain;
    if (below(3) == 0 && model_.live.fillSize < 4 * GetParam().space) {
      offset = model_.live.fillSize;  // as a recording goes on
    }
    if (offset > std::numeric_limits<std::uint64_t>::max() - size) {
      return;
    }
    story_ << " write " << offset << "+" << size;
    const Bytes data = storagetest::pattern(size, static_cast<unsigned>(random_()));
    model_.write(data, offset);
    storagetest::write(*real_, data, offset);
  }

  void cut() {
    const std::uint64_t frames = cutPosition();
    if (below(2) == 0) {
      story_ << " after " << frames;
      model_.cutAfter(frames);
      real_->cutoffBufferAfterPosition(frames);
    } else {
      story_ << " before " << frames;
      model_.cutBefore(frames);
      real_->cutoffBufferBeforePosition(frames);
    }
  }

  void undo() {
    story_ << " undo";
    bool threw = false;
    try {
      model_.undo();
    } catch (const std::out_of_range&) {
      threw = true;
    }
    if (threw) {
      EXPECT_THROW(real_->undo(), std::out_of_range);
    } else {
      real_->undo();
    }
  }

  void step() {
    const std::uint64_t choice = below(100);
    if (choice < 66) {
      write();
    } else if (choice < 80) {
      cut();
    } else if (choice < 86) {
      story_ << " waypoint";
      model_.setWaypoint();
      real_->setWaypoint();
    } else if (choice < 92) {
      undo();
    } else if (choice < 96) {
      story_ << " redo";
      model_.redo();
      real_->redo();
    } else {
      story_ << " optimize";
      model_.optimize();
      real_->optimize();
    }
  }

  void compareLookup(std::uint64_t address) {
    const auto expected = model_.locate(address);
    const BlockLocation location = real_->getFileOffsetForLinearAddress(address);
    ASSERT_EQ(location.notFound, !expected.has_value()) << address;
    if (expected) {
      const std::uint64_t in = address - expected->linear_addr_start();
      ASSERT_EQ(location.fileOffset, expected->file_offset_start() + in) << address;
      ASSERT_EQ(location.bytesAvailable, expected->size() - in) << address;
    }
  }

  void compare() {
    ASSERT_EQ(real_->blocklist(), model_.live.blocks);
    ASSERT_EQ(real_->bufferFillSize(), model_.live.fillSize);
    ASSERT_EQ(real_->f_write_pos(), model_.file.size());
    ASSERT_EQ(real_->waypointPos(), model_.position);
    ASSERT_EQ(real_->blocksAddedSinceOptimization(), model_.added);
    for (const OVBlock& block : model_.live.blocks) {
      for (const std::uint64_t edge : {block.linear_addr_start(), block.end()}) {
        for (const std::uint64_t address : {edge - 1, edge, edge + 1}) {
          ASSERT_NO_FATAL_FAILURE(compareLookup(address));
        }
      }
    }
    for (int i = 0; i < 3; ++i) {
      const std::uint64_t from = i == 0 ? 0 : address();
      const std::uint64_t count = below(3 * GetParam().space);
      ASSERT_EQ(storagetest::read(*real_, count, from), model_.read(count, from)) << from;
    }
  }

  support::FailingTemporaryFiles files_;
  platform::TemporaryFilesInstallation installation_{files_};
  std::mt19937_64 random_;
  std::shared_ptr<OVBlockBuffer> real_;
  PlainBlockBuffer model_;
  std::ostringstream story_;
};

TEST_P(OVBlockBufferBesideItsModel, DoesTheSameThroughEverySequence) {
  for (unsigned seed = 1; seed <= GetParam().sequences; ++seed) {
    start(seed);
    for (unsigned i = 0; i < GetParam().operations; ++i) {
      step();
      ASSERT_NO_FATAL_FAILURE(compare()) << story_.str();
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Shapes, OVBlockBufferBesideItsModel,
                         testing::Values(Shape{"tiny", 64, 24, 8, 1500, 60, false},
                                         Shape{"bytes", 48, 16, 1, 1500, 60, false},
                                         Shape{"long", 4096, 256, 8, 40, 500, false},
                                         Shape{"wild", 96, 32, 8, 1500, 60, true}),
                         [](const testing::TestParamInfo<Shape>& shape) {
                           return shape.param.name;
                         });

}  // namespace
