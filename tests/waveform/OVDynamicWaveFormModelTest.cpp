// The dynamic summary beside its plainest form, to the bit, over seeded random lives.
#include <gmock/gmock.h>

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>
#include <memory>
#include <random>
#include <span>
#include <string>
#include <vector>

#include "LiteralSummaries.h"
#include "support/ModelTest.h"
#include "support/TestAudio.h"
#include "support/fakes/MemoryTestBuffer.h"
#include "waveform/OVDynamicWaveForm.h"

namespace {

using modeltest::below;
using modeltest::Step;

/// A summary and the literal one, each on a buffer of its own with the same audio.
class DynamicSummaryPair {
 public:
  static constexpr const char* kName = "DynamicSummaryPair";

  DynamicSummaryPair() { model_.audio = &modelAudio_; }

  void apply(const Step& step) { applyToAudio(step) || applyToSummary(step); }

  std::string difference() {
    modeltest::Comparison comparison;
    comparison.tell("places where a writer stepped in", unusedPlaces_, 0);
    comparison.tell("capacity", summary_->capacity(), model_.buffer.size());
    comparison.tell("elements", summary_->elementCount(), model_.buffer_pos);
    comparison.tell("produced elements", summary_->producedElementCount(), model_.elementCount);
    comparison.tell("reader position", summary_->readerPos(), model_.reader_pos / 8);
    comparison.tell("chunk size", summary_->chunksize(), model_.chunksize);
    comparison.tell("is regenerating", summary_->isRegenerating(), model_.isRegenerating);
    comparison.tell("largest amplitude", std::bit_cast<std::uint64_t>(summary_->maxAmplitude()),
                    std::bit_cast<std::uint64_t>(model_.max_amplitude));
    const auto pending = summary_->pendingElement();
    comparison.tell("pending reads", pending.readCount, model_.chunk_read_count);
    comparison.tell("pending frames", pending.frameCount, model_.chunk_read_size);
    comparison.tell("pending smallest", pending.smallest, model_.chunk_min);
    comparison.tell("pending largest", pending.largest, model_.chunk_max);
    compareElements(comparison);
    return comparison.text();
  }

  [[nodiscard]] std::uint64_t byteCount() const { return modelAudio_.byteCount(); }

 private:
  bool applyToAudio(const Step& step) {
    const auto both = [&](auto&& change) {
      change(*audio_);
      change(modelAudio_);
      return true;
    };
    if (step.what == "append") {
      const auto bytes = someAudio(step.a, step.b, step.c);
      return both([&](MemoryTestBuffer& audio) { audio.append(bytes.data(), bytes.size()); });
    }
    if (step.what == "punchIn") {
      const auto bytes = someAudio(step.b, step.c, 0);
      return both([&](MemoryTestBuffer& audio) {
        audio.writeData(bytes.data(), step.a, static_cast<std::uint32_t>(bytes.size()));
      });
    }
    if (step.what == "cutAfter") {
      const std::uint64_t bytes = std::min(step.a, modelAudio_.byteCount());
      return both([&](MemoryTestBuffer& audio) { audio.resizeInBytes(bytes); });
    }
    if (step.what == "cutBefore") {
      return both([&](MemoryTestBuffer& audio) { audio.dropFirstBytes(step.a); });
    }
    if (step.what == "hole") {
      return both([&](MemoryTestBuffer& audio) { audio.addHole(step.a, step.a + step.b); });
    }
    if (step.what == "clearHoles") {
      return both([](MemoryTestBuffer& audio) { audio.clearHoles(); });
    }
    return false;
  }

  bool applyToSummary(const Step& step) {
    if (step.what == "generate") {
      summary_->generate();
      model_.generate();
    } else if (step.what == "generateNoLock") {
      summary_->lock();
      summary_->generateNoLock();
      summary_->unlock();
      model_.generate();
    } else if (step.what == "generateBesideAWriter") {
      generateBesideAWriter(step.a, someAudio(step.b, step.c, 0));
    } else if (step.what == "setCapacity") {
      summary_->setCapacity(step.a);
      model_.setCapacity(step.a);
    } else if (step.what == "regenerateNext") {
      summary_->setShouldRegenerateWaveform(true);
      model_.regenerate = true;
    } else if (step.what == "reset") {
      summary_->reset();
      model_.reset();
    } else if (step.what == "consolidate") {
      summary_->consolidate();
      model_.consolidate();
    } else if (step.what == "appendSample") {
      summary_->appendSample(static_cast<float>(step.a) / 1000);
      model_.appendSample(static_cast<float>(step.a) / 1000);
    } else if (step.what == "copy") {
      summary_ = std::dynamic_pointer_cast<OVDynamicWaveForm>(summary_->copy());
    }
    return true;
  }

  /// `frames` frames and `extra` more bytes: not always whole frames.
  static std::vector<std::byte> someAudio(std::uint64_t frames, std::uint64_t seed,
                                          std::uint64_t extra) {
    std::mt19937_64 random(seed);
    const std::vector<float> samples = support::roughNoise(2 * frames, random);
    const std::span<const std::byte> whole = std::as_bytes(std::span(samples));
    std::vector<std::byte> bytes(whole.begin(), whole.end());
    bytes.resize(bytes.size() + extra);
    return bytes;
  }

  /// A writer appends in the midst of the generation, before one of the summary's reads; beside
  /// the literal summary it does so before the read of the same place. Inside a block that is read
  /// in pieces there is no such place, so the writer keeps out of those.
  void generateBesideAWriter(std::uint64_t readsBefore, const std::vector<std::byte>& bytes) {
    constexpr std::uint64_t kNowhere = std::numeric_limits<std::uint64_t>::max();
    std::uint64_t place = kNowhere;
    if (model_.regenerate || model_.chunksize * 8 <= SummaryReader::kBatchByteCount) {
      audio_->beforeRead = [&](std::uint64_t fromOffset) mutable {
        if (readsBefore-- == 0) {
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
    unusedPlaces_ += place == kNowhere ? 0 : 1;
  }

  void compareElements(modeltest::Comparison& comparison) const {
    if (summary_->capacity() != model_.buffer.size()) {
      return;
    }
    for (std::size_t i = 0; i < model_.buffer.size(); ++i) {
      const float real = summary_->data()[i];
      if (std::memcmp(&real, &model_.buffer[i], sizeof real) != 0) {
        comparison.tell("element " + std::to_string(i), real, model_.buffer[i]);
        return;
      }
    }
  }

  const std::shared_ptr<MemoryTestBuffer> audio_ = std::make_shared<MemoryTestBuffer>();
  std::shared_ptr<OVDynamicWaveForm> summary_ = OVDynamicWaveForm::initWithBuffer(audio_);
  MemoryTestBuffer modelAudio_;
  literal::DynamicSummary model_;
  int unusedPlaces_ = 0;
};

/// Mostly short; now and then several batches of the reader.
std::uint64_t drawFrames(std::mt19937_64& random) {
  const std::uint64_t limit = below(random, 40) == 0  ? 150'000
                              : below(random, 4) == 0 ? 20'000
                                                      : 700;
  return below(random, limit);
}

Step drawEdit(std::mt19937_64& random, std::uint64_t byteCount) {
  switch (below(random, 5)) {
    case 0:
      return {"cutAfter", below(random, byteCount + 1)};
    case 1:
      return {"cutBefore", below(random, byteCount + 1)};
    case 2:
      return {"hole", below(random, byteCount + 1), below(random, 5000)};
    case 3:
      return {"clearHoles"};
    default:
      return {"punchIn", below(random, byteCount + 1), below(random, 2000), random() % 1000};
  }
}

Step drawStep(std::mt19937_64& random, const DynamicSummaryPair& pair) {
  switch (below(random, 20)) {
    case 0:
      return {"setCapacity", below(random, 2) == 0 ? below(random, 12) : below(random, 3000)};
    case 1:
    case 2:
      return {"regenerateNext"};
    case 3:
      return {"reset"};
    case 4:
      return below(random, 2) == 0 ? Step{"consolidate"}
                                   : Step{"appendSample", below(random, 1000)};
    case 5:
      return {"copy"};
    case 6:
    case 7:
    case 8:
      return drawEdit(random, pair.byteCount());
    case 9:
    case 10:
      return {"generateBesideAWriter", below(random, 4), drawFrames(random), random() % 1000};
    case 11:
      return {"generateNoLock"};
    case 12:
    case 13:
    case 14:
    case 15:
      return {"append", drawFrames(random), random() % 1000,
              below(random, 8) == 0 ? below(random, 8) : 0};
    default:
      return {"generate"};
  }
}

TEST(OVDynamicWaveFormModelTest, EqualsTheLiteralSummaryOverThousandsOfRandomLives) {
  EXPECT_TRUE(modeltest::holds<DynamicSummaryPair>(4000, 14, drawStep));
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
      audio->append(support::roughNoise(2 * (random() % 200'000), random));
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
