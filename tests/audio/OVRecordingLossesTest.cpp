#include "audio/OVRecordingLosses.h"

#include <gtest/gtest.h>

namespace {

using Place = OVRecordingLoss::Place;

class OVRecordingLossesTest : public testing::Test {
 protected:
  void sound(std::uint32_t frames, std::uint64_t missingBefore = 0) {
    platform::AudioQueueBuffer buffer;
    buffer.missingBefore = missingBefore;
    losses_.written(buffer, at_);
    at_ += frames;
  }
  void silence(std::uint32_t frames) {
    platform::AudioQueueBuffer buffer;
    buffer.silencedFrames = frames;
    losses_.written(buffer, at_);
    at_ += frames;
  }

  OVRecordingLosses losses_;
  std::uint64_t at_ = 1000;  // of the document
};

TEST_F(OVRecordingLossesTest, ARecordingWithoutALossHasNone) {
  losses_.begin(7);
  sound(4096);
  sound(4096);
  losses_.end(7, at_);
  EXPECT_TRUE(losses_.all().empty());
}

TEST_F(OVRecordingLossesTest, TheSilenceOfOneGapIsOneLossKnownWhenSoundFollows) {
  losses_.begin(0);
  sound(4096);
  silence(4096);
  silence(100);
  EXPECT_TRUE(losses_.all().empty());
  sound(4096);
  ASSERT_EQ(losses_.all().size(), 1U);
  EXPECT_EQ(losses_.all()[0].atFrame, 5096U);
  EXPECT_EQ(losses_.all()[0].frames, 4196U);
  EXPECT_EQ(losses_.all()[0].place, Place::silence);
  losses_.end(4196, at_);
  EXPECT_EQ(losses_.all().size(), 1U);
}

TEST_F(OVRecordingLossesTest, TwoGapsAreTwo) {
  losses_.begin(0);
  silence(10);
  sound(4096);
  silence(20);
  losses_.end(30, at_);
  ASSERT_EQ(losses_.all().size(), 2U);
  EXPECT_EQ(losses_.all()[1].frames, 20U);
}

TEST_F(OVRecordingLossesTest, AGapThatIsTooLongIsToldAtItsPlace) {
  losses_.begin(0);
  sound(4096);
  sound(4096, 5'000'000);
  losses_.end(5'000'000, at_);
  ASSERT_EQ(losses_.all().size(), 1U);
  EXPECT_EQ(losses_.all()[0].atFrame, 5096U);
  EXPECT_EQ(losses_.all()[0].frames, 5'000'000U);
  EXPECT_EQ(losses_.all()[0].place, Place::nothing);
}

TEST_F(OVRecordingLossesTest, WhatWasLostAtTheEndIsToldAtTheEnd) {
  losses_.begin(50);
  sound(4096);
  silence(10);
  sound(4096);
  losses_.end(50 + 10 + 700, at_);
  ASSERT_EQ(losses_.all().size(), 2U);
  EXPECT_EQ(losses_.all()[1].atFrame, at_);
  EXPECT_EQ(losses_.all()[1].frames, 700U);
  EXPECT_EQ(losses_.all()[1].place, Place::nothing);
}

TEST_F(OVRecordingLossesTest, SilenceForALossBeforeThePressIsNotCountedTwice) {
  losses_.begin(500);
  silence(500);  // lost before, delivered after
  sound(4096);
  losses_.end(500, at_);
  EXPECT_EQ(losses_.all().size(), 1U);
}

TEST_F(OVRecordingLossesTest, TheNextRecordingBeginsWithoutAny) {
  losses_.begin(0);
  silence(10);
  losses_.end(10, at_);
  losses_.begin(10);
  EXPECT_TRUE(losses_.all().empty());
}

}  // namespace
