#include "audio/QueueCallbackScope.h"

#include <memory>
#include <string>
#include <thread>

#include <gmock/gmock.h>

#include "support/MainLoop.h"
#include "support/fakes/SteppedAudioQueues.h"

namespace {

/// An owner of a queue that records where its callbacks ran.
class Owner : public std::enable_shared_from_this<Owner> {
 public:
  void called(int value) {
    last = value;
    wasInside = QueueCallbackScope::isInside(this);
  }
  int last = 0;
  bool wasInside = false;
};

class QueueCallbackScopeTest : public testing::Test {
 protected:
  std::unique_ptr<platform::AudioInputQueue> makeQueue() {
    return std::make_unique<support::SteppedInputQueue>(
        script_, [](auto&, auto&) {}, [](auto) {});
  }

  std::shared_ptr<support::QueueScript> script_ = std::make_shared<support::QueueScript>();
  std::shared_ptr<platform::AudioQueues> queues_ =
      std::make_shared<support::SteppedAudioQueues>(script_);
  const int owner_ = 0;
  const int other_ = 0;
};

TEST_F(QueueCallbackScopeTest, IsInsideForItsOwnerAloneAndOnlyWhileItLives) {
  EXPECT_FALSE(QueueCallbackScope::isInside(&owner_));
  {
    const QueueCallbackScope scope(&owner_);
    EXPECT_TRUE(QueueCallbackScope::isInside(&owner_));
    EXPECT_FALSE(QueueCallbackScope::isInside(&other_));
  }
  EXPECT_FALSE(QueueCallbackScope::isInside(&owner_));
}

TEST_F(QueueCallbackScopeTest, TheOuterScopeIsBackAfterAnInnerOne) {
  const QueueCallbackScope outer(&owner_);
  {
    const QueueCallbackScope inner(&other_);
    EXPECT_TRUE(QueueCallbackScope::isInside(&other_));
    EXPECT_FALSE(QueueCallbackScope::isInside(&owner_));
  }
  EXPECT_TRUE(QueueCallbackScope::isInside(&owner_));
}

TEST_F(QueueCallbackScopeTest, AnotherThreadIsOutside) {
  const QueueCallbackScope scope(&owner_);
  bool inside = true;
  std::thread([&] { inside = QueueCallbackScope::isInside(&owner_); }).join();
  EXPECT_FALSE(inside);
}

TEST_F(QueueCallbackScopeTest, ACallbackRunsInsideAScopeOfItsOwner) {
  const auto owner = std::make_shared<Owner>();
  const auto callback = queueCallback(owner.get(), &Owner::called);
  callback(7);
  EXPECT_EQ(owner->last, 7);
  EXPECT_TRUE(owner->wasInside);
  EXPECT_FALSE(QueueCallbackScope::isInside(owner.get()));
}

TEST_F(QueueCallbackScopeTest, ACallbackDoesNothingOnceItsOwnerHasGone) {
  auto owner = std::make_shared<Owner>();
  const auto callback = queueCallback(owner.get(), &Owner::called);
  const std::weak_ptr<Owner> watched = owner;
  owner.reset();
  EXPECT_TRUE(watched.expired()) << "the callback keeps nobody";
  callback(1);
  EXPECT_TRUE(watched.expired());
}

TEST_F(QueueCallbackScopeTest, AQueueIsDestroyedAtOnceOutsideItsCallbacks) {
  releaseQueue(makeQueue(), queues_, &owner_);
  EXPECT_EQ(script_->queuesAlive, 0);
}

TEST_F(QueueCallbackScopeTest, AQueueReleasedInsideItsOwnCallbackLivesUntilTheMainThreadsNextTurn) {
  std::weak_ptr<platform::AudioQueues> maker = queues_;
  {
    const QueueCallbackScope scope(&owner_);
    auto queue = makeQueue();
    releaseQueue(std::move(queue), std::move(queues_), &owner_);
  }
  EXPECT_EQ(script_->queuesAlive, 1);
  EXPECT_FALSE(maker.expired()) << "the maker outlives its queue";
  EXPECT_TRUE(runMainLoopUntil([&] { return script_->queuesAlive == 0; }));
  EXPECT_TRUE(runMainLoopUntil([&] { return maker.expired(); }));
}

TEST_F(QueueCallbackScopeTest, InsideTheCallbackOfAnotherOwnersQueueItIsDestroyedAtOnce) {
  const QueueCallbackScope scope(&other_);
  releaseQueue(makeQueue(), queues_, &owner_);
  EXPECT_EQ(script_->queuesAlive, 0);
}

TEST_F(QueueCallbackScopeTest, ReleasingNoQueueDoesNothing) {
  const QueueCallbackScope scope(&owner_);
  releaseQueue(std::unique_ptr<platform::AudioInputQueue>(), queues_, &owner_);
  EXPECT_EQ(queues_.use_count(), 1) << "nothing was posted";
}

}  // namespace
