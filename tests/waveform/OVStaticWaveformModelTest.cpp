// The static summary beside its plainest form, to the bit, over seeded random lives.
#include <gmock/gmock.h>

#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "LiteralSummaries.h"
#include "support/MemoryTestBuffer.h"
#include "support/TestAudio.h"
#include "waveform/OVStaticWaveform.h"

namespace {

/// A quarter of an hour of audio without its memory: a short noise over and over.
class RepeatingBuffer final : public MemoryTestBuffer {
 public:
  static constexpr std::uint64_t kFrames = 40'000'000;

  explicit RepeatingBuffer(std::vector<float> noise) : noise_(std::move(noise)) {}

  [[nodiscard]] BufferReadResult readDataInto(void* destination, std::uint64_t withSize,
                                              std::uint64_t fromOffset) override {
    const std::uint64_t period = noise_.size() * sizeof(float);
    const std::uint64_t end = std::min(kFrames * 8, fromOffset + withSize);
    for (std::uint64_t place = fromOffset; place < end;) {
      const std::uint64_t inNoise = place % period;
      const std::uint64_t count = std::min(period - inNoise, end - place);
      std::memcpy(static_cast<char*>(destination) + (place - fromOffset),
                  reinterpret_cast<const char*>(noise_.data()) + inNoise, count);
      place += count;
    }
    if (end <= fromOffset) {
      return {};
    }
    const std::uint64_t count = end - fromOffset;
    return {.data = static_cast<float*>(destination), .frameCount = count / 8, .byteCount = count};
  }
  [[nodiscard]] std::uint64_t bufferSizeInFrames() const override { return kFrames; }

 private:
  const std::vector<float> noise_;
};

/// A summary and the literal one on the same buffer.
class Pair {
 public:
  explicit Pair(std::uint64_t seed) : random_(seed) { model_.audio = audio_.get(); }

  void live() {
    for (std::uint64_t steps = 2 + random_() % 6; steps > 0 && !testing::Test::HasFailure();
         --steps) {
      step();
      expectEqual();
    }
  }

 private:
  void step() {
    const std::uint64_t kind = random_() % 12;
    story_ += " " + std::to_string(kind);
    switch (kind) {
      case 0:
        return addHole();
      case 1:
        return audio_->clearHoles();
      case 2:
        return audio_->resizeInBytes(random_() % (audio_->byteCount() + 1));
      case 3:
        summary_ = std::dynamic_pointer_cast<OVStaticWaveform>(summary_->copy());
        return;
      case 4:
      case 5:
      case 6:
        audio_->append(someAudio(random_() % 16 == 0 ? 80'000 : 4000));
        summary_->setShouldRegenerateWaveform(true);
        summary_->generate();
        return model_.regenerate();
      default:
        return update();
    }
  }

  void addHole() {
    const std::uint64_t begin = random_() % (audio_->byteCount() + 1);
    audio_->addHole(begin, begin + random_() % 50'000);
  }

  void update() {
    const std::vector<float> samples = someAudio(random_() % 3 == 0 ? 20 : 3000);
    const std::uint64_t count = samples.size() - (samples.empty() ? 0 : random_() % 2);
    const double position = static_cast<double>(random_() % 5000) / 4096 - 0.1;
    summary_->updateWithDataChunk(samples.data(), count, position);
    model_.update(samples.data(), count, position);
  }

  std::vector<float> someAudio(std::uint64_t frameLimit) {
    return test_audio::roughNoise(2 * (random_() % frameLimit), random_);
  }

  void expectEqual() {
    SCOPED_TRACE("steps" + story_);
    EXPECT_EQ(summary_->producedElementCount(), model_.elementCount);
    EXPECT_EQ(summary_->readerPos(), model_.reader_pos / 8);
    for (std::size_t slot = 0; slot < 1024; ++slot) {
      ASSERT_EQ(std::memcmp(summary_->data() + slot, model_.buffer.data() + slot, 4), 0)
          << "slot " << slot << ": " << summary_->data()[slot] << ", not " << model_.buffer[slot];
    }
  }

  std::mt19937_64 random_;
  const std::shared_ptr<MemoryTestBuffer> audio_ = std::make_shared<MemoryTestBuffer>();
  std::shared_ptr<OVStaticWaveform> summary_ = OVStaticWaveform::initWithBuffer(audio_);
  literal::StaticSummary model_;
  std::string story_;
};

TEST(OVStaticWaveformModelTest, EqualsTheLiteralSummaryOverThousandsOfRandomLives) {
  for (std::uint64_t seed = 0; seed < 4000 && !HasFailure(); ++seed) {
    SCOPED_TRACE(seed);
    Pair(seed).live();
  }
}

TEST(OVStaticWaveformModelTest, EqualsTheLiteralSummaryWithElementsLongerThanABatch) {
  std::mt19937_64 random(9);
  const auto audio = std::make_shared<RepeatingBuffer>(test_audio::roughNoise(2 * 262'147, random));
  ASSERT_GT(RepeatingBuffer::kFrames / 1024 * 8, SummaryReader::kBatchByteCount);
  const auto summary = OVStaticWaveform::initWithBuffer(audio);
  literal::StaticSummary model;
  model.audio = audio.get();
  model.regenerate();
  EXPECT_EQ(std::memcmp(summary->data(), model.buffer.data(), 4096), 0);
  EXPECT_EQ(summary->readerPos(), model.reader_pos / 8);
}

}  // namespace
