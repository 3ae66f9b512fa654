#include "waveform/OVDynamicWaveForm.h"

#include <gmock/gmock.h>

#include <atomic>
#include <future>
#include <limits>
#include <memory>
#include <vector>

#include "support/Gate.h"
#include "support/TestAudio.h"
#include "support/fakes/MemoryTestBuffer.h"

namespace {

using testing::Each;
using testing::ElementsAre;
using testing::Gt;
using testing::IsEmpty;
using testing::Lt;

std::vector<float> elementsOf(const OVWaveformSummary& summary) {
  std::vector<float> elements;
  summary.copyElementsInto(elements);
  return elements;
}

class OVDynamicWaveFormTest : public testing::Test {
 protected:
  const std::shared_ptr<MemoryTestBuffer> audio_ = std::make_shared<MemoryTestBuffer>();
  const std::shared_ptr<OVDynamicWaveForm> summary_ = OVDynamicWaveForm::initWithBuffer(audio_);

  void generateWith(const std::vector<float>& samples) {
    audio_->append(samples);
    summary_->generate();
  }
};

TEST_F(OVDynamicWaveFormTest, AFreshOneHasRoomFor1024ElementsOf64FramesAndNone) {
  EXPECT_EQ(summary_->capacity(), 1024U);
  EXPECT_EQ(summary_->chunksize(), 64U);
  EXPECT_EQ(summary_->elementCount(), 0U);
  EXPECT_EQ(summary_->readerPos(), 0U);
  EXPECT_EQ(summary_->maxAmplitude(), 1.0);
  EXPECT_FALSE(summary_->isRegenerating());
  EXPECT_EQ(summary_->audioBuffer(), audio_);
  EXPECT_THAT(std::vector<float>(summary_->data(), summary_->data() + 1024), Each(0.0F));
}

TEST_F(OVDynamicWaveFormTest, AnEmptyBufferGivesNoElements) {
  summary_->generate();
  EXPECT_EQ(summary_->elementCount(), 0U);
  EXPECT_THAT(elementsOf(*summary_), IsEmpty());
  EXPECT_FALSE(summary_->isRegenerating());
}

TEST_F(OVDynamicWaveFormTest, WithoutABufferItStaysEmpty) {
  const auto summary = OVDynamicWaveForm::initWithBuffer(nullptr);
  summary->generate();
  EXPECT_EQ(summary->elementCount(), 0U);
  EXPECT_EQ(summary->readerPos(), 0U);
  EXPECT_FALSE(summary->isRegenerating());
}

TEST_F(OVDynamicWaveFormTest, AudioFor1024ElementsFillsTheArrayExactly) {
  generateWith(support::risingBlocks(0, 1024, 2048));
  EXPECT_EQ(summary_->elementCount(), 1024U);
  EXPECT_EQ(summary_->producedElementCount(), 1024U);
  EXPECT_EQ(summary_->chunksize(), 64U);
  EXPECT_EQ(elementsOf(*summary_)[1023], 1024.0F / 2048);
}

TEST_F(OVDynamicWaveFormTest, TheElementAfterTheLastMergesPairsAndIsAppended) {
  generateWith(support::risingBlocks(0, 1025, 2048));
  // The element that caused the merging is the 513th, though it covers 64 frames only.
  EXPECT_EQ(summary_->elementCount(), 513U);
  EXPECT_EQ(summary_->producedElementCount(), 1024U);
  EXPECT_EQ(summary_->chunksize(), 128U);
  const std::vector<float> elements = elementsOf(*summary_);
  EXPECT_EQ(elements[0], 2.0F / 2048);
  EXPECT_EQ(elements[511], 1024.0F / 2048);
  EXPECT_EQ(elements[512], 1025.0F / 2048);
}

TEST_F(OVDynamicWaveFormTest, AfterMergingAnElementTakesTwoReadsOfTheSizeFixedAtTheStart) {
  generateWith(support::risingBlocks(0, 1026, 2048));
  EXPECT_EQ(summary_->elementCount(), 513U);
  EXPECT_EQ(summary_->pendingElement().readCount, 1U);
  EXPECT_EQ(summary_->pendingElement().frameCount, 64U);
  generateWith(support::risingBlocks(1026, 1, 2048));
  // The next call reads 128 frames at a time: 64 are there and complete the element.
  EXPECT_EQ(summary_->elementCount(), 514U);
  EXPECT_EQ(elementsOf(*summary_)[513], 1027.0F / 2048);
}

TEST_F(OVDynamicWaveFormTest, ALongRecordingKeeps512To1024Elements) {
  generateWith(support::sine(64 * 5000, 0.5, 30));
  EXPECT_EQ(summary_->chunksize(), 512U);
  EXPECT_GE(summary_->elementCount(), 512U);
  EXPECT_LE(summary_->elementCount(), 1024U);
  EXPECT_EQ(summary_->readerPos(), 64U * 5000);
}

TEST_F(OVDynamicWaveFormTest, OneHundredFramesGiveOneElementAndKeep36Pending) {
  generateWith(support::sine(100, 0.5, 10));
  EXPECT_EQ(summary_->elementCount(), 1U);
  EXPECT_EQ(summary_->pendingElement().frameCount, 36U);
  EXPECT_EQ(summary_->pendingElement().readCount, 1U);
  EXPECT_EQ(summary_->readerPos(), 100U);
}

TEST_F(OVDynamicWaveFormTest, PendingFramesAreCompletedByALaterGeneration) {
  const auto loudAtFrame80 = [](std::uint64_t frame) { return frame == 80 ? 0.5 : 0.0; };
  generateWith(support::stereo(100, loudAtFrame80));
  generateWith(support::silence(10));
  EXPECT_EQ(summary_->elementCount(), 1U);
  EXPECT_EQ(summary_->pendingElement().frameCount, 46U);
  generateWith(support::silence(30));
  // 46 + 30 frames have come: a whole block would have been 64.
  EXPECT_THAT(elementsOf(*summary_), ElementsAre(0.0F, 0.5F));
  EXPECT_EQ(summary_->pendingElement(), OVDynamicWaveForm::PendingElement());
}

TEST_F(OVDynamicWaveFormTest, GeneratingAgainWithoutNewAudioChangesNothing) {
  generateWith(support::sine(1000, 0.5, 10));
  const std::vector<float> before = elementsOf(*summary_);
  summary_->generate();
  EXPECT_EQ(elementsOf(*summary_), before);
  EXPECT_EQ(summary_->readerPos(), 1000U);
}

TEST_F(OVDynamicWaveFormTest, SilenceGivesElementsOfZero) {
  generateWith(support::silence(640));
  EXPECT_EQ(summary_->elementCount(), 10U);
  EXPECT_THAT(elementsOf(*summary_), Each(0.0F));
}

TEST_F(OVDynamicWaveFormTest, AFullScaleSquareWaveGivesElementsOfZero) {
  generateWith(support::squareWave(640, 7));
  EXPECT_EQ(summary_->elementCount(), 10U);
  EXPECT_THAT(elementsOf(*summary_), Each(0.0F));
}

TEST_F(OVDynamicWaveFormTest, ASineGivesElementsNearItsAmplitude) {
  generateWith(support::sine(6400, 0.8, 30));
  EXPECT_THAT(elementsOf(*summary_), Each(Gt(0.7F)));
  EXPECT_THAT(elementsOf(*summary_), Each(Lt(0.81F)));
}

TEST_F(OVDynamicWaveFormTest, OnlyTheLeftChannelOfTheFirstHalfOfEachReadIsLookedAt) {
  generateWith(support::stereo(128, [](std::uint64_t frame) {
    return frame == 31 ? 0.25 : frame == 32 || frame == 127 ? 0.9 : 0.0;
  }));
  EXPECT_THAT(elementsOf(*summary_), ElementsAre(0.25F, 0.0F));
}

TEST_F(OVDynamicWaveFormTest, MaxAmplitudeStaysOneUpToFullScale) {
  generateWith(support::squareWave(640, 7));
  EXPECT_EQ(summary_->maxAmplitude(), 1.0);
}

TEST_F(OVDynamicWaveFormTest, MaxAmplitudeFollowsAudioBeyondFullScaleOnceItsElementIsComplete) {
  generateWith(support::stereo(63, [](std::uint64_t) { return 1.5; }));
  EXPECT_EQ(summary_->maxAmplitude(), 1.0);
  generateWith(support::silence(1));
  EXPECT_EQ(summary_->maxAmplitude(), 1.5);
}

TEST_F(OVDynamicWaveFormTest, SamplesThatAreNotNumbersCountAsSilence) {
  generateWith(support::stereo(64, [](std::uint64_t frame) {
    return frame % 2 == 0 ? std::numeric_limits<double>::quiet_NaN() : 0.5;
  }));
  EXPECT_THAT(elementsOf(*summary_), ElementsAre(0.5F));
}

TEST_F(OVDynamicWaveFormTest, AHoleEndsAGenerationAndTheNextOneGoesOnThere) {
  audio_->append(support::sine(256, 0.5, 10));
  audio_->addHole(100 * 8, 120 * 8);
  summary_->generate();
  EXPECT_EQ(summary_->readerPos(), 100U);
  EXPECT_FALSE(summary_->isRegenerating());
  audio_->clearHoles();
  summary_->generate();
  EXPECT_EQ(summary_->readerPos(), 256U);
}

TEST_F(OVDynamicWaveFormTest, ARequestedGenerationStartsFromTheBeginning) {
  generateWith(support::sine(64 * 2000, 0.5, 10));
  audio_->resizeInBytes(0);
  audio_->append(support::silence(640));
  summary_->setShouldRegenerateWaveform(true);
  summary_->generate();
  EXPECT_EQ(summary_->chunksize(), 64U);
  EXPECT_EQ(summary_->readerPos(), 640U);
  EXPECT_THAT(elementsOf(*summary_), testing::AllOf(testing::SizeIs(10), Each(0.0F)));
}

TEST_F(OVDynamicWaveFormTest, ARequestCanBeTakenBack) {
  generateWith(support::silence(640));
  const std::uint64_t reads = audio_->readCount();
  summary_->setShouldRegenerateWaveform(true);
  summary_->setShouldRegenerateWaveform(false);
  summary_->generate();
  EXPECT_EQ(audio_->readCount(), reads + 1) << "only the read that finds nothing new";
}

TEST_F(OVDynamicWaveFormTest, ARequestDuringAGenerationOutlastsIt) {
  audio_->append(support::sine(640, 0.5, 10));
  audio_->beforeRead = [this](std::uint64_t) { summary_->setShouldRegenerateWaveform(true); };
  summary_->generate();
  audio_->beforeRead = nullptr;
  EXPECT_EQ(summary_->readerPos(), 640U) << "the running one is not cut short";
  audio_->resizeInBytes(64 * 8);
  summary_->generate();
  EXPECT_EQ(summary_->readerPos(), 64U);
}

TEST_F(OVDynamicWaveFormTest, ResetForgetsEverythingButTheCapacity) {
  summary_->setCapacity(10);
  generateWith(support::stereo(64 * 100 + 5, [](std::uint64_t) { return 1.5; }));
  ASSERT_GT(summary_->maxAmplitude(), 1.0);
  summary_->reset();
  EXPECT_EQ(summary_->elementCount(), 0U);
  EXPECT_EQ(summary_->producedElementCount(), 0U);
  EXPECT_EQ(summary_->readerPos(), 0U);
  EXPECT_EQ(summary_->chunksize(), 64U);
  EXPECT_EQ(summary_->maxAmplitude(), 1.0);
  EXPECT_EQ(summary_->pendingElement(), OVDynamicWaveForm::PendingElement());
  EXPECT_EQ(summary_->capacity(), 10U);
}

TEST_F(OVDynamicWaveFormTest, ItIsRegeneratingFromResetUntilTheNextGenerationEnds) {
  summary_->reset();
  EXPECT_TRUE(summary_->isRegenerating());
  bool regeneratingWhileReading = false;
  audio_->beforeRead = [&](std::uint64_t) {
    regeneratingWhileReading = summary_->isRegenerating();
  };
  summary_->generate();
  EXPECT_TRUE(regeneratingWhileReading);
  EXPECT_FALSE(summary_->isRegenerating());
}

TEST_F(OVDynamicWaveFormTest, AnIncrementalGenerationIsNoRegeneration) {
  generateWith(support::silence(640));
  bool regeneratingWhileReading = false;
  audio_->beforeRead = [&](std::uint64_t) {
    regeneratingWhileReading = summary_->isRegenerating();
  };
  generateWith(support::silence(640));
  EXPECT_FALSE(regeneratingWhileReading);
}

TEST_F(OVDynamicWaveFormTest, AppendSampleMergesOnlyWhenThereIsNoRoom) {
  summary_->setCapacity(4);
  for (const float value : {0.1F, 0.4F, 0.3F, 0.2F}) {
    summary_->appendSample(value);
  }
  EXPECT_THAT(elementsOf(*summary_), ElementsAre(0.1F, 0.4F, 0.3F, 0.2F));
  summary_->appendSample(0.5F);
  EXPECT_THAT(elementsOf(*summary_), ElementsAre(0.4F, 0.3F, 0.5F));
  EXPECT_EQ(summary_->chunksize(), 128U);
}

TEST_F(OVDynamicWaveFormTest, WithAnOddCapacityTheLastElementStandsAloneWhenMerging) {
  summary_->setCapacity(5);
  for (const float value : {0.1F, 0.4F, 0.3F, 0.2F, 0.9F}) {
    summary_->appendSample(value);
  }
  summary_->consolidate();
  EXPECT_THAT(elementsOf(*summary_), ElementsAre(0.4F, 0.3F));
  EXPECT_EQ(summary_->data()[2], 0.9F);
  summary_->appendSample(0.5F);
  EXPECT_THAT(elementsOf(*summary_), ElementsAre(0.4F, 0.3F, 0.5F));
}

TEST_F(OVDynamicWaveFormTest, CapacitiesBelowTwoCountAsTwo) {
  for (const std::uint64_t capacity : {0U, 1U, 2U}) {
    summary_->setCapacity(capacity);
    EXPECT_EQ(summary_->capacity(), 2U);
  }
  generateWith(support::risingBlocks(0, 5, 8));
  // Blocks 1 and 2 merge to make room for 3; 4 and 5 are one element, for which 2 and 3 merge.
  EXPECT_THAT(elementsOf(*summary_), ElementsAre(3.0F / 8, 5.0F / 8));
  EXPECT_EQ(summary_->chunksize(), 256U);
}

TEST_F(OVDynamicWaveFormTest, ASmallerCapacityMovesTheWriteIndexInside) {
  generateWith(support::risingBlocks(0, 10, 16));
  summary_->setCapacity(4);
  EXPECT_EQ(summary_->elementCount(), 4U);
  EXPECT_EQ(summary_->producedElementCount(), 4U);
  summary_->appendSample(0.9F);
  EXPECT_THAT(elementsOf(*summary_), ElementsAre(2.0F / 16, 4.0F / 16, 0.9F));
}

TEST_F(OVDynamicWaveFormTest, ANewCapacityMakesTheNextGenerationStartOver) {
  generateWith(support::sine(64 * 2000, 0.5, 10));
  ASSERT_EQ(summary_->chunksize(), 128U);
  summary_->setCapacity(4096);
  summary_->generate();
  EXPECT_EQ(summary_->chunksize(), 64U);
  EXPECT_EQ(summary_->elementCount(), 2000U);
}

TEST_F(OVDynamicWaveFormTest, PowerAtPositionIsTheElementAtTheFraction) {
  generateWith(support::risingBlocks(0, 4, 4));
  EXPECT_EQ(summary_->powerAtPosition(0.0), 0.25);
  EXPECT_EQ(summary_->powerAtPosition(0.49), 0.5);
  EXPECT_EQ(summary_->powerAtPosition(0.5), 0.75);
}

TEST_F(OVDynamicWaveFormTest, PowerAtPositionClampsFractionAndIndex) {
  EXPECT_EQ(summary_->powerAtPosition(0.5), 0.0) << "empty";
  generateWith(support::risingBlocks(0, 4, 4));
  EXPECT_EQ(summary_->powerAtPosition(1.0), 1.0);
  EXPECT_EQ(summary_->powerAtPosition(1e300), 1.0);
  EXPECT_EQ(summary_->powerAtPosition(-0.1), 0.25);
  EXPECT_EQ(summary_->powerAtPosition(std::numeric_limits<double>::quiet_NaN()), 0.25);
}

TEST_F(OVDynamicWaveFormTest, ACopyHasTheSameStateAndGoesOnByItself) {
  generateWith(support::sine(64 * 1500 + 20, 1.5, 30));
  const auto copied = std::dynamic_pointer_cast<OVDynamicWaveForm>(summary_->copy());
  ASSERT_TRUE(copied);
  EXPECT_EQ(elementsOf(*copied), elementsOf(*summary_));
  EXPECT_EQ(copied->audioBuffer(), audio_);
  EXPECT_EQ(copied->capacity(), summary_->capacity());
  EXPECT_EQ(copied->chunksize(), summary_->chunksize());
  EXPECT_EQ(copied->readerPos(), summary_->readerPos());
  EXPECT_EQ(copied->producedElementCount(), summary_->producedElementCount());
  EXPECT_EQ(copied->pendingElement(), summary_->pendingElement());
  EXPECT_EQ(copied->maxAmplitude(), summary_->maxAmplitude());

  const std::uint64_t before = summary_->elementCount();
  audio_->append(support::silence(1280));
  copied->generate();
  EXPECT_EQ(summary_->elementCount(), before);
  summary_->generate();
  EXPECT_EQ(elementsOf(*copied), elementsOf(*summary_));
}

TEST_F(OVDynamicWaveFormTest, ACopyTakesTheFlagsAlong) {
  generateWith(support::silence(640));
  EXPECT_FALSE(summary_->copy()->isRegenerating());
  summary_->setShouldRegenerateWaveform(true);
  const auto toRegenerate = summary_->copy();
  audio_->resizeInBytes(64 * 8);
  toRegenerate->generate();
  EXPECT_EQ(toRegenerate->readerPos(), 64U);
  summary_->reset();
  EXPECT_TRUE(summary_->copy()->isRegenerating());
}

TEST_F(OVDynamicWaveFormTest, ACopyOfAnEnlargedOneIsAsLarge) {
  summary_->setCapacity(5000);
  generateWith(support::risingBlocks(0, 3000, 3000));
  const auto copied = summary_->copy();
  EXPECT_EQ(elementsOf(*copied), elementsOf(*summary_));
  EXPECT_EQ(elementsOf(*copied).size(), 3000U);
}

TEST_F(OVDynamicWaveFormTest, GenerateNoLockServesACallerThatHoldsTheLock) {
  audio_->append(support::silence(640));
  summary_->lock();
  summary_->generateNoLock();
  summary_->unlock();
  EXPECT_EQ(summary_->elementCount(), 10U);
}

TEST_F(OVDynamicWaveFormTest, FewReadsServeALongGeneration) {
  generateWith(support::silence(32768 * 3));
  EXPECT_LE(audio_->readCount(), 4U);
}

TEST_F(OVDynamicWaveFormTest, NothingButTheLockWaitsForAGeneration) {
  audio_->append(support::risingBlocks(0, 100, 100));
  support::Gate gate;
  audio_->beforeRead = gate.holdingTheFirst();
  auto generation = std::async(std::launch::async, [this] { summary_->generate(); });
  ASSERT_TRUE(gate.awaitArrival());
  auto onlooker = std::async(std::launch::async, [this] {
    EXPECT_TRUE(summary_->isRegenerating());
    EXPECT_EQ(summary_->elementCount(), 0U);
    EXPECT_EQ(summary_->readerPos(), 0U);
    EXPECT_EQ(summary_->powerAtPosition(0.5), 0.0);
    EXPECT_EQ(summary_->maxAmplitude(), 1.0);
    EXPECT_THAT(elementsOf(*summary_), IsEmpty());
    EXPECT_TRUE(summary_->copy()->isRegenerating());
    EXPECT_THAT(elementsOf(*summary_->copy()), IsEmpty());
  });
  EXPECT_EQ(onlooker.wait_for(support::kPatience), std::future_status::ready);
  gate.open();
  generation.get();
  EXPECT_EQ(summary_->elementCount(), 100U);
}

TEST_F(OVDynamicWaveFormTest, TheLockIsHeldForAWholeGeneration) {
  audio_->append(support::risingBlocks(0, 100, 100));
  support::Gate gate;
  audio_->beforeRead = gate.holdingTheFirst();
  auto generation = std::async(std::launch::async, [this] { summary_->generate(); });
  ASSERT_TRUE(gate.awaitArrival());
  auto waiter = std::async(std::launch::async, [this] {
    summary_->lock();
    const std::uint64_t count = summary_->elementCount();
    summary_->unlock();
    return count;
  });
  gate.open();
  EXPECT_EQ(waiter.get(), 100U);
  generation.get();
}

TEST_F(OVDynamicWaveFormTest, ACopyOfAHalfDoneGenerationIsCompletedByItsOwn) {
  audio_->append(support::risingBlocks(0, 1500, 1500));
  std::shared_ptr<OVWaveformSummary> copied;
  audio_->beforeRead = [&, reads = 0](std::uint64_t) mutable {
    if (++reads == 2) {
      copied = summary_->copy();
    }
  };
  summary_->generate();
  audio_->beforeRead = nullptr;
  ASSERT_TRUE(copied);
  EXPECT_TRUE(copied->isRegenerating());
  EXPECT_EQ(copied->readerPos(), 32768U);
  EXPECT_EQ(copied->elementCount(), 512U);
  copied->generate();
  EXPECT_FALSE(copied->isRegenerating());
  EXPECT_EQ(elementsOf(*copied), elementsOf(*summary_));
}

TEST_F(OVDynamicWaveFormTest, AResetDuringAGenerationMakesItStartOver) {
  audio_->append(support::risingBlocks(0, 1500, 1500));
  audio_->beforeRead = [this, reads = 0](std::uint64_t) mutable {
    if (++reads == 2) {
      summary_->reset();
    }
  };
  summary_->generate();
  audio_->beforeRead = nullptr;
  const auto fresh = OVDynamicWaveForm::initWithBuffer(audio_);
  fresh->generate();
  EXPECT_EQ(elementsOf(*summary_), elementsOf(*fresh));
  EXPECT_EQ(summary_->readerPos(), 64U * 1500);
  EXPECT_FALSE(summary_->isRegenerating());
}

TEST_F(OVDynamicWaveFormTest, TwoGenerationsWithoutTheLockTakeInEveryByteOnce) {
  audio_->append(support::risingBlocks(0, 1000, 1000));
  audio_->beforeRead = [this, depth = 0](std::uint64_t) mutable {
    if (++depth == 1) {
      summary_->generateNoLock();  // a second one runs through while the first one reads
    }
  };
  summary_->generate();
  audio_->beforeRead = nullptr;
  EXPECT_EQ(summary_->elementCount(), 1000U);
  EXPECT_EQ(summary_->readerPos(), 64U * 1000);
}

TEST_F(OVDynamicWaveFormTest, ACancelledGenerationEndsWithItsBatchAndTheNextOneCompletesIt) {
  audio_->append(support::risingBlocks(0, 1500, 1500));
  std::atomic<bool> cancelled = false;
  audio_->beforeRead = [&](std::uint64_t) { cancelled = true; };
  summary_->generate(&cancelled);
  audio_->beforeRead = nullptr;
  summary_->generateNoLock(&cancelled);  // cancelled before it begins
  EXPECT_EQ(audio_->readCount(), 1U);
  EXPECT_EQ(summary_->readerPos(), 32768U);
  EXPECT_TRUE(summary_->isRegenerating());
  summary_->generate();
  const auto fresh = OVDynamicWaveForm::initWithBuffer(audio_);
  fresh->generate();
  EXPECT_EQ(elementsOf(*summary_), elementsOf(*fresh));
  EXPECT_FALSE(summary_->isRegenerating());
}

}  // namespace
