#include "document/OVSummaryWork.h"

#include <memory>
#include <thread>

#include <gtest/gtest.h>

#include "support/MemoryTestBuffer.h"
#include "support/ReadGate.h"
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

TEST_F(OVSummaryWorkTest, OneThatAnEpochEndsUnderIsSeenAndYieldsNothingOfUse) {
  ReadGate gate(*audio_);
  bool useful = true;
  std::thread other([&, epoch = work_.epoch()] { useful = work_.generate(*summary_, epoch); });
  EXPECT_TRUE(gate.waitUntilReached());
  work_.beginEpoch();
  EXPECT_TRUE(work_.isGenerating(*summary_));
  EXPECT_FALSE(work_.isGenerating(*OVDynamicWaveForm::initWithBuffer(audio_)));
  gate.open();
  other.join();
  EXPECT_FALSE(useful);
  EXPECT_FALSE(work_.isGenerating(*summary_));
}
