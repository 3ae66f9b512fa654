#include "document/summaries/OVSummaryWork.h"

#include <memory>
#include <new>
#include <thread>

#include <gtest/gtest.h>

#include "support/Gate.h"
#include "support/fakes/MemoryTestBuffer.h"
#include "waveform/OVDynamicWaveForm.h"

class OVSummaryWorkTest : public testing::Test {
 protected:
  std::shared_ptr<MemoryTestBuffer> audio_ = std::make_shared<MemoryTestBuffer>();
  std::shared_ptr<OVDynamicWaveForm> summary_ = OVDynamicWaveForm::initWithBuffer(audio_);
  OVSummaryWork work_;
};

TEST_F(OVSummaryWorkTest, AGenerationOfThePresentEpochRunsAndSaysSo) {
  EXPECT_TRUE(work_.generate(*summary_, work_.epoch()));
  EXPECT_FALSE(work_.isGenerating(*summary_));
}

TEST_F(OVSummaryWorkTest, OneOfAnEarlierEpochNeverBegins) {
  const auto epoch = work_.epoch();
  work_.beginEpoch();
  int reads = 0;
  audio_->beforeRead = [&reads](std::uint64_t) { ++reads; };
  EXPECT_FALSE(work_.generate(*summary_, epoch));
  EXPECT_EQ(reads, 0);
}

TEST_F(OVSummaryWorkTest, OneWithoutMemoryEndsAndIsAskedForAgain) {
  audio_->beforeRead = [](std::uint64_t) { throw std::bad_alloc(); };
  EXPECT_FALSE(work_.generate(*summary_, work_.epoch()));
  EXPECT_FALSE(work_.isGenerating(*summary_));
  EXPECT_TRUE(summary_->isRegenerating());
  audio_->beforeRead = nullptr;
  EXPECT_TRUE(work_.generate(*summary_, work_.epoch()));
  EXPECT_FALSE(summary_->isRegenerating());
}

TEST_F(OVSummaryWorkTest, OneThatIsCancelledYieldsNothingAndNoneFollows) {
  support::Gate gate;
  audio_->beforeRead = gate.holdingTheFirst();
  bool useful = true;
  std::thread other([&] { useful = work_.generate(*summary_, work_.epoch()); });
  EXPECT_TRUE(gate.awaitArrival());
  work_.cancel();
  gate.open();
  other.join();
  EXPECT_FALSE(useful);
  EXPECT_FALSE(work_.generate(*summary_, work_.epoch()));
}

TEST_F(OVSummaryWorkTest, OneThatAnEpochEndsUnderIsSeenAndYieldsNothingOfUse) {
  support::Gate gate;
  audio_->beforeRead = gate.holdingTheFirst();
  bool useful = true;
  std::thread other([&, epoch = work_.epoch()] { useful = work_.generate(*summary_, epoch); });
  EXPECT_TRUE(gate.awaitArrival());
  work_.beginEpoch();
  EXPECT_TRUE(work_.isGenerating(*summary_));
  EXPECT_FALSE(work_.isGenerating(*OVDynamicWaveForm::initWithBuffer(audio_)));
  gate.open();
  other.join();
  EXPECT_FALSE(useful);
  EXPECT_FALSE(work_.isGenerating(*summary_));
}
