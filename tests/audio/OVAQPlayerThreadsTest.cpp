#include <algorithm>
#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <thread>
#include <vector>

#include <gmock/gmock.h>

#include "audio/OVAQPlayer.h"
#include "platform/mainloop/MainQueue.h"
#include "platform/sound/DeviceAudioQueues.h"
#include "support/Gate.h"
#include "support/MainLoop.h"
#include "support/TestAudio.h"
#include "support/ThreadCount.h"
#include "support/fakes/MemoryTestBuffer.h"
#include "support/fakes/RecordingServices.h"
#include "support/fakes/ScriptedAudioDevice.h"

// The player over the real audio queues on a scripted device; its callback runs on the queue's
// thread.
namespace {

using support::Gate;
using support::ramp;
using testing::IsEmpty;
using testing::SizeIs;

constexpr std::uint64_t kFrameBytes = MemoryTestBuffer::kFrameBytes;

class WatchingDelegate : public OVAQPlayerDelegate {
 public:
  void playerAdvancedToFrame(std::uint64_t frame) override {
    EXPECT_FALSE(platform::isMainThread());
    if (onAdvance) {
      onAdvance();
    }
    advancedTo = frame;
  }
  void playerStoppedPlayback(OVAQPlayer*) override {
    EXPECT_TRUE(platform::isMainThread());
    ++stopped;
  }
  std::function<void()> onAdvance;  ///< set before the queue starts
  std::atomic<std::uint64_t> advancedTo{0};
  int stopped = 0;  // main thread
};

class OVAQPlayerThreadsTest : public testing::Test {
 protected:
  // A player destroyed in its callback leaves its queue to the main thread, which must still
  // destroy it.
  void TearDown() override {
    if (player_) {
      player_->stop();
    }
    EXPECT_TRUE(drainMainQueue());
  }

  void make(std::uint64_t frames, std::uint64_t fromFrame = 0) {
    buffer_ = std::make_shared<MemoryTestBuffer>(ramp(0, frames));
    makeOver(fromFrame);
  }
  void makeOver(std::uint64_t fromFrame = 0) {
    delegate_->stopped = 0;
    player_ = OVAQPlayer::initWithBuffer(buffer_, fromFrame * kFrameBytes);
    ASSERT_NE(player_, nullptr);
    player_->setDelegate(delegate_);
    pulled_ = fromFrame;
    delegate_->advancedTo = player_->readingPosition() / kFrameBytes;
  }

  void play() {
    player_->play();
    ASSERT_TRUE(device_->awaitOutputRunning());
  }

  /// The device takes and hears frames up to `end`, never more than are queued.
  std::vector<float> pullUpTo(std::uint64_t end) {
    std::vector<float> all;
    while (pulled_ < end) {
      EXPECT_TRUE(runMainLoopUntil([&] { return delegate_->advancedTo > pulled_; }));
      const auto frames =
          std::min<std::uint64_t>({700, end - pulled_, delegate_->advancedTo - pulled_});
      const auto samples = device_->pull(static_cast<std::uint32_t>(frames));
      if (samples.empty()) {
        ADD_FAILURE() << "the output does not run at frame " << pulled_;
        break;
      }
      all.insert(all.end(), samples.begin(), samples.end());
      pulled_ += frames;
    }
    return all;
  }

  /// Lets the device continue after the last frame until the player has stopped.
  [[nodiscard]] bool awaitStopped() {
    EXPECT_TRUE(runMainLoopUntil([&] { return player_->isDone(); }));
    device_->pull(64);
    device_->hearEverything();
    return runMainLoopUntil([&] { return delegate_->stopped > 0; });
  }

  support::InstalledRecordingServices services_;
  std::shared_ptr<platform::ScriptedAudioDevice> device_ =
      std::make_shared<platform::ScriptedAudioDevice>();
  platform::Installed<platform::AudioQueues>::Scope installation_{
      std::make_shared<platform::DeviceAudioQueues>(device_)};
  std::shared_ptr<WatchingDelegate> delegate_ = std::make_shared<WatchingDelegate>();
  std::shared_ptr<MemoryTestBuffer> buffer_;
  std::shared_ptr<OVAQPlayer> player_;
  std::uint64_t pulled_ = 0;
};

TEST_F(OVAQPlayerThreadsTest, EveryFrameIsPlayedInOrderThenTheDelegateIsTold) {
  make(20000);
  play();
  EXPECT_TRUE(runMainLoopUntil([&] { return player_->isPlaying(); }));
  EXPECT_EQ(pullUpTo(20000), ramp(0, 20000));
  EXPECT_TRUE(awaitStopped());
  EXPECT_FALSE(player_->isPlaying());
  EXPECT_TRUE(player_->isDone());
  EXPECT_EQ(player_->queue()->underrunFrames(), 0U);
  EXPECT_EQ(player_->readingPosition(), 20000 * kFrameBytes);
}

TEST_F(OVAQPlayerThreadsTest, ShortClipsArePlayedWholeAndEnd) {
  for (const std::uint64_t frames : {1U, 500U, 1024U, 3000U, 3072U}) {
    make(frames);
    play();
    EXPECT_EQ(pullUpTo(frames), ramp(0, frames));
    EXPECT_TRUE(awaitStopped()) << frames;
    player_->stop();
  }
}

TEST_F(OVAQPlayerThreadsTest, StartedAtTheEndOfTheDataItStopsByItself) {
  make(1000, 1000);
  EXPECT_TRUE(player_->isDone());
  player_->play();  // too short to observe it running
  EXPECT_TRUE(awaitStopped());
  EXPECT_FALSE(player_->isPlaying());
}

TEST_F(OVAQPlayerThreadsTest, PlaybackBeginsAtItsPosition) {
  make(5000, 1234);
  play();
  EXPECT_EQ(pullUpTo(5000), ramp(1234, 5000 - 1234));
}

TEST_F(OVAQPlayerThreadsTest, PauseKeepsEveryQueuedFrameForTheNextPlay) {
  make(20000);
  play();
  EXPECT_EQ(pullUpTo(5000), ramp(0, 5000));
  player_->pause();
  ASSERT_TRUE(device_->awaitOutputStopped());
  EXPECT_FALSE(player_->isPlaying());
  EXPECT_THAT(device_->pull(100), IsEmpty());
  play();
  EXPECT_TRUE(player_->isPlaying());
  EXPECT_EQ(pullUpTo(20000), ramp(5000, 15000));
  EXPECT_EQ(delegate_->stopped, 0);
}

TEST_F(OVAQPlayerThreadsTest, StopDuringAReadWaitsForItAndReportsNoFurtherAdvance) {
  make(20000);
  Gate gate;
  buffer_->beforeRead = [&](std::uint64_t) { gate.pass(); };
  play();
  EXPECT_THAT(device_->pull(1024), SizeIs(2048));
  ASSERT_TRUE(gate.awaitArrival());
  std::thread helper([&] { gate.open(); });
  player_->stop();
  const auto advancedTo = delegate_->advancedTo.load();
  helper.join();
  EXPECT_EQ(player_->queue(), nullptr);
  EXPECT_TRUE(device_->awaitOutputsClosed(1));
  EXPECT_EQ(delegate_->advancedTo, advancedTo);
  EXPECT_EQ(buffer_.use_count(), 1);
}

TEST_F(OVAQPlayerThreadsTest, ADeviceLostWhilePlayingIsToldOnceAndEndsThePlayback) {
  make(20000);
  play();
  pullUpTo(3000);
  testing::internal::CaptureStderr();
  device_->failOutput(platform::kDeviceLostStatus);
  EXPECT_TRUE(runMainLoopUntil([&] { return delegate_->stopped > 0; }));
  EXPECT_FALSE(player_->isPlaying());
  EXPECT_EQ(player_->failure(), platform::kDeviceLostStatus);
  player_->stop();
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "Error: AudioQueueStart failed ('gone')\n");
  EXPECT_TRUE(runMainLoopUntil([&] { return !services_->postedAlerts().empty(); }));
  EXPECT_THAT(services_->postedAlerts(), SizeIs(1));
  EXPECT_THAT(services_->alerts(), IsEmpty());
}

TEST_F(OVAQPlayerThreadsTest, ADeviceThatCannotStartIsToldOnceAndEndsThePlayback) {
  make(20000);
  device_->failStartingOutput(platform::kDeviceLostStatus);
  testing::internal::CaptureStderr();
  player_->play();
  EXPECT_TRUE(runMainLoopUntil([&] { return delegate_->stopped > 0; }));
  EXPECT_FALSE(player_->isPlaying());
  testing::internal::GetCapturedStderr();
  EXPECT_TRUE(runMainLoopUntil([&] { return !services_->postedAlerts().empty(); }));
  EXPECT_EQ(services_->alerts().size() + services_->postedAlerts().size(), 1U);
}

TEST_F(OVAQPlayerThreadsTest, WithoutADeviceThereIsNoPlayerAndNothingIsLeftBehind) {
  device_->failOpeningOutput(platform::kDeviceUnavailableStatus);
  buffer_ = std::make_shared<MemoryTestBuffer>(ramp(0, 5000));
  testing::internal::CaptureStderr();
  EXPECT_EQ(OVAQPlayer::initWithBuffer(buffer_, 0), nullptr);
  const auto threads = support::threadCount();
  EXPECT_EQ(OVAQPlayer::initWithBuffer(buffer_, 0), nullptr);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "Error: AudioQueueNewOutput failed ('!dev')\n"
            "Error: AudioQueueNewOutput failed ('!dev')\n");
  EXPECT_THAT(services_->alerts(), SizeIs(2));  // one for each press
  EXPECT_EQ(support::threadCount(), threads);
  EXPECT_EQ(buffer_.use_count(), 1);
}

TEST_F(OVAQPlayerThreadsTest, ALastReferenceThatGoesOnTheQueuesThreadDoesNotDeadlock) {
  make(20000);
  const std::weak_ptr<OVAQPlayer> watched = player_;
  delegate_->onAdvance = [this] { player_.reset(); };
  const auto threads = support::threadCount();  // the queue's thread starts with play()
  play();
  EXPECT_THAT(device_->pull(1024), SizeIs(2048));
  EXPECT_TRUE(runMainLoopUntil([&] {
    return watched.expired() && device_->outputsClosed() == 1 && buffer_.use_count() == 1 &&
           support::threadCount() <= threads;
  }));
  EXPECT_TRUE(drainMainQueue());  // destroys the queue
}

TEST_F(OVAQPlayerThreadsTest, AJumpDuringPlaybackIsHeardAfterWhatWasQueued) {
  make(50000);
  play();
  pullUpTo(2048);
  ASSERT_TRUE(runMainLoopUntil([&] { return delegate_->advancedTo == 5120; }));
  player_->setReadingPosition(40000 * kFrameBytes);
  EXPECT_THAT(device_->pull(3072), SizeIs(6144));
  ASSERT_TRUE(runMainLoopUntil([&] { return delegate_->advancedTo >= 41024; }));
  EXPECT_EQ(device_->pull(1024), ramp(40000, 1024));
}

TEST_F(OVAQPlayerThreadsTest, TwoHundredPlayersInARowLeaveNothingBehind) {
  make(5000);
  player_->stop();
  player_.reset();
  const auto threads = support::threadCount();
  for (int i = 0; i < 200; ++i) {
    makeOver();
    play();
    EXPECT_EQ(pullUpTo(3000), ramp(0, 3000));
    const std::weak_ptr<OVAQPlayer> watched = player_;
    player_->stop();
    player_.reset();
    ASSERT_TRUE(watched.expired());
    ASSERT_TRUE(device_->awaitOutputsClosed(static_cast<std::size_t>(i) + 2));
  }
  EXPECT_EQ(buffer_.use_count(), 1);
  EXPECT_TRUE(support::eventually([&] { return support::threadCount() == threads; }));
  EXPECT_THAT(services_->alerts(), IsEmpty());
  EXPECT_THAT(services_->postedAlerts(), IsEmpty());
}

}  // namespace
