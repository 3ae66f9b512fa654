#include "support/programs/PrivateSoundServer.h"

#include <fstream>

#include <gtest/gtest.h>

#include "support/RawAudio.h"

namespace support {
namespace {

class PrivateSoundServerTest : public testing::Test {
 protected:
  void SetUp() override {
    std::string error;
    server_ = PrivateSoundServer::start(error);
    ASSERT_NE(server_, nullptr) << error;
  }

  [[nodiscard]] std::string pactl(const std::string& words) const {
    return runToEnd({"sh", "-c", "pactl " + words}, server_->environment()).output;
  }

  /// Starts capturing the default source, as a program under test would.
  [[nodiscard]] std::unique_ptr<ChildProcess> captureDefaultSource(const std::string& path) const {
    std::string error;
    auto process = ChildProcess::start({"parec", "--raw", "--format=float32le", "--rate=44100",
                                        "--channels=2", "--latency-msec=50"},
                                       server_->environment(), error, path);
    const bool runs = process != nullptr &&
                      eventually([&] { return server_->isCapturing(process->pid()); }) &&
                      eventually([&] { return !readRaw(path).empty(); });
    return runs ? std::move(process) : nullptr;
  }

  std::unique_ptr<PrivateSoundServer> server_;
  TemporaryFolder folder_;
};

TEST_F(PrivateSoundServerTest, DefaultsAreTheFeedsMonitorAndTheHeardSink) {
  EXPECT_EQ(pactl("get-default-source"), "feed.monitor\n");
  EXPECT_EQ(pactl("get-default-sink"), "heard\n");
}

TEST_F(PrivateSoundServerTest, FeedReachesTheDefaultSourceSampleForSample) {
  const Samples signal = noise(2 * kFramesPerSecond, 1);
  ASSERT_TRUE(writeRaw(folder_.file("signal"), signal));
  const auto capture = captureDefaultSource(folder_.file("captured"));
  ASSERT_NE(capture, nullptr);
  const auto player = server_->playIntoFeed(folder_.file("signal"));
  ASSERT_NE(player, nullptr);
  std::size_t frames = 0;
  EXPECT_TRUE(eventually([&] {
    const Samples captured = readRaw(folder_.file("captured"));
    const auto start = findStart(signal, captured);
    frames = start ? equalFrames(signal, captured, *start) : 0;
    return frames == 2 * kFramesPerSecond;
  })) << frames;
}

TEST_F(PrivateSoundServerTest, WhatIsPlayedIsHeardSampleForSample) {
  const Samples signal = noise(kFramesPerSecond, 2);
  ASSERT_TRUE(writeRaw(folder_.file("signal"), signal));
  const auto capture = server_->captureHeard(folder_.file("heard"));
  ASSERT_NE(capture, nullptr);
  const Finished played = runToEnd({"paplay", "--raw", "--format=float32le", "--rate=44100",
                                    "--channels=2", folder_.file("signal")},
                                   server_->environment());
  ASSERT_TRUE(played.status.succeeded()) << played.error;
  std::size_t frames = 0;
  EXPECT_TRUE(eventually([&] {
    const Samples heard = readRaw(folder_.file("heard"));
    const auto start = findStart(signal, heard);
    frames = start ? equalFrames(signal, heard, *start) : 0;
    return frames == kFramesPerSecond;
  })) << frames;
}

TEST_F(PrivateSoundServerTest, FeedIsNotHeard) {
  ASSERT_TRUE(writeRaw(folder_.file("signal"), noise(kFramesPerSecond / 4, 3)));
  const auto capture = server_->captureHeard(folder_.file("heard"));
  ASSERT_NE(capture, nullptr);
  const auto player = server_->playIntoFeed(folder_.file("signal"));
  ASSERT_NE(player, nullptr);
  ASSERT_TRUE(player->waitForExit());
  EXPECT_EQ(peak(readRaw(folder_.file("heard"))), 0.0F);
}

TEST_F(PrivateSoundServerTest, TellsWhoPlaysAndWhoCaptures) {
  const auto capture = captureDefaultSource(folder_.file("captured"));
  ASSERT_NE(capture, nullptr);
  EXPECT_TRUE(server_->isCapturing(capture->pid()));
  EXPECT_FALSE(server_->isPlaying(capture->pid()));
  capture->kill();
  EXPECT_TRUE(eventually([&] { return server_->capturingStreams().empty(); }));
}

TEST_F(PrivateSoundServerTest, KilledServerRefusesAndRestartedOneAnswersAtTheSameAddress) {
  const Environment before = server_->environment();
  server_->kill();
  EXPECT_FALSE(server_->answers());
  ASSERT_TRUE(server_->restart());
  EXPECT_EQ(server_->environment(), before);
  EXPECT_EQ(pactl("get-default-source"), "feed.monitor\n");
}

TEST_F(PrivateSoundServerTest, FrozenServerAnswersNothingUntilItIsThawed) {
  server_->freeze();
  EXPECT_FALSE(server_->answers());
  server_->thaw();
  EXPECT_TRUE(eventually([&] { return server_->answers(); }));
}

TEST_F(PrivateSoundServerTest, TwoServersDoNotMeet) {
  std::string error;
  const auto other = PrivateSoundServer::start(error);
  ASSERT_NE(other, nullptr) << error;
  const auto capture = captureDefaultSource(folder_.file("captured"));
  ASSERT_NE(capture, nullptr);
  EXPECT_TRUE(other->capturingStreams().empty());
}

}  // namespace
}  // namespace support
