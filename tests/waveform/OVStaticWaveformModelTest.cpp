// The static summary beside its plainest form, to the bit, over seeded random lives.
#include <gmock/gmock.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "LiteralSummaries.h"
#include "support/ModelTest.h"
#include "support/TestAudio.h"
#include "support/fakes/MemoryTestBuffer.h"
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

using modeltest::below;
using modeltest::Step;

std::vector<float> someAudio(std::uint64_t frames, std::uint64_t seed) {
  std::mt19937_64 random(seed);
  return support::roughNoise(2 * frames, random);
}

/// A summary and the literal one on the same buffer.
class StaticSummaryPair {
 public:
  static constexpr const char* kName = "StaticSummaryPair";

  StaticSummaryPair() { model_.audio = audio_.get(); }

  void apply(const Step& step) {
    if (step.what == "append") {
      audio_->append(someAudio(step.a, step.b));
    } else if (step.what == "punchIn") {
      const std::vector<float> samples = someAudio(step.b, step.c);
      audio_->writeData(samples.data(), step.a, static_cast<std::uint32_t>(samples.size() * 4));
    } else if (step.what == "cutAfter") {
      audio_->resizeInBytes(std::min(step.a, audio_->byteCount()));
    } else if (step.what == "cutBefore") {
      audio_->dropFirstBytes(step.a);
    } else if (step.what == "hole") {
      audio_->addHole(step.a, step.a + step.b);
    } else if (step.what == "clearHoles") {
      audio_->clearHoles();
    } else {
      applyToSummary(step);
    }
  }

  std::string difference() const {
    modeltest::Comparison comparison;
    comparison.tell("elements", summary_->elementCount(), 1024U);
    comparison.tell("produced elements", summary_->producedElementCount(), model_.elementCount);
    comparison.tell("reader position", summary_->readerPos(), model_.reader_pos / 8);
    for (std::size_t slot = 0; slot < 1024; ++slot) {
      if (std::memcmp(summary_->data() + slot, model_.buffer.data() + slot, 4) != 0) {
        comparison.tell("slot " + std::to_string(slot), summary_->data()[slot],
                        model_.buffer[slot]);
        break;
      }
    }
    return comparison.text();
  }

  [[nodiscard]] std::uint64_t byteCount() const { return audio_->byteCount(); }

 private:
  void applyToSummary(const Step& step) {
    if (step.what == "regenerate") {
      summary_->setShouldRegenerateWaveform(true);
      summary_->generate();
      model_.regenerate();
    } else if (step.what == "generate") {
      summary_->generate();  // nobody asked for it: nothing
    } else if (step.what == "copy") {
      summary_ = std::dynamic_pointer_cast<OVStaticWaveform>(summary_->copy());
    } else if (step.what == "update") {  // c: the position in 1/4096 of the length, plus 400
      std::vector<float> samples = someAudio(step.a / 2 + 1, step.b);
      const double position = (static_cast<double>(step.c) - 400) / 4096;
      summary_->updateWithDataChunk(samples.data(), step.a, position);
      model_.update(samples.data(), step.a, position);
    }
  }

  const std::shared_ptr<MemoryTestBuffer> audio_ = std::make_shared<MemoryTestBuffer>();
  std::shared_ptr<OVStaticWaveform> summary_ = OVStaticWaveform::initWithBuffer(audio_);
  literal::StaticSummary model_;
};

Step drawStep(std::mt19937_64& random, const StaticSummaryPair& pair) {
  const std::uint64_t byteCount = pair.byteCount();
  switch (below(random, 14)) {
    case 0:
      return {"hole", below(random, byteCount + 1), below(random, 50'000)};
    case 1:
      return {"clearHoles"};
    case 2:
      return {below(random, 2) == 0 ? "cutAfter" : "cutBefore", below(random, byteCount + 1)};
    case 3:
      return {below(random, 2) == 0 ? "copy" : "generate"};
    case 4:
    case 5:
    case 6:
      return {"append", below(random, below(random, 16) == 0 ? 80'000 : 4000), random() % 1000};
    case 7:
      return {"punchIn", below(random, byteCount + 1), below(random, 4000), random() % 1000};
    case 8:
    case 9:
    case 10:
      return {"regenerate"};
    default:
      return {"update", below(random, below(random, 3) == 0 ? 40 : 6000), random() % 1000,
              below(random, 5000)};
  }
}

TEST(OVStaticWaveformModelTest, EqualsTheLiteralSummaryOverThousandsOfRandomLives) {
  EXPECT_TRUE(modeltest::holds<StaticSummaryPair>(4000, 10, drawStep));
}

TEST(OVStaticWaveformModelTest, EqualsTheLiteralSummaryWithElementsLongerThanABatch) {
  std::mt19937_64 random(9);
  const auto audio = std::make_shared<RepeatingBuffer>(support::roughNoise(2 * 262'147, random));
  ASSERT_GT(RepeatingBuffer::kFrames / 1024 * 8, SummaryReader::kBatchByteCount);
  const auto summary = OVStaticWaveform::initWithBuffer(audio);
  literal::StaticSummary model;
  model.audio = audio.get();
  model.regenerate();
  EXPECT_EQ(std::memcmp(summary->data(), model.buffer.data(), 4096), 0);
  EXPECT_EQ(summary->readerPos(), model.reader_pos / 8);
}

}  // namespace
