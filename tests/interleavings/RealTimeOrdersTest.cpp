// Data that crosses between the device's real-time thread and the others, without a lock.
#include <array>
#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include <gmock/gmock.h>

#include "interleavings/AllOrders.h"
#include "platform/sound/AudioClock.h"
#include "platform/sound/TimedReply.h"
#include "platform/sound/realtime/InputFanOut.h"
#include "platform/sound/realtime/InputRing.h"
#include "platform/sound/realtime/Semaphore.h"
#include "platform/sound/realtime/SpscQueue.h"

using interleavings::Threads;
using interleavings::tryAllOrders;
using interleavings::waitForAnotherThread;

namespace {

constexpr int kPreemptions = 3;

TEST(SpscQueueOrdersTest, EveryValueArrivesOnceInItsOrder) {
  struct Shared {
    platform::SpscQueue<int, 2> queue;
    std::vector<int> taken;
  };
  const auto orders = tryAllOrders(kPreemptions, [] {
    auto shared = std::make_shared<Shared>();
    return Threads{{[shared] {
                      for (int value = 1; value <= 4; ++value) {
                        while (!shared->queue.push(value)) {
                          waitForAnotherThread();
                        }
                      }
                    },
                    [shared] {
                      for (int value = 0; shared->taken.size() < 4;) {
                        if (shared->queue.pop(value)) {
                          shared->taken.push_back(value);
                        } else {
                          waitForAnotherThread();
                        }
                      }
                    }},
                   [shared] { EXPECT_THAT(shared->taken, testing::ElementsAre(1, 2, 3, 4)); }};
  });
  EXPECT_GT(orders, 100U);
}

TEST(SemaphoreOrdersTest, EveryPostWakesOneThatWaits) {
  struct Shared {
    platform::Semaphore semaphore;
    std::atomic<int> taken = 0;
  };
  const auto orders = tryAllOrders(kPreemptions, [] {
    auto shared = std::make_shared<Shared>();
    const auto wait = [shared] {
      shared->semaphore.wait();
      ++shared->taken;
    };
    return Threads{{wait, wait,
                    [shared] {
                      shared->semaphore.post();
                      shared->semaphore.post();
                    }},
                   [shared] {
                     EXPECT_EQ(shared->taken, 2);
                     EXPECT_FALSE(shared->semaphore.tryWait());
                   }};
  });
  EXPECT_GT(orders, 100U);
}

TEST(SemaphoreOrdersTest, OneThatLooksAndOneThatWaitsShareThePosts) {
  struct Shared {
    platform::Semaphore semaphore;
    bool looked = false;
  };
  const auto orders = tryAllOrders(kPreemptions, [] {
    auto shared = std::make_shared<Shared>();
    return Threads{{[shared] { shared->looked = shared->semaphore.tryWait(); },
                    [shared] { shared->semaphore.wait(); },
                    [shared] {
                      shared->semaphore.post();
                      shared->semaphore.post();
                    }},
                   [shared] { EXPECT_NE(shared->semaphore.tryWait(), shared->looked); }};
  });
  EXPECT_GT(orders, 100U);
}

TEST(SemaphoreOrdersTest, MayEndAsSoonAsEveryPostWasTaken) {
  struct Shared {
    std::optional<platform::Semaphore> semaphore{std::in_place};
  };
  const auto orders = tryAllOrders(kPreemptions, [] {
    auto shared = std::make_shared<Shared>();
    return Threads{{[shared] {
                      shared->semaphore->wait();
                      shared->semaphore->wait();
                      shared->semaphore.reset();
                    },
                    [shared] { shared->semaphore->post(); },
                    [shared] { shared->semaphore->post(); }}};
  });
  EXPECT_GT(orders, 100U);
}

// Every frame carries its number, so that a block that is read while it is written shows.
struct RingRun {
  static constexpr std::uint32_t kBlockFrames = 2;
  static constexpr std::uint64_t kWritten = 8;
  explicit RingRun(std::uint32_t blocks = 2, std::uint32_t blocksAtFirst = 2)
      : ring(kBlockFrames, blocks, blocksAtFirst) {}

  platform::InputRing ring;
  std::atomic<bool> hasEnded = false;
  std::uint64_t read = 0;
  std::uint64_t lost = 0;
  std::uint64_t end = 0;

  void produce() {
    platform::InputRingProducer producer(ring);
    std::uint64_t next = 0;
    for (const std::uint32_t frames : {1U, 3U, 3U, 1U}) {
      std::vector<float> samples;
      for (std::uint32_t i = 0; i < frames; ++i, ++next) {
        samples.insert(samples.end(), 2, static_cast<float>(next));
      }
      static_cast<void>(producer.write(samples.data(), frames));
    }
    producer.finish();
    hasEnded = true;
  }

  void consume() {
    platform::InputRingConsumer consumer(ring);
    for (;;) {
      const bool wasLast = hasEnded;
      const std::uint64_t told = ring.publishedEndFrame();
      if (const auto* const block = consumer.front(); block != nullptr) {
        take(*block, consumer.frontSamples());
        consumer.pop();
      } else {
        EXPECT_LE(told, end);  // what is told of is there
        if (wasLast) {
          return;
        }
        waitForAnotherThread();
      }
    }
  }

  void take(const platform::InputRing::Block& block, const float* samples) {
    EXPECT_EQ(block.firstFrame, end + block.lostBefore);
    EXPECT_EQ(block.skippedBefore, 0U);
    for (std::uint32_t i = 0; i < 2 * block.frames(); ++i) {
      EXPECT_EQ(samples[i], static_cast<float>(block.firstFrame + i / 2));
    }
    read += block.frames();
    lost += block.lostBefore;
    end = block.endFrame;
  }
};

TEST(InputRingOrdersTest, EveryFrameIsReadOnceOrCountedAsLost) {
  bool isEverLostAtTheEnd = false;
  bool isEverLostBetween = false;
  bool isEverWhole = false;
  const auto orders = tryAllOrders(2, [&] {
    auto run = std::make_shared<RingRun>();
    return Threads{{[run] { run->produce(); }, [run] { run->consume(); }}, [&, run] {
                     const std::uint64_t lostAtTheEnd = RingRun::kWritten - run->end;
                     EXPECT_EQ(run->read + run->lost + lostAtTheEnd, RingRun::kWritten);
                     EXPECT_EQ(run->ring.lostFrames(), run->lost + lostAtTheEnd);
                     EXPECT_EQ(run->ring.publishedEndFrame(), run->end);
                     isEverLostAtTheEnd |= lostAtTheEnd > 0;
                     isEverLostBetween |= run->lost > 0;
                     isEverWhole |= run->read == RingRun::kWritten;
                   }};
  });
  EXPECT_TRUE(isEverLostAtTheEnd);
  EXPECT_TRUE(isEverLostBetween);
  EXPECT_TRUE(isEverWhole);
  EXPECT_GT(orders, 100U);
}

TEST(InputRingOrdersTest, ItMayGrowMeanwhile) {
  const auto orders = tryAllOrders(2, [] {
    auto run = std::make_shared<RingRun>(3, 1);
    return Threads{{[run] { run->produce(); }, [run] { run->consume(); },
                    [run] {
                      run->ring.grow();
                      run->ring.grow();
                    }},
                   [run] {
                     const std::uint64_t lostAtTheEnd = RingRun::kWritten - run->end;
                     EXPECT_EQ(run->read + run->lost + lostAtTheEnd, RingRun::kWritten);
                     EXPECT_EQ(run->ring.lostFrames(), run->lost + lostAtTheEnd);
                   }};
  });
  EXPECT_GT(orders, 100U);
}

TEST(InputRingOrdersTest, WhatIsToldOfItNeverGoesBack) {
  const auto orders = tryAllOrders(kPreemptions, [] {
    auto run = std::make_shared<RingRun>();
    return Threads{{[run] { run->produce(); },
                    [run] {
                      std::uint64_t end = 0;
                      std::uint64_t lost = 0;
                      for (int look = 0; look < 4; ++look) {
                        const std::uint64_t nextEnd = run->ring.publishedEndFrame();
                        const std::uint64_t nextLost = run->ring.lostFrames();
                        EXPECT_GE(nextEnd, end);
                        EXPECT_GE(nextLost, lost);
                        EXPECT_LE(nextEnd, RingRun::kWritten);
                        end = nextEnd;
                        lost = nextLost;
                      }
                    }}};
  });
  EXPECT_GT(orders, 100U);
}

// A sink that is called when it may be gone shows.
class WatchedSink final : public platform::InputSink {
 public:
  void captured(const float* /*samples*/, std::uint32_t frames) noexcept override {
    EXPECT_TRUE(isThere);
    frames_ += frames;
    interleavings::step();
    EXPECT_TRUE(isThere);
  }
  void skipped(std::uint64_t frames, std::uint64_t /*capturedSince*/) noexcept override {
    EXPECT_TRUE(isThere);
    frames_ += static_cast<std::uint32_t>(frames);
  }

  bool isThere = true;
  std::uint32_t frames_ = 0;
};

TEST(InputFanOutOrdersTest, ASinkThatWasRemovedIsNotCalledAndOneThatStaysMissesNothing) {
  struct Shared {
    platform::InputFanOut fanOut;
    WatchedSink stays;
    WatchedSink goes;
  };
  const std::array<float, 4> samples{};
  const auto orders = tryAllOrders(kPreemptions, [&samples] {
    auto shared = std::make_shared<Shared>();
    shared->fanOut.add(shared->stays);
    return Threads{{[shared, &samples] {
                      shared->fanOut.distribute(samples.data(), 2);
                      shared->fanOut.distribute(samples.data(), 1);
                      shared->fanOut.skip(4, 0);
                    },
                    [shared] {
                      shared->fanOut.add(shared->goes);
                      shared->fanOut.remove(shared->goes);
                      shared->goes.isThere = false;
                    }},
                   [shared] { EXPECT_EQ(shared->stays.frames_, 7U); }};
  });
  EXPECT_GT(orders, 100U);
}

TEST(InputFanOutOrdersTest, TwoThreadsMayChangeTheSetAtTheSameTime) {
  struct Shared {
    platform::InputFanOut fanOut;
    std::array<WatchedSink, 2> sinks;
  };
  const std::array<float, 2> samples{};
  const auto orders = tryAllOrders(2, [&samples] {
    auto shared = std::make_shared<Shared>();
    const auto change = [shared](std::size_t number) {
      return [shared, number] {
        WatchedSink& sink = shared->sinks.at(number);
        shared->fanOut.add(sink);
        shared->fanOut.remove(sink);
        sink.isThere = false;
      };
    };
    return Threads{{[shared, &samples] { shared->fanOut.distribute(samples.data(), 1); }, change(0),
                    change(1)}};
  });
  EXPECT_GT(orders, 100U);
}

// The deadline passes at some moment, which is any.
class AnyMomentClock final : public platform::AudioClock {
 public:
  [[nodiscard]] TimePoint now() const noexcept override { return {}; }
  [[nodiscard]] bool waitUntil(platform::Semaphore& semaphore, TimePoint /*deadline*/) override {
    if (interleavings::choose(2) == 0) {
      semaphore.wait();
      return true;
    }
    interleavings::step();
    return false;
  }
};

TEST(TimedReplyOrdersTest, IsReceivedOrGivenUpAndBothSidesKnow) {
  struct Shared {
    platform::TimedReply reply;
    AnyMomentClock clock;
    std::optional<platform::AudioStatus> received;
    bool isTaken = false;
  };
  bool isEverReceived = false;
  bool isEverGivenUp = false;
  const auto orders = tryAllOrders(kPreemptions, [&] {
    auto shared = std::make_shared<Shared>();
    return Threads{{[shared] { shared->received = shared->reply.wait(shared->clock, {}); },
                    [shared] { shared->isTaken = shared->reply.give(7); }},
                   [shared, &isEverReceived, &isEverGivenUp] {
                     EXPECT_EQ(shared->received.has_value(), shared->isTaken);
                     EXPECT_EQ(shared->received.value_or(7), 7);
                     (shared->isTaken ? isEverReceived : isEverGivenUp) = true;
                   }};
  });
  EXPECT_TRUE(isEverReceived);
  EXPECT_TRUE(isEverGivenUp);
  EXPECT_GT(orders, 10U);
}

}  // namespace
