#include "waveform/OVStaticWaveform.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <future>
#include <limits>
#include <memory>
#include <vector>

#include "support/Gate.h"
#include "support/TestAudio.h"
#include "support/fakes/MemoryTestBuffer.h"
#include "waveform/OVDynamicWaveForm.h"

namespace {

using testing::Each;
using testing::Gt;

std::vector<float> elementsOf(const OVWaveformSummary& summary) {
  std::vector<float> elements;
  summary.copyElementsInto(elements);
  return elements;
}

/// Left samples of 0 but for the first frame of every `framesPerBlock`, which has its number.
std::vector<float> numberedBlocks(std::uint64_t count, std::uint64_t framesPerBlock) {
  return support::stereo(count * framesPerBlock, [=](std::uint64_t frame) {
    return frame % framesPerBlock == 0 ? static_cast<double>(frame / framesPerBlock + 1) / 4096
                                       : 0.0;
  });
}

class OVStaticWaveformTest : public testing::Test {
 protected:
  const std::shared_ptr<MemoryTestBuffer> audio_ = std::make_shared<MemoryTestBuffer>();

  std::shared_ptr<OVStaticWaveform> summaryOf(const std::vector<float>& samples) {
    audio_->append(samples);
    return OVStaticWaveform::initWithBuffer(audio_);
  }

  /// A dynamic summary whose element k is k + 1.
  std::shared_ptr<OVDynamicWaveForm> dynamicOf(std::uint64_t count) {
    const auto dynamic = OVDynamicWaveForm::initWithBuffer(audio_);
    dynamic->setCapacity(count);
    for (std::uint64_t k = 0; k < count; ++k) {
      dynamic->appendSample(static_cast<float>(k + 1));
    }
    return dynamic;
  }
};

TEST_F(OVStaticWaveformTest, TenTimes1024FramesGiveElementsOfTenFrames) {
  const auto summary = summaryOf(numberedBlocks(1024, 10));
  const std::vector<float> elements = elementsOf(*summary);
  ASSERT_EQ(elements.size(), 1024U);
  for (std::size_t i = 0; i < elements.size(); ++i) {
    ASSERT_EQ(elements[i], static_cast<float>(i + 1) / 4096);
  }
  EXPECT_EQ(summary->readerPos(), 10240U);
  EXPECT_EQ(summary->producedElementCount(), 1023U);
  EXPECT_FALSE(summary->isRegenerating());
}

TEST_F(OVStaticWaveformTest, OneThousandFramesAreNotSummarised) {
  const auto summary = summaryOf(support::sine(1000, 0.5, 10));
  EXPECT_THAT(elementsOf(*summary), Each(0.0F));
  EXPECT_EQ(summary->readerPos(), 0U);
  EXPECT_EQ(audio_->readCount(), 0U);
  EXPECT_FALSE(summary->isRegenerating());
}

TEST_F(OVStaticWaveformTest, ABufferThatBecameTooShortKeepsTheElements) {
  const auto summary = summaryOf(support::sine(10240, 0.5, 10));
  const std::vector<float> before = elementsOf(*summary);
  audio_->resizeInBytes(1000 * 8);
  summary->regenerate();
  EXPECT_EQ(elementsOf(*summary), before);
  EXPECT_EQ(summary->readerPos(), 0U);
  EXPECT_EQ(summary->producedElementCount(), 0U);
}

TEST_F(OVStaticWaveformTest, FramesThatTheDivisionLeavesOverAreNotSummarised) {
  std::vector<float> samples = support::silence(10240 + 1023);
  for (std::size_t i = 20480; i < samples.size(); ++i) {
    samples[i] = 0.9F;
  }
  const auto summary = summaryOf(samples);
  EXPECT_THAT(elementsOf(*summary), Each(0.0F));
  EXPECT_EQ(summary->readerPos(), 10240U);
}

TEST_F(OVStaticWaveformTest, OnlyTheLeftChannelOfTheFirstHalfOfEachElementIsLookedAt) {
  const auto summary = summaryOf(support::stereo(10240, [](std::uint64_t frame) {
    return frame % 10 == 4 ? 0.25 : frame % 10 == 5 ? 0.9 : 0;
  }));
  EXPECT_THAT(elementsOf(*summary), Each(0.25F));
}

TEST_F(OVStaticWaveformTest, BeyondAHoleElementsStayAsTheyWere) {
  audio_->append(support::sine(10240, 0.5, 10));
  const auto summary = OVStaticWaveform::initWithBuffer(audio_);
  ASSERT_THAT(elementsOf(*summary), Each(Gt(0.0F)));
  audio_->resizeInBytes(0);
  audio_->append(support::silence(10240));
  audio_->addHole(5125 * 8, 6000 * 8);
  summary->regenerate();
  const std::vector<float> elements = elementsOf(*summary);
  EXPECT_EQ(elements[512], 0.0F) << "the short block before the hole counts";
  EXPECT_GT(elements[513], 0.0F);
  EXPECT_EQ(summary->readerPos(), 5125U);
  EXPECT_EQ(summary->producedElementCount(), 513U);
}

TEST_F(OVStaticWaveformTest, WithoutABufferAllElementsAreZero) {
  const auto summary = OVStaticWaveform::initWithBuffer(nullptr);
  const std::vector<float> samples(64, 0.5F);
  summary->updateWithDataChunk(samples.data(), samples.size(), 0.0);
  EXPECT_THAT(elementsOf(*summary), Each(0.0F));
  EXPECT_EQ(summary->readerPos(), 0U);
}

TEST_F(OVStaticWaveformTest, CountAndAmplitudeAreTheSameWhateverTheAudio) {
  for (const std::uint64_t frames : {0U, 1000U, 5000U}) {
    audio_->resizeInBytes(0);
    const auto summary = summaryOf(support::squareWave(frames, 3));
    EXPECT_EQ(summary->elementCount(), 1024U);
    EXPECT_EQ(summary->maxAmplitude(), 1.6);
  }
  EXPECT_EQ(OVStaticWaveform::initWithDynamicWaveform(dynamicOf(7))->elementCount(), 1024U);
}

TEST_F(OVStaticWaveformTest, Stretching512ElementsFillsEverySecondSlot) {
  const auto elements = elementsOf(*OVStaticWaveform::initWithDynamicWaveform(dynamicOf(512)));
  for (std::size_t k = 0; k < 512; ++k) {
    ASSERT_EQ(elements[2 * k], static_cast<float>(k + 1));
    ASSERT_EQ(elements[2 * k + 1], 0.0F);
  }
}

TEST_F(OVStaticWaveformTest, Stretching1024ElementsFillsEverySlotOnce) {
  const auto elements = elementsOf(*OVStaticWaveform::initWithDynamicWaveform(dynamicOf(1024)));
  for (std::size_t k = 0; k < 1024; ++k) {
    ASSERT_EQ(elements[k], static_cast<float>(k + 1));
  }
}

TEST_F(OVStaticWaveformTest, Stretching600ElementsLeavesGapsBetweenThem) {
  const auto elements = elementsOf(*OVStaticWaveform::initWithDynamicWaveform(dynamicOf(600)));
  EXPECT_EQ(std::count_if(elements.begin(), elements.end(), [](float v) { return v > 0; }), 600);
  EXPECT_EQ(elements[0], 1.0F);
  EXPECT_EQ(elements[1], 2.0F);
  EXPECT_EQ(elements[2], 0.0F);
  EXPECT_EQ(elements[3], 3.0F);
}

TEST_F(OVStaticWaveformTest, OfMoreElementsThanSlotsTheLastOneOfEachSlotStays) {
  const auto elements = elementsOf(*OVStaticWaveform::initWithDynamicWaveform(dynamicOf(4096)));
  for (std::size_t slot = 0; slot < 1024; ++slot) {
    ASSERT_EQ(elements[slot], static_cast<float>(4 * slot + 4));
  }
}

TEST_F(OVStaticWaveformTest, StretchingAnEmptyOneGivesZeros) {
  const auto dynamic = OVDynamicWaveForm::initWithBuffer(audio_);
  const auto summary = OVStaticWaveform::initWithDynamicWaveform(dynamic);
  EXPECT_THAT(elementsOf(*summary), Each(0.0F));
  EXPECT_EQ(summary->audioBuffer(), audio_);
  EXPECT_FALSE(summary->shouldRegenerateWaveform());
  EXPECT_FALSE(summary->isRegenerating());
}

TEST_F(OVStaticWaveformTest, AStretchedOneCountsTheElementsOfItsSource) {
  EXPECT_EQ(OVStaticWaveform::initWithDynamicWaveform(dynamicOf(600))->producedElementCount(),
            600U);
  EXPECT_EQ(OVStaticWaveform::initWithDynamicWaveform(dynamicOf(600))->readerPos(), 0U);
}

TEST_F(OVStaticWaveformTest, AStretchedOneDoesNotFollowItsSource) {
  const auto dynamic = dynamicOf(512);
  const auto summary = OVStaticWaveform::initWithDynamicWaveform(dynamic);
  const std::vector<float> before = elementsOf(*summary);
  dynamic->consolidate();
  EXPECT_EQ(elementsOf(*summary), before);
}

TEST_F(OVStaticWaveformTest, GenerateRebuildsOnlyWhenAsked) {
  const auto summary = summaryOf(support::silence(10240));
  audio_->resizeInBytes(0);
  audio_->append(support::sine(10240, 0.5, 10));
  summary->generate();
  EXPECT_THAT(elementsOf(*summary), Each(0.0F));
  summary->setShouldRegenerateWaveform(true);
  EXPECT_TRUE(summary->shouldRegenerateWaveform());
  summary->generate();
  EXPECT_THAT(elementsOf(*summary), Each(Gt(0.0F)));
  EXPECT_FALSE(summary->shouldRegenerateWaveform());
}

TEST_F(OVStaticWaveformTest, GenerateNoLockDoesTheSameForACallerThatHoldsTheLock) {
  const auto summary = summaryOf(support::silence(10240));
  audio_->resizeInBytes(0);
  audio_->append(support::sine(10240, 0.5, 10));
  summary->lock();
  summary->generateNoLock();
  EXPECT_THAT(elementsOf(*summary), Each(0.0F));
  summary->setShouldRegenerateWaveform(true);
  summary->generateNoLock();
  summary->unlock();
  EXPECT_THAT(elementsOf(*summary), Each(Gt(0.0F)));
}

TEST_F(OVStaticWaveformTest, ItIsRegeneratingOnlyWhileItRebuilds) {
  const auto summary = summaryOf(support::silence(10240));
  bool regeneratingWhileReading = false;
  bool requestStands = true;
  audio_->beforeRead = [&](std::uint64_t) {
    regeneratingWhileReading = summary->isRegenerating();
    requestStands = summary->shouldRegenerateWaveform();
  };
  summary->setShouldRegenerateWaveform(true);
  summary->generate();
  EXPECT_TRUE(regeneratingWhileReading);
  EXPECT_FALSE(requestStands);
  EXPECT_FALSE(summary->isRegenerating());
}

TEST_F(OVStaticWaveformTest, ARequestDuringAGenerationOutlastsIt) {
  const auto summary = summaryOf(support::silence(10240));
  audio_->beforeRead = [&](std::uint64_t) { summary->setShouldRegenerateWaveform(true); };
  summary->regenerate();
  EXPECT_TRUE(summary->shouldRegenerateWaveform());
}

TEST_F(OVStaticWaveformTest, ResetDoesNothing) {
  const auto summary = summaryOf(support::sine(10240, 0.5, 10));
  const std::vector<float> before = elementsOf(*summary);
  summary->reset();
  EXPECT_EQ(elementsOf(*summary), before);
  EXPECT_EQ(summary->readerPos(), 10240U);
  EXPECT_FALSE(summary->isRegenerating());
}

TEST_F(OVStaticWaveformTest, PowerAtPositionClampsFractionAndIndex) {
  const auto summary = OVStaticWaveform::initWithDynamicWaveform(dynamicOf(1024));
  EXPECT_EQ(summary->powerAtPosition(0.0), 1.0);
  EXPECT_EQ(summary->powerAtPosition(0.5), 513.0);
  EXPECT_EQ(summary->powerAtPosition(1.0), 1024.0);
  EXPECT_EQ(summary->powerAtPosition(17.0), 1024.0);
  EXPECT_EQ(summary->powerAtPosition(-3.0), 1.0);
  EXPECT_EQ(summary->powerAtPosition(std::numeric_limits<double>::quiet_NaN()), 1.0);
}

TEST_F(OVStaticWaveformTest, ACopyHasElementsCountersAndFlagsAndGoesOnByItself) {
  const auto summary = summaryOf(support::sine(10240, 0.5, 10));
  summary->setShouldRegenerateWaveform(true);
  const auto copied = std::dynamic_pointer_cast<OVStaticWaveform>(summary->copy());
  ASSERT_TRUE(copied);
  EXPECT_EQ(elementsOf(*copied), elementsOf(*summary));
  EXPECT_EQ(copied->readerPos(), 10240U);
  EXPECT_EQ(copied->producedElementCount(), 1023U);
  EXPECT_EQ(copied->audioBuffer(), audio_);
  EXPECT_TRUE(copied->shouldRegenerateWaveform());
  const std::vector<float> before = elementsOf(*summary);
  audio_->resizeInBytes(0);
  audio_->append(support::silence(10240));
  copied->generate();
  EXPECT_THAT(elementsOf(*copied), Each(0.0F));
  EXPECT_EQ(elementsOf(*summary), before);
}

TEST_F(OVStaticWaveformTest, ACopyKeepsTheDynamicSourceIfThereIsOne) {
  std::weak_ptr<OVDynamicWaveForm> source;
  std::shared_ptr<OVWaveformSummary> copied;
  {
    const auto dynamic = dynamicOf(512);
    source = dynamic;
    copied = OVStaticWaveform::initWithDynamicWaveform(dynamic)->copy();
  }
  EXPECT_FALSE(source.expired());
  EXPECT_EQ(elementsOf(*copied)[1022], 512.0F);
  copied.reset();
  EXPECT_TRUE(source.expired());
  EXPECT_EQ(elementsOf(*OVStaticWaveform::initWithBuffer(audio_)->copy()).size(), 1024U);
}

// Patching with chunks.

/// A summary of 10 × 1024 frames of silence: one slot is 10 frames, or 20 of the floats in a chunk.
class OVStaticWaveformChunkTest : public OVStaticWaveformTest {
 protected:
  const std::shared_ptr<OVStaticWaveform> summary_ =
      OVStaticWaveform::initWithDynamicWaveform(dynamicOf(1024));

  OVStaticWaveformChunkTest() { audio_->append(support::silence(10240)); }

  void update(const std::vector<float>& samples, double position) {
    summary_->updateWithDataChunk(samples.data(), samples.size(), position);
  }
};

TEST_F(OVStaticWaveformChunkTest, AChunkCoversAShareOfTheSlotsByItsCountOfFloats) {
  // 1000 floats count as 1000 of 10240: 100 slots, of 10 floats each.
  update(support::stereo(500, [](std::uint64_t frame) { return frame % 5 == 0 ? 0.5 : 0; }), 0.5);
  const std::vector<float> elements = elementsOf(*summary_);
  EXPECT_EQ(elements[511], 512.0F);
  for (std::size_t slot = 512; slot < 612; ++slot) {
    ASSERT_EQ(elements[slot], 0.5F) << slot;
  }
  EXPECT_EQ(elements[612], 613.0F);
}

TEST_F(OVStaticWaveformChunkTest, ASlotThatTheStepsPassOverIsCleared) {
  // 1009 floats cover 100.9 slots in 100 steps of 1.009: the 57th one goes from 55.995 to 57.004.
  std::vector<float> samples(1009);
  for (std::size_t i = 0; i < samples.size(); i += 10) {
    samples[i] = 0.5F;
  }
  update(samples, 0.0);
  const std::vector<float> elements = elementsOf(*summary_);
  EXPECT_EQ(elements[55], 0.5F);
  EXPECT_EQ(elements[56], 0.0F);
  EXPECT_EQ(elements[57], 0.5F);
}

TEST_F(OVStaticWaveformChunkTest, OfTheLastStepOnlyAsManyFloatsCountAsAreLeftOverBehindIt) {
  // 23 floats cover 2.3 slots: two steps of 11, one float left over. Of the second step's floats
  // 11 to 21 only number 11 counts.
  std::vector<float> samples(23, 0.5F);
  samples[11] = 0.25F;
  samples[0] = 0.0F;
  update(samples, 0.0);
  const std::vector<float> elements = elementsOf(*summary_);
  EXPECT_EQ(elements[0], 0.5F);
  EXPECT_EQ(elements[1], 0.0F) << "a single sample has no spread; all of them had 0.25";
}

TEST_F(OVStaticWaveformChunkTest, OnlyEverySecondFloatIsLookedAt) {
  update(support::stereo(500, [](std::uint64_t) { return 0.0; }), 0.0);
  EXPECT_EQ(elementsOf(*summary_)[0], 0.0F) << "the right channel is 0.75 throughout";
}

TEST_F(OVStaticWaveformChunkTest, AChunkAtTheEndStopsAtSlot1024) {
  update(std::vector<float>(1000, 0.25F), 1020.0 / 1024);
  const std::vector<float> elements = elementsOf(*summary_);
  EXPECT_EQ(elements[1019], 1020.0F);
  for (std::size_t slot = 1020; slot < 1024; ++slot) {
    EXPECT_EQ(elements[slot], 0.0F);
  }
}

TEST_F(OVStaticWaveformChunkTest, PositionsOutsideTheAudioAreHarmless) {
  const std::vector<float> before = elementsOf(*summary_);
  const std::vector<float> samples(1000, 0.25F);
  update(samples, 1.0);
  update(samples, 5.0);
  update(samples, std::numeric_limits<double>::infinity());
  EXPECT_EQ(elementsOf(*summary_), before);
  for (const double position :
       {-5.0, -std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN()}) {
    const auto summary = OVStaticWaveform::initWithDynamicWaveform(dynamicOf(1024));
    summary->updateWithDataChunk(samples.data(), samples.size(), position);
    EXPECT_EQ(elementsOf(*summary)[99], 0.0F) << position;
    EXPECT_EQ(elementsOf(*summary)[100], 101.0F) << position;
  }
}

TEST_F(OVStaticWaveformChunkTest, AChunkWithFewerFloatsThanElementsChangesNothing) {
  audio_->resizeInBytes(100 * 8);  // 10.24 slots a frame
  const std::vector<float> before = elementsOf(*summary_);
  update(std::vector<float>(50, 0.5F), 0.0);
  update(std::vector<float>(1, 0.5F), 0.0);
  update({}, 0.0);
  EXPECT_EQ(elementsOf(*summary_), before);
}

TEST_F(OVStaticWaveformChunkTest, AnEmptyBufferChangesNothing) {
  audio_->resizeInBytes(0);
  const std::vector<float> before = elementsOf(*summary_);
  update(std::vector<float>(1000, 0.5F), 0.0);
  EXPECT_EQ(elementsOf(*summary_), before);
}

TEST_F(OVStaticWaveformChunkTest, AByteCountThatIsNotAMultipleOfFourClearsPartOfAnElement) {
  // 25 floats cover 2.5 slots, ten bytes, in two steps that land on the first two of them. The
  // third one loses its two lower bytes: 703 is 0x442FC000, and 0x442F0000 is 700.
  update(std::vector<float>(25, 0.5F), 700.0 / 1024);
  const std::vector<float> elements = elementsOf(*summary_);
  EXPECT_EQ(elements[699], 700.0F);
  EXPECT_EQ(elements[700], 0.0F);
  EXPECT_EQ(elements[701], 0.0F);
  EXPECT_EQ(elements[702], 700.0F);
  EXPECT_EQ(elements[703], 704.0F);
}

TEST_F(OVStaticWaveformChunkTest, SamplesThatAreNotNumbersCountAsSilence) {
  std::vector<float> samples(1000, 0.5F);
  for (std::size_t i = 0; i < samples.size(); i += 10) {
    samples[i] = std::numeric_limits<float>::quiet_NaN();
  }
  update(samples, 0.0);
  EXPECT_EQ(elementsOf(*summary_)[0], 0.5F);
  EXPECT_EQ(elementsOf(*summary_)[99], 0.5F);
}

// Beside a generation.

TEST_F(OVStaticWaveformTest, NothingButTheLockWaitsForAGeneration) {
  const auto summary = summaryOf(support::sine(10240, 0.5, 10));
  const std::vector<float> before = elementsOf(*summary);
  support::Gate gate;
  audio_->beforeRead = gate.holdingTheFirst();
  auto generation = std::async(std::launch::async, [&] { summary->regenerate(); });
  ASSERT_TRUE(gate.awaitArrival());
  auto onlooker = std::async(std::launch::async, [&] {
    EXPECT_TRUE(summary->isRegenerating());
    EXPECT_EQ(summary->readerPos(), 0U);
    EXPECT_EQ(elementsOf(*summary), before);
    EXPECT_EQ(elementsOf(*summary->copy()), before);
    EXPECT_TRUE(summary->copy()->isRegenerating());
    EXPECT_GT(summary->powerAtPosition(0.5), 0.0);
    const std::vector<float> samples(1000, 0.5F);
    summary->updateWithDataChunk(samples.data(), samples.size(), 0.0);
    EXPECT_EQ(elementsOf(*summary)[0], 0.0F);
  });
  EXPECT_EQ(onlooker.wait_for(support::kPatience), std::future_status::ready);
  gate.open();
  generation.get();
  EXPECT_FALSE(summary->isRegenerating());
}

TEST_F(OVStaticWaveformTest, AChunkThatArrivesDuringAGenerationStaysAsIfItHadComeAfterIt) {
  const std::vector<float> audio = support::sine(10240, 0.5, 10);
  const std::vector<float> samples(1009, 0.5F);  // passes over a slot that it clears
  const auto expected = summaryOf(audio);
  expected->updateWithDataChunk(samples.data(), samples.size(), 0.25);

  const auto summary = OVStaticWaveform::initWithBuffer(audio_);
  audio_->beforeRead = [&, first = true](std::uint64_t) mutable {
    if (first) {
      first = false;
      summary->updateWithDataChunk(samples.data(), samples.size(), 0.25);
    }
  };
  summary->regenerate();
  EXPECT_EQ(elementsOf(*summary), elementsOf(*expected));
  summary->regenerate();
  audio_->beforeRead = nullptr;
  EXPECT_EQ(elementsOf(*summary), elementsOf(*OVStaticWaveform::initWithBuffer(audio_)))
      << "the next generation takes no regard of it";
}

TEST_F(OVStaticWaveformTest, TheLockIsHeldForAWholeGeneration) {
  const auto summary = summaryOf(support::silence(10240));
  audio_->resizeInBytes(0);
  audio_->append(numberedBlocks(1024, 10));
  support::Gate gate;
  audio_->beforeRead = gate.holdingTheFirst();
  auto generation = std::async(std::launch::async, [&] { summary->regenerate(); });
  ASSERT_TRUE(gate.awaitArrival());
  auto waiter = std::async(std::launch::async, [&] {
    summary->lock();
    const double last = summary->powerAtPosition(1.0);
    summary->unlock();
    return last;
  });
  gate.open();
  EXPECT_EQ(waiter.get(), 0.25);
  generation.get();
}

TEST_F(OVStaticWaveformTest, ACancelledGenerationEndsWithItsBatchAndAsksForAnother) {
  const auto summary = summaryOf(support::silence(102400));
  audio_->resizeInBytes(0);
  audio_->append(numberedBlocks(1024, 100));
  const std::uint64_t readsBefore = audio_->readCount();
  std::atomic<bool> cancelled = false;
  audio_->beforeRead = [&](std::uint64_t) { cancelled = true; };
  summary->setShouldRegenerateWaveform(true);
  summary->generate(&cancelled);
  audio_->beforeRead = nullptr;
  EXPECT_EQ(audio_->readCount(), readsBefore + 1);
  EXPECT_EQ(summary->powerAtPosition(1.0), 0.0);
  EXPECT_FALSE(summary->isRegenerating());
  EXPECT_TRUE(summary->shouldRegenerateWaveform());
  summary->generate();
  EXPECT_EQ(summary->powerAtPosition(1.0), 0.25);
  EXPECT_FALSE(summary->shouldRegenerateWaveform());
}

}  // namespace
