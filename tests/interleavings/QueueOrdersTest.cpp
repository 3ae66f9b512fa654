// Blocks that go from one thread to another through the serial queue and the main queue.
#include <algorithm>
#include <cstddef>
#include <functional>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <QCoreApplication>

#include "interleavings/AllOrders.h"
#include "interleavings/SteppedGlobalQueue.h"
#include "platform/base/SerialQueue.h"
#include "platform/mainloop/MainQueue.h"

using interleavings::Threads;
using interleavings::tryAllOrders;
using interleavings::workForTheGlobalQueue;

namespace {

// Blocks note their names; two that run at the same time show.
struct Log {
  platform::SerialQueue queue{"test"};
  std::vector<std::string> ran;
  bool isInside = false;

  void run(const std::string& name) {
    EXPECT_FALSE(isInside);
    isInside = true;
    interleavings::step();
    isInside = false;
    ran.push_back(name);
  }
  void submit(const std::shared_ptr<Log>& self, const std::string& name) {
    queue.async([self, name] { self->run(name); });
  }
  void runNow(const std::string& name) {
    queue.sync([this, name] { run(name); });
  }
  std::function<bool()> has(std::size_t blocks) {
    return [this, blocks] { return ran.size() >= blocks; };
  }
};

TEST(SerialQueueOrdersTest, BlocksOfTwoThreadsRunOneAtATimeEachInItsOrder) {
  const auto orders = tryAllOrders(2, [] {
    auto log = std::make_shared<Log>();
    return Threads{
        {[log] {
           log->submit(log, "a");
           log->submit(log, "b");
         },
         [log] { log->submit(log, "c"); }, [log] { workForTheGlobalQueue(log->has(3)); }},
        [log] {
          EXPECT_THAT(log->ran, testing::UnorderedElementsAre("a", "b", "c"));
          EXPECT_THAT(std::vector<std::string>({"a", "b"}), testing::IsSubsetOf(log->ran));
          EXPECT_LT(std::find(log->ran.begin(), log->ran.end(), "a"),
                    std::find(log->ran.begin(), log->ran.end(), "b"));
        }};
  });
  EXPECT_GT(orders, 100U);
}

TEST(SerialQueueOrdersTest, ACallerThatWaitsGetsItsTurnBetweenTheBlocks) {
  const auto orders = tryAllOrders(2, [] {
    auto log = std::make_shared<Log>();
    return Threads{{[log] {
                      log->submit(log, "a");
                      log->runNow("b");  // after it
                      log->submit(log, "c");
                    },
                    [log] { log->runNow("d"); }, [log] { workForTheGlobalQueue(log->has(4)); }},
                   [log] {
                     std::vector<std::string> own;
                     std::copy_if(log->ran.begin(), log->ran.end(), std::back_inserter(own),
                                  [](const std::string& name) { return name != "d"; });
                     EXPECT_THAT(own, testing::ElementsAre("a", "b", "c"));
                     EXPECT_EQ(log->ran.size(), 4U);
                   }};
  });
  EXPECT_GT(orders, 100U);
}

// The main loop, which here runs only what was posted. Qt leaves what is posted meanwhile for its
// next look; it makes no step only when nothing was there.
void runMainLoopUntil(const std::function<bool()>& isDone) {
  while (!isDone()) {
    const auto before = interleavings::steps();
    QCoreApplication::sendPostedEvents();
    if (interleavings::steps() == before) {
      interleavings::waitForAnotherThread();
    }
  }
}

// The queue outlives the run: the next one begins without an event.
void deliverRest() {
  QCoreApplication::sendPostedEvents();
}

TEST(MainQueueOrdersTest, BlocksOfTwoThreadsAllRunEachInItsOrder) {
  const auto orders = tryAllOrders(2, [] {
    auto log = std::make_shared<Log>();
    const auto post = [log](const std::string& name) {
      platform::mainQueue().async([log, name] { log->run(name); });
    };
    return Threads{{[log] { runMainLoopUntil(log->has(3)); },
                    [post] {
                      post("a");
                      post("b");
                    },
                    [post] { post("c"); }},
                   [log] {
                     deliverRest();
                     EXPECT_EQ(log->ran.size(), 3U);
                     EXPECT_LT(std::find(log->ran.begin(), log->ran.end(), "a"),
                               std::find(log->ran.begin(), log->ran.end(), "b"));
                   }};
  });
  EXPECT_GT(orders, 100U);
}

TEST(MainQueueOrdersTest, ACallerThatWaitsGoesOnAfterItsBlock) {
  const auto orders = tryAllOrders(2, [] {
    auto log = std::make_shared<Log>();
    return Threads{{[log] { runMainLoopUntil(log->has(3)); },
                    [log] {
                      bool isDone = false;
                      platform::mainQueue().sync([log, &isDone] {
                        log->run("a");
                        isDone = true;
                      });
                      EXPECT_TRUE(isDone);
                    },
                    [log] {
                      platform::mainQueue().asyncShared([log] { log->run("b"); });
                      platform::mainQueue().asyncShared([log] { log->run("c"); });
                    }},
                   [log] {
                     deliverRest();
                     EXPECT_EQ(log->ran.size(), 3U);
                   }};
  });
  EXPECT_GT(orders, 100U);
}

}  // namespace
