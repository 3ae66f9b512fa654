#include "waveform/SummaryReader.h"

#include <gmock/gmock.h>

#include <random>
#include <vector>

#include "LiteralSummaries.h"
#include "support/TestAudio.h"
#include "support/fakes/MemoryTestBuffer.h"

namespace {

using support::roughNoise;

struct SeenBlock {
  std::uint64_t byteCount;
  std::uint64_t frameCount;
  float smallest;
  float largest;

  friend bool operator==(const SeenBlock&, const SeenBlock&) = default;
  friend std::ostream& operator<<(std::ostream& out, const SeenBlock& block) {
    return out << block.byteCount << " bytes, " << block.frameCount << " frames, " << block.smallest
               << " to " << block.largest;
  }
};

std::vector<SeenBlock> blocksOf(SummaryReader& reader, std::uint64_t byteOffset = 0) {
  std::vector<SeenBlock> seen;
  for (auto blocks = reader.readBlocks(byteOffset); !blocks.empty();
       blocks = reader.readBlocks(byteOffset)) {
    for (const SummaryReader::Block& block : blocks) {
      seen.push_back(
          {block.byteCount, block.frameCount, block.extent.smallest, block.extent.largest});
      byteOffset += block.byteCount;
    }
  }
  return seen;
}

/// What single reads of one block each answer.
std::vector<SeenBlock> literalBlocksOf(MemoryTestBuffer& audio, std::uint64_t framesPerBlock,
                                       std::uint64_t byteOffset = 0) {
  std::vector<SeenBlock> seen;
  std::vector<float> scratch(framesPerBlock * 2);
  for (;;) {
    const auto result = audio.readDataInto(scratch.data(), framesPerBlock * 8, byteOffset);
    if (result.frameCount == 0) {
      return seen;
    }
    const literal::Extent extent = literal::scan(scratch.data(), result.frameCount);
    seen.push_back({result.byteCount, result.frameCount, extent.smallest, extent.largest});
    byteOffset += result.byteCount;
  }
}

TEST(SummaryReaderTest, OneReadServesManyBlocks) {
  MemoryTestBuffer audio;
  audio.append(support::sine(32768, 0.5, 50));
  SummaryReader reader(audio, 64);
  EXPECT_EQ(reader.readBlocks(0).size(), 512U);
  EXPECT_EQ(audio.readCount(), 1U);
}

TEST(SummaryReaderTest, AnEmptyBufferHasNoBlocks) {
  MemoryTestBuffer audio;
  SummaryReader reader(audio, 64);
  EXPECT_TRUE(reader.readBlocks(0).empty());
}

TEST(SummaryReaderTest, BytesOfAnUnfinishedFrameAloneMakeNoBlock) {
  MemoryTestBuffer audio;
  audio.append(support::silence(64));
  audio.resizeInBytes(64 * 8 + 7);
  SummaryReader reader(audio, 64);
  EXPECT_EQ(blocksOf(reader).size(), 1U);
}

TEST(SummaryReaderTest, BytesOfAnUnfinishedFrameBelongToTheShortBlockBeforeThem) {
  MemoryTestBuffer audio;
  audio.append(support::silence(65));
  audio.resizeInBytes(65 * 8 + 3);
  SummaryReader reader(audio, 64);
  const std::vector<SeenBlock> blocks = blocksOf(reader);
  ASSERT_EQ(blocks.size(), 2U);
  EXPECT_EQ(blocks[1].byteCount, 11U);
  EXPECT_EQ(blocks[1].frameCount, 1U);
}

TEST(SummaryReaderTest, ALongBlockIsReadInPiecesOfBoundedSize) {
  MemoryTestBuffer audio;
  std::mt19937_64 random(7);
  audio.append(roughNoise(5000, random));
  SummaryReader reader(audio, 1000, 512);
  EXPECT_EQ(blocksOf(reader), literalBlocksOf(audio, 1000));
}

TEST(SummaryReaderTest, OfAShortLongBlockOnlyTheFirstHalfOfItsFramesCounts) {
  // 60 of 100 frames come, in pieces of 8. Frame 29 is the last one that is looked at; of a whole
  // block it would have been frame 49.
  MemoryTestBuffer audio;
  audio.append(support::stereo(60, [](std::uint64_t frame) {
    return frame == 29 ? 0.5 : frame == 30 ? 0.9 : 0.0;
  }));
  SummaryReader reader(audio, 100, 64);
  const std::vector<SeenBlock> blocks = blocksOf(reader);
  ASSERT_EQ(blocks.size(), 1U);
  EXPECT_EQ(blocks[0].frameCount, 60U);
  EXPECT_EQ(blocks[0].largest, 0.5F);
}

TEST(SummaryReaderTest, AudioCutOffBetweenThePiecesStillGivesAnExtent) {
  MemoryTestBuffer audio;
  audio.append(support::stereo(60, [](std::uint64_t) { return 0.5; }));
  SummaryReader reader(audio, 100, 64);
  audio.beforeRead = [&, reads = 0](std::uint64_t) mutable {
    if (++reads == 9) {  // eight pieces until the end; then the first half again
      audio.resizeInBytes(0);
    }
  };
  const auto blocks = reader.readBlocks(0);
  ASSERT_EQ(blocks.size(), 1U);
  EXPECT_EQ(blocks[0].extent.spread(), 0.0F);
}

TEST(SummaryReaderTest, EqualsSingleReadsWhateverTheBlockTheBatchAndTheHoles) {
  std::mt19937_64 random(20);
  MemoryTestBuffer audio;
  for (int round = 0; round < 6000; ++round) {
    audio.resizeInBytes(0);
    audio.clearHoles();
    audio.append(roughNoise(random() % 3000, random));
    audio.resizeInBytes(audio.byteCount() + random() % 8);
    for (std::uint64_t holes = random() % 3; holes > 0; --holes) {
      const std::uint64_t begin = random() % (audio.byteCount() + 1);
      audio.addHole(begin, begin + random() % 500);
    }
    const std::uint64_t framesPerBlock = 1 + random() % (round % 2 == 0 ? 20 : 700);
    const std::uint64_t batchBytes = 8 * (1 + random() % 300);
    const std::uint64_t start = random() % 4 == 0 ? random() % (audio.byteCount() + 9) : 0;
    SummaryReader reader(audio, framesPerBlock, batchBytes);
    ASSERT_EQ(blocksOf(reader, start), literalBlocksOf(audio, framesPerBlock, start))
        << "round " << round << ": blocks of " << framesPerBlock << " frames, batches of "
        << batchBytes << " bytes, from " << start;
  }
}

TEST(SummaryReaderTest, EqualsSingleReadsBesideAWriterThatAppendsAtTheSamePlaces) {
  std::mt19937_64 random(21);
  for (int round = 0; round < 2000; ++round) {
    const std::vector<float> first = roughNoise(random() % 2000, random);
    const std::vector<float> more = roughNoise(random() % 2000, random);
    const std::uint64_t framesPerBlock = 1 + random() % 200;
    MemoryTestBuffer audio;
    audio.append(first);
    // The writer appends before one of the reads that start a batch or follow a short block.
    SummaryReader reader(audio, framesPerBlock, 8 * framesPerBlock * (1 + random() % 8));
    std::uint64_t appendedAt = ~std::uint64_t{0};
    audio.beforeRead = [&, untilThen = random() % 6](std::uint64_t fromOffset) mutable {
      if (untilThen-- == 0) {
        appendedAt = fromOffset;
        audio.append(more);
      }
    };
    const std::vector<SeenBlock> blocks = blocksOf(reader);

    MemoryTestBuffer model;
    model.append(first);
    model.beforeRead = [&](std::uint64_t fromOffset) {
      if (fromOffset == appendedAt) {
        model.append(more);
        appendedAt = ~std::uint64_t{0};
      }
    };
    ASSERT_EQ(blocks, literalBlocksOf(model, framesPerBlock)) << "round " << round;
  }
}

TEST(SummaryReaderTest, ALongBlockBesideAWriterEqualsSingleReadsOfSomeMoment) {
  std::mt19937_64 random(22);
  for (int round = 0; round < 500; ++round) {
    const std::vector<float> first = roughNoise(random() % 1000, random);
    const std::vector<float> more = roughNoise(random() % 1000, random);
    const std::uint64_t framesPerBlock = 20 + random() % 200;
    MemoryTestBuffer audio;
    audio.append(first);
    audio.beforeRead = [&, untilThen = random() % 40](std::uint64_t) mutable {
      if (untilThen-- == 0) {
        audio.append(more);
      }
    };
    SummaryReader reader(audio, framesPerBlock, 8 * (1 + random() % 19));
    const std::vector<SeenBlock> blocks = blocksOf(reader);

    bool equalsSomeMoment = false;
    for (std::uint64_t moment = 0; moment <= blocks.size() + 1; ++moment) {
      MemoryTestBuffer model;
      model.append(first);
      model.beforeRead = [&, untilThen = moment](std::uint64_t) mutable {
        if (untilThen-- == 0) {
          model.append(more);
        }
      };
      equalsSomeMoment = equalsSomeMoment || blocks == literalBlocksOf(model, framesPerBlock);
    }
    ASSERT_TRUE(equalsSomeMoment) << "round " << round;
  }
}

}  // namespace
