#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <thread>

#include "storage/BufferPair.h"
#include "storage/OVDiskAudioBuffer.h"
#include "storage/PlainBuffers.h"
#include "support/Eventually.h"
#include "support/ModelTest.h"
#include "support/fakes/RecordingServices.h"

namespace {

using modeltest::below;
using modeltest::Step;
using support::Bytes;
using support::PlainDiskBuffer;

class DiskAudioBufferPair : support::BufferPair {
 public:
  static constexpr const char* kName = "DiskAudioBufferPair";

  DiskAudioBufferPair() { watch(*real_); }

  void apply(const Step& step) {
    if (step.what == "write") {
      model_.write(writeReal(*real_, step.a, step.b, step.c), step.a);
    } else if (step.what == "read") {
      lastRead_ = support::read(*real_, step.b, step.a);
      modelsLastRead_ = model_.read(step.b, step.a);
      waitForTheFill();
    } else if (step.what == "readCache") {
      lastRead_.assign(step.b, 0);
      lastRead_.resize(real_->getDataFromCache(lastRead_.data(), step.a, step.b));
      modelsLastRead_ = model_.readCache(step.b, step.a);
    } else if (step.what == "fill") {
      real_->fillCacheFromPosition(step.a);
      model_.fill(step.a);
    } else if (step.what == "discard") {
      real_->discardCache();
      model_.discard();
    } else if (step.what == "cutAfter") {
      real_->cutoffBufferAfterPosition(step.a);
      model_.cutAfter(step.a);
    } else if (step.what == "cutBefore") {
      real_->cutoffBufferBeforePosition(step.a);
      model_.cutBefore(step.a);
    } else {
      doNothing(step.what);
    }
  }

  std::string difference() {
    modeltest::Comparison comparison;
    comparison.tell("size", real_->f_size(), model_.size);
    comparison.tell("frames", real_->bufferSizeInFrames(), model_.size / 8);
    comparison.tell("filled frames", real_->bufferFillSizeInFrames(), model_.size / 8);
    comparison.tell("frames of capacity", real_->bufferCapacityInFrames(), model_.size / 8);
    comparison.tellSequence("bytes read", lastRead_, modelsLastRead_);
    comparison.tell("cached position", real_->cached_position(), model_.cachePosition);
    comparison.tell("cached bytes", real_->cache_fillsize(), model_.cache.size());
    for (const std::uint64_t from : {std::uint64_t{0}, model_.size / 3, model_.size - 3}) {
      Bytes bytes(3000);
      bytes.resize(real_->readDataIntoNoCache(bytes.data(), bytes.size(), from).byteCount);
      comparison.tellSequence("file at " + std::to_string(from), bytes,
                              model_.readNoCache(3000, from));
      const double level = real_->powerAtPosition(from / 8);
      if (!support::isSameLevel(level, model_.power(from / 8))) {
        comparison.tell("level of frame " + std::to_string(from / 8), level,
                        model_.power(from / 8));
      }
    }
    compareDelegateCalls(comparison);
    return comparison.text();
  }

  [[nodiscard]] const PlainDiskBuffer& model() const { return model_; }

 private:
  void waitForTheFill() {
    for (int i = 0; i < 1000 && real_->cacheFilling(); ++i) {
      std::this_thread::yield();
    }
    EXPECT_TRUE(support::eventually([this] { return !real_->cacheFilling(); }));
  }

  void doNothing(const std::string& what) {
    if (what == "undo") {
      real_->undo();
    } else if (what == "redo") {
      real_->redo();
    } else if (what == "waypoint") {
      real_->setWaypoint();
    } else if (what == "reverse") {
      real_->reverseBuffer();
    }
  }

  support::InstalledRecordingServices services_;
  const std::shared_ptr<OVDiskAudioBuffer> real_ = OVDiskAudioBuffer::init();
  PlainDiskBuffer model_;
  Bytes lastRead_;
  Bytes modelsLastRead_;
};

struct Scale {
  std::uint64_t longestWrite;  // bytes
  std::uint64_t longestRead;   // bytes
  std::uint64_t space;         // bytes: limit of write offsets
};

Step drawAt(const Scale& scale, std::mt19937_64& random, const DiskAudioBufferPair& pair) {
  const std::uint64_t size = pair.model().size;
  const std::uint64_t choice = below(random, 100);
  if (choice < 30) {
    const std::uint64_t count =
        below(random, 12) == 0 ? 0 : 1 + below(random, scale.longestWrite / 8) * 8;
    const bool atTheEnd = below(random, 2) == 0 && size < 2 * scale.space;
    return {"write", atTheEnd ? size : below(random, scale.space), count, random() % 1000};
  }
  if (choice < 70) {
    const auto& model = pair.model();
    const std::uint64_t count = below(random, scale.longestRead);
    const bool inCache = below(random, 2) == 0 && !model.cache.empty();
    const std::uint64_t at = inCache ? model.cachePosition + below(random, model.cache.size())
                                     : below(random, size + 20);
    return {choice < 60 ? "read" : "readCache", at, count};
  }
  if (choice < 84) {
    return {choice < 77 ? "cutAfter" : "cutBefore", below(random, size / 8 + 4)};
  }
  if (choice < 92) {
    return {"fill", below(random, size + 20)};
  }
  constexpr const char* kOthers[] = {"discard", "undo", "redo", "waypoint", "reverse"};
  return {kOthers[below(random, 5)]};
}

TEST(OVDiskAudioBufferModelTest, DoesTheSameThroughThousandsOfSequences) {
  const auto draw = [](std::mt19937_64& random, const DiskAudioBufferPair& pair) {
    return drawAt({.longestWrite = 800, .longestRead = 600, .space = 2000}, random, pair);
  };
  EXPECT_TRUE(modeltest::holds<DiskAudioBufferPair>(1500, 60, draw));
}

TEST(OVDiskAudioBufferModelTest, DoesTheSameWithRecordingsLongerThanTheCache) {
  const auto draw = [](std::mt19937_64& random, const DiskAudioBufferPair& pair) {
    return drawAt({.longestWrite = 3'000'000, .longestRead = 1'500'000, .space = 8'000'000}, random,
                  pair);
  };
  EXPECT_TRUE(modeltest::holds<DiskAudioBufferPair>(10, 40, draw));
}

}  // namespace
