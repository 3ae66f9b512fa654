// Twenty hours: 25 GB of audio, mostly silence, in files that keep no zeros. Under the thread
// checker an hour has six minutes.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <vector>

#include "storage/OVBlockBuffer.h"
#include "support/ProcessMemory.h"
#include "support/Sanitizers.h"
#include "support/fakes/SparseTemporaryFiles.h"
#include "waveform/OVDynamicWaveForm.h"
#include "waveform/OVStaticWaveform.h"

namespace {

constexpr std::uint64_t kFrameBytes = 8;
constexpr std::uint64_t kHour = 44100ULL * (support::kThreadSanitizer ? 360 : 3600);  // frames
constexpr std::uint64_t kHours = 20;
constexpr std::uint64_t kNoiseFrames = 44100;
// What the process may grow by for a while, whatever the length: the batches of reading. The
// checkers keep what was freed.
constexpr std::uint64_t kAllowedGrowth = std::uint64_t{support::kAnySanitizer ? 64 : 4} << 20;

class VeryLongRecordingTest : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_NE(buffer_, nullptr);
    const std::vector<float> silence(std::uint64_t{16} << 20);  // 64 MB
    for (std::uint64_t frame = 0; frame < kHours * kHour; frame += silence.size() / 2) {
      const std::uint64_t frames = std::min(silence.size() / 2, kHours * kHour - frame);
      buffer_->writeData(silence.data(), frame * kFrameBytes,
                         static_cast<std::uint32_t>(frames * kFrameBytes));
    }
    // Left alternates between 0 and 0.5, so that the spread of an element is 0.5.
    noise_.resize(2 * kNoiseFrames);
    for (std::size_t i = 0; i < noise_.size(); i += 4) {
      noise_[i] = 0.5F;
    }
    for (const std::uint64_t hour : kNoisyHours) {
      buffer_->writeData(noise_.data(), hour * kHour * kFrameBytes,
                         static_cast<std::uint32_t>(noise_.size() * sizeof(float)));
    }
    memory_.emplace();
  }

  void expectNoGrowth(const char* after) const {
    EXPECT_LT(memory_->atMost(), kAllowedGrowth) << after;
  }

  void expectNoiseAt(std::uint64_t frame) {
    std::vector<float> samples(noise_.size());
    ASSERT_EQ(
        buffer_->readDataInto(samples.data(), samples.size() * sizeof(float), frame * kFrameBytes)
            .frameCount,
        kNoiseFrames);
    EXPECT_TRUE(samples == noise_);
  }

  // Whether a summary shows something in exactly these places, as shares of its length.
  static void expectPeaks(const OVWaveformSummary& summary, const std::vector<double>& places) {
    std::vector<float> elements;
    summary.copyElementsInto(elements);
    const auto count = static_cast<double>(elements.size());
    ASSERT_GE(elements.size(), 512U);
    for (std::size_t i = 0; i < elements.size(); ++i) {
      const double at = static_cast<double>(i) / count;
      const bool isPeak = std::any_of(places.begin(), places.end(), [&](double place) {
        return place >= at - 1e-9 && place < at + 1.0 / count;
      });
      ASSERT_EQ(elements[i], isPeak ? 0.5F : 0.0F) << "element " << i << " of " << count;
    }
  }

  static constexpr std::uint64_t kNoisyHours[] = {3, 10, 19};

  support::SparseTemporaryFiles files_;
  platform::Installed<platform::TemporaryFiles>::Scope installation_{files_};
  const std::shared_ptr<OVBlockBuffer> buffer_ = OVBlockBuffer::init();
  std::vector<float> noise_;
  std::optional<support::MemoryGrowth> memory_;  // since all was written
};

TEST_F(VeryLongRecordingTest, IsCutInItsMiddleUndoneAndReadFromThereWithoutMoreMemory) {
  buffer_->setWaypoint();
  buffer_->cutoffBufferAfterPosition(kHours / 2 * kHour);
  EXPECT_EQ(buffer_->bufferSizeInFrames(), kHours / 2 * kHour);
  expectNoiseAt(3 * kHour);
  buffer_->undo();
  EXPECT_EQ(buffer_->bufferSizeInFrames(), kHours * kHour);
  expectNoiseAt(10 * kHour);
  expectNoiseAt(19 * kHour);
  buffer_->setWaypoint();
  buffer_->cutoffBufferBeforePosition(kHours / 2 * kHour);
  expectNoiseAt(0);
  expectNoiseAt(9 * kHour);
  buffer_->undo();
  expectNoiseAt(3 * kHour);
  expectNoGrowth("cuts, undo and reads");
}

TEST_F(VeryLongRecordingTest, IsSummarisedWholeAndCutWithoutMoreMemory) {
  const auto growing = OVDynamicWaveForm::initWithBuffer(buffer_);
  growing->generate();
  EXPECT_EQ(growing->readerPos(), kHours * kHour);
  buffer_->cutoffBufferAfterPosition(kHours / 2 * kHour);
  buffer_->cutoffBufferBeforePosition(2 * kHour);
  const auto fixed = OVStaticWaveform::initWithBuffer(buffer_);
  expectPeaks(*fixed, {1.0 / 8});
  growing->setShouldRegenerateWaveform(true);
  growing->generate();
  EXPECT_EQ(growing->readerPos(), 8 * kHour);
  expectNoGrowth("summaries");
}

}  // namespace
