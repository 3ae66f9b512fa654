#include "document/spectrum/OVRecordedChunk.h"

#include <atomic>
#include <cstring>
#include <numeric>
#include <thread>

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// The bytes first, first + 1, …
std::vector<std::uint8_t> countingBytes(std::size_t size, std::uint8_t first = 0) {
  std::vector<std::uint8_t> bytes(size);
  std::iota(bytes.begin(), bytes.end(), first);
  return bytes;
}

void capture(OVRecordedChunk& chunk, const std::vector<std::uint8_t>& bytes) {
  chunk.capture(bytes.data(), static_cast<std::uint32_t>(bytes.size()));
}

std::vector<int> next(OVRecordedChunk& chunk) {
  std::vector<int> values;
  for (const std::byte byte : chunk.nextQuarter()) {
    values.push_back(std::to_integer<int>(byte));
  }
  return values;
}

}  // namespace

TEST(OVRecordedChunkTest, HasNothingToGiveAtFirst) {
  OVRecordedChunk chunk;
  EXPECT_THAT(next(chunk), IsEmpty());
  EXPECT_THAT(chunk.fft_data(), IsEmpty());
}

TEST(OVRecordedChunkTest, IsConsumedInFourQuartersAndStartsAgainWithTheFifth) {
  OVRecordedChunk chunk;
  capture(chunk, countingBytes(12));
  EXPECT_THAT(next(chunk), ElementsAre(0, 1, 2));
  EXPECT_THAT(next(chunk), ElementsAre(3, 4, 5));
  EXPECT_THAT(next(chunk), ElementsAre(6, 7, 8));
  EXPECT_THAT(next(chunk), ElementsAre(9, 10, 11));
  EXPECT_THAT(next(chunk), ElementsAre(0, 1, 2));
}

TEST(OVRecordedChunkTest, ANewChunkOfTheSameSizeStartsAtItsBeginning) {
  OVRecordedChunk chunk;
  capture(chunk, countingBytes(8));
  EXPECT_THAT(next(chunk), ElementsAre(0, 1));
  capture(chunk, countingBytes(8, 100));
  EXPECT_THAT(next(chunk), ElementsAre(100, 101));
  EXPECT_THAT(next(chunk), ElementsAre(102, 103));
}

TEST(OVRecordedChunkTest, ANewChunkMayBeSmallerOrLarger) {
  OVRecordedChunk chunk;
  capture(chunk, countingBytes(16));
  EXPECT_THAT(next(chunk), ElementsAre(0, 1, 2, 3));
  capture(chunk, countingBytes(4, 50));
  EXPECT_THAT(next(chunk), ElementsAre(50));
  capture(chunk, countingBytes(20, 60));
  EXPECT_THAT(next(chunk), ElementsAre(60, 61, 62, 63, 64));
  EXPECT_EQ(chunk.fft_data().size(), 20U);
}

TEST(OVRecordedChunkTest, KeepsACopyOfItsOwn) {
  OVRecordedChunk chunk;
  auto bytes = countingBytes(4);
  capture(chunk, bytes);
  bytes.assign(4, 99);
  EXPECT_THAT(chunk.fft_data(),
              ElementsAre(std::byte{0}, std::byte{1}, std::byte{2}, std::byte{3}));
}

TEST(OVRecordedChunkTest, NeverReadsPastTheEndOfAChunkThatHasNoWholeQuarters) {
  OVRecordedChunk chunk;
  capture(chunk, countingBytes(10));
  EXPECT_THAT(next(chunk), ElementsAre(0, 1));
  EXPECT_THAT(next(chunk), ElementsAre(2, 3));
  EXPECT_THAT(next(chunk), ElementsAre(4, 5));
  EXPECT_THAT(next(chunk), ElementsAre(6, 7));
  EXPECT_THAT(next(chunk), ElementsAre(8, 9));
  EXPECT_THAT(next(chunk), ElementsAre(0, 1));

  capture(chunk, countingBytes(15));
  for (int tick = 0; tick < 4; ++tick) {
    EXPECT_EQ(next(chunk).size(), 3U);
  }
  EXPECT_THAT(next(chunk), ElementsAre(12, 13, 14));
  EXPECT_THAT(next(chunk), ElementsAre(0, 1, 2));

  capture(chunk, countingBytes(11));
  for (int tick = 0; tick < 5; ++tick) {
    EXPECT_EQ(next(chunk).size(), 2U);
  }
  EXPECT_THAT(next(chunk), ElementsAre(10));
  EXPECT_THAT(next(chunk), ElementsAre(0, 1));
}

TEST(OVRecordedChunkTest, OfFewerThanFourBytesHasEmptyQuarters) {
  OVRecordedChunk chunk;
  for (const std::size_t size : {0U, 1U, 3U}) {
    capture(chunk, countingBytes(size));
    EXPECT_THAT(next(chunk), IsEmpty());
    EXPECT_THAT(next(chunk), IsEmpty());
  }
}

TEST(OVRecordedChunkTest, NeverMixesTwoChunksWhileTheyAreReplaced) {
  OVRecordedChunk chunk;
  std::atomic<bool> done = false;
  std::thread writer([&] {
    for (int round = 0; round < 4000; ++round) {
      const std::vector<std::uint8_t> bytes(64U << (round % 3),
                                            static_cast<std::uint8_t>(round % 251));
      capture(chunk, bytes);
    }
    done = true;
  });
  bool mixed = false;
  while (!done) {
    const auto values = next(chunk);
    mixed = mixed || (!values.empty() && values.front() != values.back());
  }
  writer.join();
  EXPECT_FALSE(mixed);
}
