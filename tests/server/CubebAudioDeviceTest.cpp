#include <cstdlib>
#include <string>

#include "platform/sound/AudioQueueFixture.h"
#include "server/ServerFixture.h"
#include "support/RawAudio.h"

namespace platform::test {
namespace {

using support::Samples;

class CubebAudioDeviceTest : public testserver::ServerFixture {
 protected:
  /// Number of frames of `signal` that were heard, from its first frame on.
  [[nodiscard]] std::size_t heardFrames(const Samples& signal) const {
    const Samples heard = support::readRaw(folder_.file("heard"));
    const auto start = support::findStart(signal, heard);
    return start ? support::equalFrames(signal, heard, *start) : 0;
  }
};

TEST_F(CubebAudioDeviceTest, WhatIsFedIsRecordedSampleForSample) {
  const Samples signal = support::noise(10 * support::kFramesPerSecond, 11);
  ASSERT_TRUE(support::writeRaw(folder_.file("signal"), signal));
  Recording recording;
  ASSERT_EQ(recording.begin(*queues_), kAudioStatusOk);
  ASSERT_TRUE(support::eventually([&] { return recording.endFrames.count() > 0; }));
  const auto player = server_->playIntoFeed(folder_.file("signal"));
  ASSERT_NE(player, nullptr);
  ASSERT_TRUE(player->waitForExit(std::chrono::seconds(30)).has_value());
  std::size_t frames = 0;
  EXPECT_TRUE(support::eventually([&] {
    const Samples recorded = recording.samples();
    const auto start = support::findStart(signal, recorded);
    frames = start ? support::equalFrames(signal, recorded, *start) : 0;
    return frames == signal.size() / 2;
  })) << frames;
  EXPECT_EQ(recording.queue->lostFrames(), 0U);
  EXPECT_EQ(services_->consoleLinesWith("lost"), 0U);
}

TEST_F(CubebAudioDeviceTest, TwoQueuesRecordTheSameWhileOthersComeAndGo) {
  const Samples signal = support::noise(3 * support::kFramesPerSecond, 12);
  ASSERT_TRUE(support::writeRaw(folder_.file("signal"), signal));
  Recording one;
  Recording two;
  ASSERT_EQ(one.begin(*queues_), kAudioStatusOk);
  ASSERT_EQ(two.begin(*queues_), kAudioStatusOk);
  const auto player = server_->playIntoFeed(folder_.file("signal"));
  ASSERT_NE(player, nullptr);
  const auto has = [&](Recording& recording) {
    const Samples recorded = recording.samples();
    const auto start = support::findStart(signal, recorded);
    return start && support::equalFrames(signal, recorded, *start) == signal.size() / 2;
  };
  EXPECT_TRUE(support::eventually([&] {
    Recording passing;
    EXPECT_EQ(passing.begin(*queues_), kAudioStatusOk);
    return has(one) && has(two);
  }));
  EXPECT_EQ(server_->capturingStreams().size(), 1U);
}

TEST_F(CubebAudioDeviceTest, WhatIsPlayedIsHeardSampleForSampleAndEndsByItself) {
  const auto capture = server_->captureHeard(folder_.file("heard"));
  ASSERT_NE(capture, nullptr);
  Playback playback;
  playback.source = support::noise(5 * support::kFramesPerSecond, 13);
  ASSERT_EQ(playback.begin(*queues_), kAudioStatusOk);
  ASSERT_TRUE(playback.states.awaitCount(2));
  EXPECT_EQ(playback.states.values(), (std::vector<std::uint32_t>{1, 0}));
  EXPECT_EQ(playback.queue->underrunFrames(), 0U);
  std::size_t frames = 0;
  EXPECT_TRUE(support::eventually([&] {
    frames = heardFrames(playback.source);
    return frames == playback.source.size() / 2;
  })) << frames;
}

TEST_F(CubebAudioDeviceTest, AClipShorterThanTheFirstRequestIsHeardWhole) {
  const auto capture = server_->captureHeard(folder_.file("heard"));
  ASSERT_NE(capture, nullptr);
  Playback playback;
  playback.source = support::noise(500, 14);
  ASSERT_EQ(playback.begin(*queues_), kAudioStatusOk);
  ASSERT_TRUE(playback.states.awaitCount(2));
  std::size_t frames = 0;
  EXPECT_TRUE(support::eventually([&] {
    frames = heardFrames(playback.source);
    return frames == 500;
  })) << frames;
}

TEST_F(CubebAudioDeviceTest, APauseResumesWithoutLosingOrRepeatingAFrame) {
  const auto capture = server_->captureHeard(folder_.file("heard"));
  ASSERT_NE(capture, nullptr);
  Playback playback;
  playback.source = support::noise(2 * support::kFramesPerSecond, 15);
  ASSERT_EQ(playback.begin(*queues_), kAudioStatusOk);
  ASSERT_TRUE(playback.returned.awaitCount(30));
  ASSERT_EQ(playback.queue->pause(), kAudioStatusOk);
  const auto streams = server_->playingStreams();
  ASSERT_EQ(streams.size(), 1U);
  EXPECT_TRUE(streams[0].corked);
  ASSERT_EQ(playback.queue->start(), kAudioStatusOk);
  ASSERT_TRUE(playback.states.awaitCount(2));
  // The two parts are separated by silence; without it the signal is complete.
  const auto withoutSilence = [](const Samples& samples) {
    Samples sounding;
    for (std::size_t i = 0; i + 1 < samples.size(); i += 2) {
      if (samples[i] != 0 || samples[i + 1] != 0) {
        sounding.insert(sounding.end(), {samples[i], samples[i + 1]});
      }
    }
    return sounding;
  };
  const Samples expected = withoutSilence(playback.source);
  EXPECT_TRUE(support::eventually(
      [&] { return withoutSilence(support::readRaw(folder_.file("heard"))) == expected; }));
}

TEST_F(CubebAudioDeviceTest, AnImmediateStopIsHeardAtOnce) {
  Playback playback;
  playback.source = support::noise(20 * support::kFramesPerSecond, 16);
  ASSERT_EQ(playback.begin(*queues_), kAudioStatusOk);
  ASSERT_TRUE(playback.returned.awaitCount(5));
  ASSERT_EQ(playback.queue->stopImmediately(), kAudioStatusOk);
  EXPECT_TRUE(support::eventually([&] { return server_->playingStreams().empty(); }));
}

TEST_F(CubebAudioDeviceTest, AServerThatDiesEndsTheQueuesAndTheNextServerIsFound) {
  Recording recording;
  Playback playback;
  playback.source = support::noise(20 * support::kFramesPerSecond, 17);
  ASSERT_EQ(recording.begin(*queues_), kAudioStatusOk);
  ASSERT_EQ(playback.begin(*queues_), kAudioStatusOk);
  ASSERT_TRUE(recording.endFrames.awaitCount(1));
  server_->kill();
  ASSERT_TRUE(recording.failures.awaitCount(1));
  ASSERT_TRUE(playback.states.awaitCount(2));
  EXPECT_EQ(recording.failures.values()[0], kDeviceLostStatus);
  EXPECT_EQ(playback.queue->failure(), kDeviceLostStatus);
  EXPECT_TRUE(queues_->claimInputFailureAlert());
  // Still no server: requests are refused, while the failure is remembered (1 s) and afterwards.
  Recording refused;
  EXPECT_EQ(refused.make(*queues_), kDeviceLostStatus);
  EXPECT_TRUE(support::eventually([&] {
    const AudioStatus status = refused.make(*queues_);
    EXPECT_NE(status, kAudioStatusOk);
    return status == kDeviceUnavailableStatus;
  }));
  EXPECT_FALSE(queues_->claimInputFailureAlert());
  ASSERT_TRUE(server_->restart());
  Recording again;
  ASSERT_TRUE(support::eventually([&] { return again.begin(*queues_) == kAudioStatusOk; }));
  EXPECT_TRUE(again.endFrames.awaitCount(1));
}

TEST_F(CubebAudioDeviceTest, AServerThatHangsHoldsNobodyUp) {
  Recording recording;
  Playback playback;
  playback.source = support::noise(20 * support::kFramesPerSecond, 18);
  ASSERT_EQ(recording.begin(*queues_), kAudioStatusOk);
  ASSERT_EQ(playback.begin(*queues_), kAudioStatusOk);
  ASSERT_TRUE(recording.endFrames.awaitCount(1));
  server_->freeze();
  const auto before = std::chrono::steady_clock::now();
  EXPECT_EQ(playback.queue->dispose(), kAudioStatusOk);
  EXPECT_EQ(recording.queue->dispose(), kAudioStatusOk);
  Playback other;
  EXPECT_EQ(other.begin(*queues_), kAudioStatusOk);
  EXPECT_EQ(other.queue->dispose(), kAudioStatusOk);
  EXPECT_LT(std::chrono::steady_clock::now() - before, std::chrono::seconds(2));
  server_->thaw();
  Recording again;
  EXPECT_EQ(again.begin(*queues_), kAudioStatusOk);
  EXPECT_TRUE(again.endFrames.awaitCount(1));
}

TEST(CubebAudioDeviceWithoutServerTest, QueuesAreRefusedWithoutDelay) {
  const support::InstalledRecordingServices services;
  const support::TemporaryFolder folder;
  const std::string address = "unix:" + folder.file("none");
  ASSERT_EQ(setenv("PULSE_SERVER", address.c_str(), 1), 0);             // NOLINT(*-mt-unsafe)
  ASSERT_EQ(setenv("XDG_RUNTIME_DIR", folder.file("").c_str(), 1), 0);  // NOLINT(*-mt-unsafe)
  DeviceAudioQueues queues(lateAudioDevice());
  Recording recording;
  Playback playback;
  EXPECT_EQ(recording.make(queues), kDeviceUnavailableStatus);
  EXPECT_EQ(playback.make(queues), kDeviceUnavailableStatus);
  EXPECT_EQ(services->consoleLinesWith("No sound"), 2U);
}

}  // namespace
}  // namespace platform::test
