#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>

#include "platform/base/ApplicationServices.h"
#include "storage/BufferPair.h"
#include "storage/OVAudioBuffer.h"
#include "storage/PlainBuffers.h"
#include "support/ModelTest.h"

namespace {

using modeltest::below;
using modeltest::Step;
using support::PlainAudioBuffer;

class AudioBufferPair : support::BufferPair {
 public:
  static constexpr const char* kName = "AudioBufferPair";

  AudioBufferPair() { watch(*real_); }

  void apply(const Step& step) {
    if (step.what == "write") {
      model_.write(writeReal(*real_, step.a, step.b, step.c), step.a);
    } else if (step.what == "cutAfter") {
      real_->cutoffBufferAfterPosition(step.a);
      model_.cutAfter(step.a);
    } else if (step.what == "cutBefore") {
      real_->cutoffBufferBeforePosition(step.a);
      model_.cutBefore(step.a);
    } else if (step.what == "reverse") {
      real_->reverseBuffer();
      model_.reverse();
    } else if (step.what == "waypoint") {
      real_->setWaypoint();
      model_.setWaypoint();
    } else if (step.what == "undo") {
      real_->undo();
      model_.exchange();
    } else if (step.what == "redo") {
      real_->redo();
      model_.exchange();
    }
  }

  std::string difference() {
    modeltest::Comparison comparison;
    comparison.tell("fill size", real_->bufferFillSize(), model_.fillSize);
    comparison.tell("capacity", real_->bufferCapacity(), model_.capacity);
    comparison.tell("frames", real_->bufferSizeInFrames(), model_.fillSize / 8);
    comparison.tell("filled frames", real_->bufferFillSizeInFrames(), model_.fillSize / 8);
    comparison.tell("frames of capacity", real_->bufferCapacityInFrames(), model_.capacity / 8);
    const std::uint64_t end = std::min<std::uint64_t>(model_.fillSize, 2000);
    for (const std::uint64_t from :
         {std::uint64_t{0}, end / 3, end - std::min<std::uint64_t>(end, 5), end, model_.fillSize,
          model_.capacity}) {
      for (const std::uint64_t count : {std::uint64_t{12}, std::uint64_t{2000}}) {
        comparison.tellSequence("read of " + std::to_string(count) + " at " + std::to_string(from),
                                support::read(*real_, count, from), model_.read(count, from));
      }
      compareLevel(comparison, from / 4);
      compareLevel(comparison, from / 4 + 1);
    }
    compareDelegateCalls(comparison);
    return comparison.text();
  }

  [[nodiscard]] const PlainAudioBuffer& model() const { return model_; }

 private:
  void compareLevel(modeltest::Comparison& comparison, std::uint64_t sample) {
    const double real = real_->powerAtPosition(sample);
    const double model = model_.power(sample);
    if (!support::isSameLevel(real, model)) {
      comparison.tell("level of sample " + std::to_string(sample), real, model);
    }
  }

  const std::shared_ptr<OVAudioBuffer> real_ = OVAudioBuffer::init();
  PlainAudioBuffer model_;
};

// Mostly shrinks the block first, so that growth and the block's edges are common.
Step draw(std::mt19937_64& random, const AudioBufferPair& pair) {
  const PlainAudioBuffer& model = pair.model();
  const std::uint64_t choice = below(random, 100);
  if (model.capacity > 5000 && choice < 60) {
    return {"cutAfter", below(random, 40)};
  }
  if (choice < 66) {
    const std::uint64_t length = std::min<std::uint64_t>(model.fillSize, 3000);
    const std::uint64_t size = below(random, 12) == 0 ? 0 : below(random, 100);
    return {"write", below(random, 3) == 0 ? length : below(random, 400), size, random() % 1000};
  }
  if (choice < 82) {
    const std::uint64_t frames = std::min<std::uint64_t>(model.capacity / 8, 500);
    const std::uint64_t at =
        below(random, 20) == 0 ? (support::kHighestAddress >> 3) - 3 : below(random, frames + 4);
    return {below(random, 2) == 0 ? "cutAfter" : "cutBefore", at};
  }
  return {choice < 86 ? "reverse" : choice < 91 ? "waypoint" : choice < 97 ? "undo" : "redo"};
}

TEST(OVAudioBufferModelTest, DoesTheSameThroughThousandsOfSequences) {
  EXPECT_TRUE(modeltest::holds<AudioBufferPair>(1500, 60, draw));
}

// Long enough for a block of ten seconds to grow.
TEST(OVAudioBufferModelTest, DoesTheSameWithLongRecordings) {
  const auto drawLong = [](std::mt19937_64& random, const AudioBufferPair& pair) -> Step {
    const std::uint64_t choice = below(random, 10);
    const std::uint64_t length = pair.model().fillSize;
    if (choice < 6 && length < 20'000'000) {
      return {"write", below(random, length + 1), below(random, 2'000'000), random() % 1000};
    }
    return choice < 8 ? Step{"cutBefore", below(random, length / 8 + 1)}
                      : Step{choice == 8 ? "waypoint" : "undo"};
  };
  EXPECT_TRUE(modeltest::holds<AudioBufferPair>(10, 12, drawLong));
}

}  // namespace
