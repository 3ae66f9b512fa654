#include "support/fakes/ComputedTemporaryFiles.h"

#include <vector>

#include <gtest/gtest.h>

#include "support/NumberedFrames.h"

namespace support {
namespace {

class ComputedTemporaryFilesTest : public testing::Test {
 protected:
  using Samples = std::vector<float>;

  static Samples numbered(std::uint64_t first, std::size_t frames) {
    Samples samples(2 * frames);
    makeNumbered(samples.data(), first, frames);
    return samples;
  }
  platform::FileTransfer append(const Samples& samples) {
    return file_->writeAt(samples.data(), samples.size() * sizeof(float), file_->size());
  }
  Samples read(std::uint64_t frame, std::size_t frames) {
    Samples samples(2 * frames);
    samples.resize(
        file_->readAt(samples.data(), samples.size() * sizeof(float), frame * 8).byteCount /
        sizeof(float));
    return samples;
  }

  ComputedTemporaryFiles files_;
  std::unique_ptr<platform::File> file_ = std::move(files_.createUnlinked("aXXXXXX")->file);
};

TEST_F(ComputedTemporaryFilesTest, WhatWasWrittenIsReadAgain) {
  EXPECT_EQ(append(numbered(100, 50)).byteCount, 400U);
  append(numbered(150, 10));
  append(numbered(70000, 30));
  Samples all = numbered(100, 60);
  const Samples rest = numbered(70000, 30);
  all.insert(all.end(), rest.begin(), rest.end());
  EXPECT_EQ(read(0, 200), all);
  EXPECT_EQ(read(59, 2), (Samples{all[118], all[119], all[120], all[121]}));
  EXPECT_TRUE(read(90, 5).empty());
  EXPECT_TRUE(read(900, 5).empty());
  EXPECT_EQ(files_.framesWritten(), 90U);
  EXPECT_EQ(files_.stretches(), 2U);
  EXPECT_EQ(files_.faults(), 0U);
}

TEST_F(ComputedTemporaryFilesTest, LostAndRepeatedFramesInAWriteAreFaults) {
  Samples samples = numbered(100, 50);
  samples.erase(samples.begin() + 20, samples.begin() + 22);
  append(samples);
  EXPECT_EQ(files_.faults(), 1U);
  EXPECT_EQ(read(0, 100), samples);
  append({0.1F, 0.2F, 0.1F, 0.2F});  // no numbered frames at all
  EXPECT_GT(files_.faults(), 1U);
}

TEST_F(ComputedTemporaryFilesTest, WritingElsewhereThanAtTheEndIsAFault) {
  append(numbered(0, 10));
  const Samples more = numbered(10, 1);
  EXPECT_NE(file_->writeAt(more.data(), 8, 72).error, 0);
  EXPECT_NE(file_->setSize(88), 0);
  EXPECT_EQ(files_.faults(), 2U);
  EXPECT_EQ(read(0, 20), numbered(0, 10));
}

TEST_F(ComputedTemporaryFilesTest, ShortenedFileGoesOnAtItsEnd) {
  append(numbered(0, 10));
  append(numbered(100, 10));
  EXPECT_EQ(file_->setSize(80), 0);
  append(numbered(500, 5));
  Samples all = numbered(0, 10);
  const Samples rest = numbered(500, 5);
  all.insert(all.end(), rest.begin(), rest.end());
  EXPECT_EQ(read(0, 20), all);
  EXPECT_EQ(files_.faults(), 0U);
}

}  // namespace
}  // namespace support
