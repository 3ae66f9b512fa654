// The dynamic summary beside its plainest form, to the bit, over seeded random lives.
#include <gmock/gmock.h>

#include <bit>
#include <cstring>
#include <limits>
#include <memory>
#include <random>
#include <span>
#include <string>
#include <vector>

#include "LiteralSummaries.h"
#include "support/MemoryTestBuffer.h"
#include "support/TestAudio.h"
#include "waveform/OVDynamicWaveForm.h"

namespace {

/// A summary and the literal one, each on a buffer of its own with the same audio.
class Pair {
 public:
  explicit Pair(std::uint64_t seed) : random_(seed) { model_.audio = &modelAudio_; }

  void live() {
    for (std::uint64_t steps = 2 + random_() % 8; steps > 0 && !testing::Test::HasFailure();
         --steps) {
      step();
      expectEqual();
    }
  }

 private:
  void step() {
    const std::uint64_t kind = random_() % 20;
    story_ += " " + std::to_string(kind);
    switch (kind) {
      case 0:
        return setCapacity();
      case 1:
        summary_->setShouldRegenerateWaveform(true);
        model_.regenerate = true;
        return;
      case 2:
        summary_->reset();
        return model_.reset();
      case 3:
        summary_->consolidate();
        return model_.consolidate();
      case 4:
        summary_->appendSample(0.3F);
        return model_.appendSample(0.3F);
      case 5:
        return cut();
      case 6:
        return addHole();
      case 7:
        audio_->clearHoles();
        return modelAudio_.clearHoles();
      case 8:
        summary_ = std::dynamic_pointer_cast<OVDynamicWaveForm>(summary_->copy());
        return;
      case 9:
      case 10:
        return generateBesideAWriter();
      default:
        if (kind % 2 == 0) {
          append(someAudio());
        }
        summary_->generate();
        return model_.generate();
    }
  }

  void setCapacity() {
    const std::uint64_t small = random_() % 12;
    const std::uint64_t capacity = random_() % 2 == 0 ? small : random_() % 3000;
    summary_->setCapacity(capacity);
    model_.setCapacity(capacity);
  }

  void cut() {
    const std::uint64_t bytes = random_() % (modelAudio_.byteCount() + 1);
    audio_->resizeInBytes(bytes);
    modelAudio_.resizeInBytes(bytes);
  }

  void addHole() {
    const std::uint64_t begin = random_() % (modelAudio_.byteCount() + 1);
    const std::uint64_t end = begin + random_() % 5000;
    audio_->addHole(begin, end);
    modelAudio_.addHole(begin, end);
  }

  /// Mostly short; now and then several batches of the reader. Not always whole frames.
  std::vector<std::byte> someAudio() {
    const std::uint64_t limit = random_() % 40 == 0 ? 150'000 : random_() % 4 == 0 ? 20'000 : 700;
    const std::vector<float> samples = test_audio::roughNoise(2 * (random_() % limit), random_);
    const std::span<const std::byte> whole = std::as_bytes(std::span(samples));
    std::vector<std::byte> bytes(whole.begin(), whole.end());
    bytes.resize(bytes.size() + (random_() % 8 == 0 ? random_() % 8 : 0));
    return bytes;
  }

  void append(const std::vector<std::byte>& bytes) {
    audio_->append(bytes.data(), bytes.size());
    modelAudio_.append(bytes.data(), bytes.size());
  }

  /// A writer appends in the midst of the generation, before one of the summary's reads; beside
  /// the literal summary it does so before the read of the same place. Inside a block that is read
  /// in pieces there is no such place, so the writer keeps out of those.
  void generateBesideAWriter() {
    constexpr std::uint64_t kNowhere = std::numeric_limits<std::uint64_t>::max();
    const std::vector<std::byte> bytes = someAudio();
    std::uint64_t place = kNowhere;
    if (model_.regenerate || model_.chunksize * 8 <= SummaryReader::kBatchByteCount) {
      audio_->beforeRead = [&, untilThen = random_() % 4](std::uint64_t fromOffset) mutable {
        if (untilThen-- == 0) {
          place = fromOffset;
          audio_->append(bytes.data(), bytes.size());
        }
      };
    }
    summary_->generate();
    audio_->beforeRead = nullptr;
    modelAudio_.beforeRead = [&](std::uint64_t fromOffset) {
      if (fromOffset == place) {
        place = kNowhere;
        modelAudio_.append(bytes.data(), bytes.size());
      }
    };
    model_.generate();
    modelAudio_.beforeRead = nullptr;
    EXPECT_EQ(place, kNowhere) << "the writer's place exists beside single reads";
  }

  void expectEqual() {
    SCOPED_TRACE("steps" + story_);
    ASSERT_EQ(summary_->capacity(), model_.buffer.size());
    EXPECT_EQ(summary_->elementCount(), model_.buffer_pos);
    EXPECT_EQ(summary_->producedElementCount(), model_.elementCount);
    EXPECT_EQ(summary_->readerPos(), model_.reader_pos / 8);
    EXPECT_EQ(summary_->chunksize(), model_.chunksize);
    EXPECT_EQ(summary_->isRegenerating(), model_.isRegenerating);
    EXPECT_EQ(std::bit_cast<std::uint64_t>(summary_->maxAmplitude()),
              std::bit_cast<std::uint64_t>(model_.max_amplitude));
    const OVDynamicWaveForm::PendingElement pending = {.readCount = model_.chunk_read_count,
                                                       .frameCount = model_.chunk_read_size,
                                                       .smallest = model_.chunk_min,
                                                       .largest = model_.chunk_max};
    EXPECT_EQ(summary_->pendingElement(), pending);
    EXPECT_EQ(std::memcmp(summary_->data(), model_.buffer.data(), model_.buffer.size() * 4), 0);
  }

  std::mt19937_64 random_;
  const std::shared_ptr<MemoryTestBuffer> audio_ = std::make_shared<MemoryTestBuffer>();
  std::shared_ptr<OVDynamicWaveForm> summary_ = OVDynamicWaveForm::initWithBuffer(audio_);
  MemoryTestBuffer modelAudio_;
  literal::DynamicSummary model_;
  std::string story_;
};

TEST(OVDynamicWaveFormModelTest, EqualsTheLiteralSummaryOverThousandsOfRandomLives) {
  for (std::uint64_t seed = 0; seed < 4000 && !HasFailure(); ++seed) {
    SCOPED_TRACE(seed);
    Pair(seed).live();
  }
}

TEST(OVDynamicWaveFormModelTest, EqualsTheLiteralSummaryWithBlocksLongerThanABatch) {
  std::mt19937_64 random(5);
  for (const std::uint64_t capacity : {2U, 3U, 6U}) {
    const auto audio = std::make_shared<MemoryTestBuffer>();
    const auto summary = OVDynamicWaveForm::initWithBuffer(audio);
    literal::DynamicSummary model;
    model.audio = audio.get();
    summary->setCapacity(capacity);
    model.setCapacity(capacity);
    for (int call = 0; call < 12; ++call) {
      audio->append(test_audio::roughNoise(2 * (random() % 200'000), random));
      summary->generate();
      model.generate();
      ASSERT_EQ(summary->chunksize(), model.chunksize);
      ASSERT_EQ(std::memcmp(summary->data(), model.buffer.data(), capacity * 4), 0) << call;
      ASSERT_EQ(summary->pendingElement().smallest, model.chunk_min) << call;
      ASSERT_EQ(summary->pendingElement().largest, model.chunk_max) << call;
    }
    EXPECT_GT(summary->chunksize() * 8, SummaryReader::kBatchByteCount);
  }
}

}  // namespace
