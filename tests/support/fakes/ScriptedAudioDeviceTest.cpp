#include "support/fakes/ScriptedAudioDevice.h"

#include <future>

#include "platform/sound/AudioQueueFixture.h"

namespace platform::test {
namespace {

class Microphone final : public AudioInputClient {
 public:
  void deviceCaptured(const float* samples, std::uint32_t frames) noexcept override {
    heard.insert(heard.end(), samples, samples + 2 * frames);
  }
  void deviceInputFailed(AudioStatus status) noexcept override { failure = status; }
  std::vector<float> heard;
  AudioStatus failure = 0;
};

class Loudspeaker final : public AudioOutputClient {
 public:
  void deviceWants(float* samples, std::uint32_t frames) noexcept override {
    std::fill(samples, samples + 2 * frames, 0.5F);
  }
  void deviceOutputFailed(AudioStatus status) noexcept override { failure = status; }
  AudioStatus failure = 0;
};

TEST(ScriptedAudioDeviceTest, FeedReachesTheOpenInputOnly) {
  ScriptedAudioDevice device;
  Microphone microphone;
  EXPECT_FALSE(device.feedConstant(1, 1, 2));
  auto stream = device.openInput(microphone);
  ASSERT_TRUE(stream);
  EXPECT_TRUE(device.feedConstant(1, 1, 2));
  *stream = nullptr;
  EXPECT_FALSE(device.feedConstant(1, 3, 4));
  EXPECT_EQ(microphone.heard, (std::vector<float>{1, 2}));
  EXPECT_EQ(device.inputsOpened(), 1U);
  EXPECT_EQ(device.inputsClosed(), 1U);
}

TEST(ScriptedAudioDeviceTest, PullAsksARunningOutputAndPositionIsMovedByHand) {
  ScriptedAudioDevice device;
  Loudspeaker loudspeaker;
  auto stream = device.openOutput(loudspeaker);
  ASSERT_TRUE(stream);
  EXPECT_TRUE(device.pull(1).empty());
  ASSERT_EQ(stream->start(), kAudioStatusOk);
  EXPECT_EQ(device.pull(1), (std::vector<float>{0.5F, 0.5F}));
  device.pull(9);
  EXPECT_EQ(stream->position(), 0U);
  device.hear(4);
  EXPECT_EQ(stream->position(), 4U);
  device.hear(100);
  EXPECT_EQ(stream->position(), 10U);
  ASSERT_EQ(stream->stop(), kAudioStatusOk);
  EXPECT_TRUE(device.pull(1).empty());
}

TEST(ScriptedAudioDeviceTest, FailuresComeAsScripted) {
  ScriptedAudioDevice device;
  Microphone microphone;
  Loudspeaker loudspeaker;
  device.failOpeningInput(-1);
  EXPECT_EQ(device.openInput(microphone).error(), -1);
  EXPECT_EQ(device.inputsRefused(), 1U);
  device.failOpeningOutput(-2);
  EXPECT_EQ(device.openOutput(loudspeaker).error(), -2);
  device.failOpeningInput(kAudioStatusOk);
  device.failOpeningOutput(kAudioStatusOk);
  const auto input = device.openInput(microphone);
  const auto output = device.openOutput(loudspeaker);
  device.failStartingOutput(-3);
  EXPECT_EQ(output->start(), -3);
  device.failInput(-4);
  device.failOutput(-5);
  EXPECT_EQ(microphone.failure, -4);
  EXPECT_EQ(loudspeaker.failure, -5);
  EXPECT_FALSE(device.feedConstant(1, 0, 0));
}

TEST(ScriptedAudioDeviceTest, CallsHangUntilTheyAreReleased) {
  ScriptedAudioDevice device;
  Microphone microphone;
  device.hang();
  auto opening = std::async(std::launch::async, [&] { return device.openInput(microphone); });
  ASSERT_TRUE(device.awaitHanging());
  EXPECT_FALSE(device.isInputOpen());
  device.release();
  EXPECT_TRUE(opening.get());
}

}  // namespace
}  // namespace platform::test
