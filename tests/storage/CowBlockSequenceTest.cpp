#include "storage/CowBlockSequence.h"

#include <gmock/gmock.h>

#include <map>
#include <random>
#include <vector>

namespace {

struct ByStart {
  static std::uint64_t of(const OrderedBlock& block) { return block.block.linear_addr_start(); }
};
using Chunks = CowBlockSequence<ByStart>;

constexpr std::uint64_t kMax = Chunks::kMaxBlocks;

OrderedBlock blockAt(std::uint64_t start) {
  return {OVBlock(start, 7 * start, 1), start};
}

std::vector<std::uint64_t> startsIn(const Chunks& chunks) {
  std::vector<std::uint64_t> starts;
  chunks.forEach([&](const OrderedBlock& block) { starts.push_back(ByStart::of(block)); });
  return starts;
}

// The same with next().
std::vector<std::uint64_t> startsForward(const Chunks& chunks) {
  std::vector<std::uint64_t> starts;
  for (auto at = chunks.begin(); at != chunks.end(); at = chunks.next(at)) {
    starts.push_back(ByStart::of(chunks[at]));
  }
  return starts;
}

std::vector<std::uint64_t> startsBackward(const Chunks& chunks) {
  std::vector<std::uint64_t> starts;
  for (auto at = chunks.end(); at != chunks.begin();) {
    at = chunks.previous(at);
    starts.insert(starts.begin(), ByStart::of(chunks[at]));
  }
  return starts;
}

Chunks everyTenth(std::uint64_t count) {
  Chunks chunks;
  for (std::uint64_t i = 0; i < count; ++i) {
    chunks.insert(blockAt(10 * i));
  }
  return chunks;
}

TEST(CowBlockSequenceTest, AreEmptyAtFirst) {
  const Chunks chunks;
  EXPECT_TRUE(chunks.empty());
  EXPECT_EQ(chunks.begin(), chunks.end());
  EXPECT_EQ(chunks.find(0), chunks.end());
  EXPECT_EQ(chunks.lowerBound(0), chunks.end());
}

TEST(CowBlockSequenceTest, StandInTheOrderOfTheirKeysHoweverTheyCame) {
  Chunks chunks;
  for (const std::uint64_t start : {5U, 1U, 9U, 3U}) {
    chunks.insert(blockAt(start));
  }
  EXPECT_THAT(startsIn(chunks), testing::ElementsAre(1, 3, 5, 9));
  EXPECT_EQ(chunks.size(), 4U);
}

TEST(CowBlockSequenceTest, AreFoundAcrossTheEdgesOfChunks) {
  const Chunks chunks = everyTenth(3 * kMax);
  for (std::uint64_t i = 0; i < 3 * kMax; ++i) {
    ASSERT_EQ(chunks[chunks.find(10 * i)], blockAt(10 * i));
    ASSERT_EQ(chunks.find(10 * i + 1), chunks.end());
    ASSERT_EQ(chunks[chunks.lowerBound(i == 0 ? 0 : 10 * i - 9)], blockAt(10 * i));
  }
  EXPECT_EQ(chunks.lowerBound(30 * kMax), chunks.end());
}

TEST(CowBlockSequenceTest, AreWalkedForwardAndBackward) {
  const Chunks chunks = everyTenth(3 * kMax);
  EXPECT_EQ(startsForward(chunks), startsIn(chunks));
  EXPECT_EQ(startsBackward(chunks), startsIn(chunks));
}

TEST(CowBlockSequenceTest, CopiesDoNotSeeEachOthersChanges) {
  Chunks chunks = everyTenth(2 * kMax);
  const Chunks copy = chunks;
  const std::vector<std::uint64_t> before = startsIn(copy);
  chunks.insert(blockAt(5));
  chunks.erase(chunks.find(10 * kMax));
  chunks.replace(chunks.find(20), {OVBlock(21, 0, 3), 99});
  EXPECT_EQ(startsIn(copy), before);
  EXPECT_EQ(chunks.find(20), chunks.end());
  EXPECT_EQ(chunks[chunks.find(21)].order, 99U);
  EXPECT_EQ(chunks.size(), copy.size());
}

TEST(CowBlockSequenceTest, CanBeAddedBehindAllOthers) {
  Chunks chunks;
  for (std::uint64_t i = 0; i < 2 * kMax + 5; ++i) {
    chunks.append(blockAt(i));
  }
  EXPECT_EQ(chunks.size(), 2 * kMax + 5);
  EXPECT_EQ(startsForward(chunks), startsIn(chunks));
  EXPECT_EQ(chunks[chunks.find(kMax)], blockAt(kMax));
  const Chunks copy = chunks;
  chunks.append(blockAt(2 * kMax + 5));
  EXPECT_EQ(startsBackward(chunks).size(), 2 * kMax + 6);
  EXPECT_EQ(copy.find(2 * kMax + 5), copy.end());
}

TEST(CowBlockSequenceTest, DoAsAMapThroughManyChanges) {
  std::mt19937 random(1);
  Chunks chunks;
  std::map<std::uint64_t, OrderedBlock> model;
  for (int i = 0; i < 40'000; ++i) {
    // Growing first, then shrinking to almost nothing.
    const std::uint64_t key = random() % 5000;
    const bool grows = random() % 40'000 > static_cast<unsigned>(i);
    if (grows && !model.contains(key)) {
      chunks.insert(blockAt(key));
      model.emplace(key, blockAt(key));
    } else if (!grows && !model.empty()) {
      auto victim = model.lower_bound(key);
      victim = victim == model.end() ? model.begin() : victim;
      chunks.erase(chunks.find(victim->first));
      model.erase(victim);
    }
    ASSERT_EQ(chunks.size(), model.size());
    const auto at = chunks.lowerBound(key);
    const auto expected = model.lower_bound(key);
    ASSERT_EQ(at == chunks.end(), expected == model.end()) << i;
    if (at != chunks.end()) {
      ASSERT_EQ(chunks[at], expected->second) << i;
    }
  }
  std::vector<std::uint64_t> keys;
  for (const auto& [key, block] : model) {
    keys.push_back(key);
  }
  EXPECT_EQ(startsForward(chunks), keys);
  EXPECT_EQ(startsBackward(chunks), keys);
}

}  // namespace
