#include <chrono>
#include <cstdint>
#include <memory>

#include <gmock/gmock.h>

#include "audio/OVAQPlayer.h"
#include "server/ServerFixture.h"
#include "support/MainLoop.h"

namespace {

using support::equalFrames;
using support::findStart;
using support::noise;
using support::Samples;
using testing::IsEmpty;
using testing::SizeIs;
using testserver::blockBufferWith;
using testserver::duration;
using testserver::kMaxCall;
using testserver::kSecond;
using testserver::withoutSilence;

class CountingDelegate : public OVAQPlayerDelegate {
 public:
  void playerAdvancedToFrame(std::uint64_t) override {}
  void playerStoppedPlayback(OVAQPlayer*) override { ++stopped; }
  int stopped = 0;  // main thread
};

class PlayToServerTest : public testserver::ServerFixture {
 protected:
  void TearDown() override {
    player_.reset();
    ServerFixture::TearDown();
  }

  void make(const Samples& samples) {
    delegate_->stopped = 0;
    player_ = OVAQPlayer::initWithBuffer(blockBufferWith(samples), 0);
    ASSERT_NE(player_, nullptr);
    player_->setDelegate(delegate_);
  }

  /// Plays the samples and compares them with what is heard, to the last frame.
  void expectHeardWhole(const Samples& samples, const std::string& name) {
    const auto path = folder_.file(name);
    const auto capture = server_->captureHeard(path);
    ASSERT_NE(capture, nullptr);
    make(samples);
    player_->play();
    ASSERT_TRUE(runMainLoopUntil([&] { return delegate_->stopped > 0; }));
    EXPECT_FALSE(player_->isPlaying());
    player_->stop();
    const auto frames = samples.size() / support::kChannels;
    std::size_t found = 0;
    EXPECT_TRUE(support::eventually([&] {
      const Samples heard = withoutSilence(support::readRaw(path));
      const auto start = findStart(samples, heard);
      found = start ? equalFrames(samples, heard, *start) : 0;
      return found == frames;
    })) << found
        << " of " << frames;
  }

  std::shared_ptr<CountingDelegate> delegate_ = std::make_shared<CountingDelegate>();
  std::shared_ptr<OVAQPlayer> player_;
};

TEST_F(PlayToServerTest, WhatWasRecordedIsHeardToTheLastFrame) {
  expectHeardWhole(noise(3 * kSecond + 123, 5), "long");
  EXPECT_THAT(services_->consoleLines(), IsEmpty());
}

TEST_F(PlayToServerTest, ClipsOf1And500And3000FramesAreHeardWhole) {
  for (const std::size_t frames : {1U, 500U, 3000U}) {
    expectHeardWhole(noise(frames, 6), std::to_string(frames));
  }
}

TEST_F(PlayToServerTest, PauseAndPlayLoseNoFrame) {
  const Samples samples = noise(2 * kSecond, 7);
  const auto path = folder_.file("paused");
  const auto capture = server_->captureHeard(path);
  ASSERT_NE(capture, nullptr);
  make(samples);
  player_->play();
  ASSERT_TRUE(runMainLoopUntil([&] { return player_->readingPosition() > 200'000; }));
  player_->pause();
  ASSERT_TRUE(support::eventually([&] { return !server_->isPlaying(getpid()); }));
  const auto paused = player_->readingPosition();
  EXPECT_FALSE(player_->isPlaying());
  player_->play();
  EXPECT_EQ(player_->readingPosition() >= paused, true);
  ASSERT_TRUE(runMainLoopUntil([&] { return delegate_->stopped > 0; }));
  // The signal is heard with silence where it was paused.
  Samples heard;
  EXPECT_TRUE(support::eventually([&] {
    heard = withoutSilence(support::readRaw(path));
    const auto start = findStart(samples, heard);
    return start && equalFrames(samples, heard, *start) == samples.size() / support::kChannels;
  }));
}

TEST_F(PlayToServerTest, AServerKilledWhilePlayingIsToldOnceAndEndsThePlayback) {
  make(noise(20 * kSecond, 8));
  player_->play();
  ASSERT_TRUE(runMainLoopUntil([&] { return player_->readingPosition() > 400'000; }));
  testing::internal::CaptureStderr();  // every failed attempt prints a line
  server_->kill();
  ASSERT_TRUE(runMainLoopUntil([&] { return delegate_->stopped > 0; }));
  EXPECT_FALSE(player_->isPlaying());
  EXPECT_EQ(player_->failure(), platform::kDeviceLostStatus);
  EXPECT_LE(duration([&] { player_->stop(); }), kMaxCall);
  ASSERT_TRUE(runMainLoopUntil([&] { return !services_->postedAlerts().empty(); }));
  EXPECT_THAT(services_->postedAlerts(), SizeIs(1));
  EXPECT_THAT(services_->alerts(), IsEmpty());
  EXPECT_LE(duration([&] {
              EXPECT_EQ(OVAQPlayer::initWithBuffer(blockBufferWith(noise(1000, 9)), 0), nullptr);
            }),
            kMaxCall);
  ASSERT_TRUE(server_->restart());
  EXPECT_TRUE(support::eventually([&] {
    player_ = OVAQPlayer::initWithBuffer(blockBufferWith(noise(1000, 9)), 0);
    return player_ != nullptr;
  }));
  testing::internal::GetCapturedStderr();
}

TEST_F(PlayToServerTest, AServerThatHangsHoldsUpNoCall) {
  make(noise(20 * kSecond, 10));
  player_->play();
  ASSERT_TRUE(runMainLoopUntil([&] { return player_->readingPosition() > 400'000; }));
  server_->freeze();
  EXPECT_LE(duration([&] { static_cast<void>(player_->powerLevels()); }), kMaxCall);
  EXPECT_LE(duration([&] { player_->pause(); }), kMaxCall);
  EXPECT_LE(duration([&] { player_->play(); }), kMaxCall);
  EXPECT_LE(duration([&] { player_->stop(); }), kMaxCall);
  EXPECT_LE(duration([&] { player_.reset(); }), kMaxCall);
  for (int i = 0; i < 2; ++i) {
    EXPECT_LE(duration([&] { make(noise(5000, 11)); }), kMaxCall);
    EXPECT_LE(duration([&] { player_->play(); }), kMaxCall);
    EXPECT_LE(duration([&] { player_->stop(); }), kMaxCall);
  }
  server_->thaw();
  expectHeardWhole(noise(5000, 12), "thawed");
  EXPECT_THAT(services_->alerts(), IsEmpty());
}

}  // namespace
