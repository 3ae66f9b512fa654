// Buffers on their way through the device's real-time thread.
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include <gmock/gmock.h>

#include "interleavings/AllOrders.h"
#include "platform/sound/OutputFeeder.h"

using interleavings::Threads;
using interleavings::tryAllOrders;
using interleavings::waitForAnotherThread;

namespace {

constexpr float kForbidden = 99.0F;

struct Feed {
  static constexpr std::size_t kBuffers = 2;
  static constexpr std::uint32_t kFrames = 2;  // of each

  Feed() {
    for (std::size_t i = 0; i < kBuffers; ++i) {
      data[i].fill(static_cast<float>(i + 1));
      buffers[i].mAudioData = reinterpret_cast<std::byte*>(data[i].data());
      buffers[i].mAudioDataByteSize = sizeof(data[i]);
    }
  }

  // As the device: until `frames` frames were asked for.
  void fill(std::uint32_t frames) {
    constexpr std::uint32_t kAtOnce = 3;
    for (std::uint32_t done = 0; done < frames; done += kAtOnce) {
      std::array<float, std::size_t{2} * kAtOnce> samples{};
      static_cast<void>(feeder.fill(samples.data(), kAtOnce));
      heard.insert(heard.end(), samples.begin(), samples.end());
    }
  }

  std::vector<float> sound() const {
    std::vector<float> result;
    for (const float sample : heard) {
      if (sample != 0.0F) {
        result.push_back(sample);
      }
    }
    return result;
  }

  std::array<std::array<float, std::size_t{2} * kFrames>, kBuffers> data{};
  std::array<platform::AudioQueueBuffer, kBuffers> buffers;
  platform::OutputFeeder feeder;
  std::vector<float> heard;
};

TEST(OutputFeederOrdersTest, EveryBufferIsHeardOnceInItsOrderAndComesBack) {
  const auto orders = tryAllOrders(2, [] {
    auto feed = std::make_shared<Feed>();
    return Threads{{[feed] {
                      feed->feeder.push(&feed->buffers[0]);
                      feed->feeder.push(&feed->buffers[1]);
                      feed->feeder.beginDraining();
                      std::vector<platform::AudioQueueBuffer*> back;
                      while (back.size() < Feed::kBuffers) {
                        if (auto* const buffer = feed->feeder.popTaken(); buffer != nullptr) {
                          back.push_back(buffer);
                        } else {
                          waitForAnotherThread();
                        }
                      }
                      EXPECT_THAT(back, testing::ElementsAre(&feed->buffers[0], &feed->buffers[1]));
                    },
                    [feed] {
                      while (feed->sound().size() < 2 * Feed::kBuffers * Feed::kFrames) {
                        feed->fill(3);
                        waitForAnotherThread();
                      }
                    }},
                   [feed] {
                     EXPECT_THAT(feed->sound(), testing::ElementsAre(1, 1, 1, 1, 2, 2, 2, 2));
                     EXPECT_TRUE(feed->feeder.isAllTaken());
                   }};
  });
  EXPECT_GT(orders, 100U);
}

// A queue that drains ends when everything was taken and the device's position has passed the last
// real frame: this one must not be told too early.
TEST(OutputFeederOrdersTest, WhenEverythingWasTakenTheLastRealFrameIsKnown) {
  const auto orders = tryAllOrders(3, [] {
    auto feed = std::make_shared<Feed>();
    feed->feeder.push(&feed->buffers[0]);
    feed->feeder.beginDraining();
    return Threads{{[feed] {
                      while (!feed->feeder.isAllTaken()) {
                        waitForAnotherThread();
                      }
                      EXPECT_EQ(feed->feeder.realEndFrame(), std::uint64_t{Feed::kFrames});
                      EXPECT_GE(feed->feeder.givenFrames(), std::uint64_t{Feed::kFrames});
                    },
                    [feed] { feed->fill(6); }}};
  });
  EXPECT_GT(orders, 10U);
}

TEST(OutputFeederOrdersTest, AfterItIsClosedNoBufferIsRead) {
  const auto orders = tryAllOrders(3, [] {
    auto feed = std::make_shared<Feed>();
    feed->feeder.push(&feed->buffers[0]);
    feed->feeder.push(&feed->buffers[1]);
    return Threads{{[feed] {
                      feed->feeder.close();
                      for (auto& samples : feed->data) {
                        samples.fill(kForbidden);
                      }
                    },
                    [feed] { feed->fill(6); }},
                   [feed] {
                     EXPECT_THAT(feed->heard, testing::Each(testing::Ne(kForbidden)));
                     EXPECT_EQ(feed->heard.size(), 12U);
                   }};
  });
  EXPECT_GT(orders, 10U);
}

}  // namespace
