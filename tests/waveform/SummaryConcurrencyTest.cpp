// Summaries that are generated, drawn, patched and copied at the same time. Each thread does a
// fixed amount of work; what it sees must be the state of some moment.
#include <gmock/gmock.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <thread>
#include <vector>

#include "support/TestAudio.h"
#include "support/fakes/MemoryTestBuffer.h"
#include "waveform/OVDynamicWaveForm.h"
#include "waveform/OVStaticWaveform.h"

namespace {

void runTogether(const std::vector<std::function<void()>>& jobs) {
  std::vector<std::jthread> threads;
  threads.reserve(jobs.size());
  for (const auto& job : jobs) {
    threads.emplace_back(job);
  }
}

std::function<void()> times(int count, const std::function<void(int)>& work) {
  return [=] {
    for (int i = 0; i < count; ++i) {
      work(i);
    }
  };
}

std::vector<float> elementsOf(const OVWaveformSummary& summary) {
  std::vector<float> elements;
  summary.copyElementsInto(elements);
  return elements;
}

constexpr std::uint64_t kBlocks = 65536;  ///< a power of two: block numbers are exact as elements

/// Elements, counters and reader of a summary that no one else uses belong to the same moment.
void expectConsistent(const OVDynamicWaveForm& summary) {
  const std::vector<float> elements = elementsOf(summary);
  if (elements.empty()) {
    EXPECT_LT(summary.readerPos(), 64U);
    return;
  }
  const auto lastBlock =
      static_cast<std::uint64_t>(elements.back() * static_cast<float>(kBlocks)) - 1;
  const std::uint64_t end = summary.readerPos() - summary.pendingElement().frameCount;
  EXPECT_LT(lastBlock * 64, end);
  EXPECT_GE(lastBlock * 64 + 2 * summary.chunksize(), end);
}

TEST(SummaryConcurrencyTest, ADynamicSummaryIsDrawnAndCopiedWhileARecordingGrowsIt) {
  const auto audio = std::make_shared<MemoryTestBuffer>();
  const auto summary = OVDynamicWaveForm::initWithBuffer(audio);
  const auto write = [&, written = std::uint64_t{0}](int i) mutable {
    const std::uint64_t count = 1 + static_cast<std::uint64_t>(i) * 7 % 40;
    audio->append(support::risingBlocks(written, count, kBlocks));
    written += count;
  };
  const auto generate = [&](int i) {
    if (i % 20 == 0) {
      summary->setShouldRegenerateWaveform(true);
    }
    summary->generate();
  };
  const auto draw = [&](int) {
    const std::vector<float> elements = elementsOf(*summary);
    EXPECT_TRUE(std::is_sorted(elements.begin(), elements.end(), std::less_equal<>()))
        << "each element is larger than the one before, also halfway through a merging";
    EXPECT_LE(summary->powerAtPosition(1.0), 1.0);
    static_cast<void>(summary->isRegenerating());
    static_cast<void>(summary->elementCount());
    static_cast<void>(summary->readerPos());
  };
  const auto copy = [&](int i) {
    const auto copied = std::dynamic_pointer_cast<OVDynamicWaveForm>(summary->copy());
    expectConsistent(*copied);
    if (i % 50 == 0) {
      copied->generate();
      expectConsistent(*copied);
    }
    const auto stretched = OVStaticWaveform::initWithDynamicWaveform(summary);
    EXPECT_EQ(stretched->elementCount(), 1024U);
  };
  runTogether({times(300, write), times(200, generate), times(2000, draw), times(400, copy)});

  summary->setShouldRegenerateWaveform(true);
  summary->generate();
  const auto fresh = OVDynamicWaveForm::initWithBuffer(audio);
  fresh->generate();
  EXPECT_EQ(elementsOf(*summary), elementsOf(*fresh));
  expectConsistent(*summary);
}

TEST(SummaryConcurrencyTest, ADynamicSummaryIsResetAndResizedBesideGenerations) {
  const auto audio = std::make_shared<MemoryTestBuffer>();
  audio->append(support::risingBlocks(0, 3000, kBlocks));
  const auto summary = OVDynamicWaveForm::initWithBuffer(audio);
  const auto disturb = [&](int i) {
    i % 3 == 0 ? summary->reset() : summary->setShouldRegenerateWaveform(true);
  };
  const auto resize = [&](int i) { summary->setCapacity(i % 2 == 0 ? 256 : 1024); };
  const auto draw = [&](int) {
    const std::vector<float> elements = elementsOf(*summary);
    EXPECT_TRUE(std::is_sorted(elements.begin(), elements.end(), std::less_equal<>()));
  };
  const auto generate = [&](int) { summary->generate(); };
  // The lock belongs to the caller of generateNoLock(); this one does not hold it, and no byte is
  // taken in twice or left out all the same.
  const auto generateUnlocked = [&](int) { summary->generateNoLock(); };
  runTogether({times(100, disturb), times(100, resize), times(1000, draw), times(100, generate),
               times(100, generateUnlocked)});

  summary->setCapacity(1024);
  summary->generate();
  const auto fresh = OVDynamicWaveForm::initWithBuffer(audio);
  fresh->generate();
  EXPECT_EQ(elementsOf(*summary), elementsOf(*fresh));
}

TEST(SummaryConcurrencyTest, AStaticSummaryIsPatchedDrawnAndCopiedWhileItIsGenerated) {
  constexpr std::uint64_t kFrames = 1024 * 64;
  const auto audio = std::make_shared<MemoryTestBuffer>();
  audio->append(
      support::stereo(kFrames, [](std::uint64_t frame) { return frame % 64 == 0 ? 0.5 : 0.0; }));
  const auto summary = OVStaticWaveform::initWithBuffer(audio);
  // 64 floats for each of 128 slots: cleared and stored in one stretch of the lock.
  std::vector<float> chunk(128 * 64);
  for (std::size_t i = 0; i < chunk.size(); i += 64) {
    chunk[i] = 0.25F;
  }
  const auto generate = [&](int) {
    summary->setShouldRegenerateWaveform(true);
    summary->generate();
  };
  const auto patch = [&](int i) {
    summary->updateWithDataChunk(chunk.data(), chunk.size(), static_cast<double>(i % 8) / 8);
  };
  const auto draw = [&](int) {
    EXPECT_THAT(elementsOf(*summary), testing::Each(testing::AnyOf(0.25F, 0.5F)));
    static_cast<void>(summary->isRegenerating());
    static_cast<void>(summary->readerPos());
  };
  const auto copy = [&](int) {
    EXPECT_THAT(elementsOf(*summary->copy()), testing::Each(testing::AnyOf(0.25F, 0.5F)));
  };
  runTogether({times(300, generate), times(1000, patch), times(150, draw), times(150, copy)});

  summary->regenerate();
  EXPECT_THAT(elementsOf(*summary), testing::Each(0.5F));
}

}  // namespace
