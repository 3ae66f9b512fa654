#include "platform/cubeb/CubebAudioDevice.h"

#include <chrono>
#include <cstdarg>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/cubeb/FakeCubeb.h"
#include "platform/cubeb/RetiredConnections.h"

// The device over a library that the test scripts. tests/server runs it over the real one.
namespace platform::test {
namespace {

using fakecubeb::script;

std::vector<std::string>& consoleLines() {
  static std::vector<std::string> lines;
  return lines;
}

void console(const char* format, ...) {
  char line[256];
  va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(line, sizeof line, format, arguments);
  va_end(arguments);
  consoleLines().emplace_back(line);
}

class Client final : public AudioInputClient, public AudioOutputClient {
 public:
  void deviceCaptured(const float*, std::uint32_t) noexcept override {}
  void deviceInputFailed(AudioStatus) noexcept override { ++failures; }
  void deviceWants(float*, std::uint32_t) noexcept override {}
  void deviceOutputFailed(AudioStatus) noexcept override { ++failures; }
  int failures = 0;
};

class FakedCubebAudioDeviceTest : public testing::Test {
 protected:
  FakedCubebAudioDeviceTest() {
    script() = {};
    script().inputs = {{"mic", "Microphone", true}};
    consoleLines().clear();
    device_->setInputsChangedHandler([this] { ++changes_; });
  }
  ~FakedCubebAudioDeviceTest() override {
    script().noticeIsUnderWay = true;
    device_.reset();
    EXPECT_EQ(script().callsOfNull, 0);
    EXPECT_EQ(script().contextsAlive(), script().contextsWithHandler()) << "others are left over";
    changes_ = 0;
    script().notify();
    EXPECT_EQ(changes_, 0) << "the handler may be gone";
    EXPECT_EQ(script().streamsAlive, 0);
    EXPECT_EQ(script().collectionsAlive, 0);
    EXPECT_EQ(script().devicesAlive, 0);
  }

  /// The input's connection is given up, and the next one is made.
  void reconnect() {
    auto input = device_->openInput(client_);
    ASSERT_TRUE(input);
    script().die();
    *input = nullptr;
    ASSERT_TRUE(device_->inputs().has_value());
  }

  Client client_;
  int changes_ = 0;
  std::chrono::steady_clock::time_point now_{std::chrono::hours(1)};
  std::unique_ptr<CubebAudioDevice> device_ =
      std::make_unique<CubebAudioDevice>(&console, [this] { return now_; });
};

TEST_F(FakedCubebAudioDeviceTest, TheInputsAreThoseOfTheLibraryWithTheirNamesAsTheyAre) {
  const std::string longName(300, 'x');
  script().inputs = {{"mic", "<b>USB</b>\nMic", true},
                     {"spk.monitor", longName.c_str(), false},
                     {"nameless", nullptr, false},
                     {nullptr, "without an id", false}};
  const auto inputs = device_->inputs();
  ASSERT_TRUE(inputs.has_value());
  ASSERT_EQ(inputs->size(), 3U);
  EXPECT_EQ((*inputs)[0].id, "mic");
  EXPECT_EQ((*inputs)[0].name, "<b>USB</b>\nMic");
  EXPECT_TRUE((*inputs)[0].isDefault);
  EXPECT_FALSE((*inputs)[0].isMonitor);
  EXPECT_TRUE((*inputs)[1].isMonitor);
  EXPECT_EQ((*inputs)[1].name, longName);
  EXPECT_FALSE((*inputs)[1].isDefault);
  EXPECT_EQ((*inputs)[2].name, "");
}

TEST_F(FakedCubebAudioDeviceTest, EveryInputConnectionNotifiesOfInputsAndNoOutputConnection) {
  ASSERT_TRUE(device_->inputs().has_value());
  EXPECT_EQ(script().registrations, 1);
  EXPECT_EQ(script().unregistrations, 0);
  script().notify();
  EXPECT_EQ(changes_, 1);
  const auto output = device_->openOutput(client_);
  EXPECT_EQ(script().registrations, 1);
  const auto input = device_->openInput(client_);
  EXPECT_EQ(script().registrations, 1) << "the same connection";
  script().die();
  EXPECT_EQ(client_.failures, 1);
  ASSERT_TRUE(device_->inputs().has_value());
  EXPECT_EQ(script().registrations, 2) << "a new one";
}

TEST_F(FakedCubebAudioDeviceTest, ABackendThatCannotNotifyWorks) {
  script().registerResult = CUBEB_ERROR_NOT_SUPPORTED;
  EXPECT_TRUE(device_->openInput(client_));
  EXPECT_TRUE(consoleLines().empty());
}

TEST_F(FakedCubebAudioDeviceTest, AConnectionIsNotEndedWhileANoticeOfItsServerMayBeOnItsWay) {
  ASSERT_TRUE(device_->inputs().has_value());
  script().noticeIsUnderWay = true;  // the input that has gone
  ASSERT_NO_FATAL_FAILURE(reconnect());
  EXPECT_EQ(script().unregistrations, 0);
  EXPECT_EQ(script().contextsAlive(), 2U);
  changes_ = 0;
  script().notify();
  EXPECT_EQ(changes_, 1) << "of the connection in use";
}

TEST_F(FakedCubebAudioDeviceTest, AConnectionThatIsNotUsedAnyMoreIsEndedOnceItsServerIsQuiet) {
  ASSERT_NO_FATAL_FAILURE(reconnect());
  now_ += RetiredConnections::kQuiet / 2;
  script().notify();
  ASSERT_TRUE(device_->inputs().has_value());
  now_ += RetiredConnections::kQuiet - std::chrono::milliseconds(1);
  ASSERT_TRUE(device_->inputs().has_value());
  EXPECT_EQ(script().contextsAlive(), 2U);
  now_ += std::chrono::milliseconds(1);
  ASSERT_TRUE(device_->inputs().has_value());
  EXPECT_EQ(script().contextsAlive(), 1U);
  EXPECT_EQ(script().contextsWithHandler(), 1U);
}

TEST_F(FakedCubebAudioDeviceTest, AHandlerThatWasStoredAlthoughTheServerDiedIsTakenBack) {
  script().registerResult = CUBEB_ERROR;
  ASSERT_NO_FATAL_FAILURE(reconnect());
  script().registerResult = CUBEB_OK;
  now_ += RetiredConnections::kQuiet;
  ASSERT_TRUE(device_->inputs().has_value());  // the library aborts if it is not
  EXPECT_EQ(script().unregistrations, 1);
  EXPECT_EQ(script().contextsAlive(), 1U);
}

TEST_F(FakedCubebAudioDeviceTest, AnEmptyListMayBeThatOfADeadServerSoTheNextCallConnectsAnew) {
  script().inputs.clear();
  const auto none = device_->inputs();
  ASSERT_TRUE(none.has_value());
  EXPECT_TRUE(none->empty());
  script().inputs = {{"mic", "Microphone", true}};
  EXPECT_EQ(device_->inputs().value_or(std::vector<AudioInputDevice>()).size(), 1U);
  EXPECT_EQ(script().contexts, 2);
  EXPECT_TRUE(device_->inputs().has_value());
  EXPECT_EQ(script().contexts, 2);
}

TEST_F(FakedCubebAudioDeviceTest, WhenTheInputsCannotBeListedTheNextCallConnectsAnew) {
  script().enumerateResult = CUBEB_ERROR;
  EXPECT_FALSE(device_->inputs().has_value());
  script().enumerateResult = CUBEB_OK;
  EXPECT_TRUE(device_->inputs().has_value());
  EXPECT_EQ(script().contexts, 2);
  EXPECT_TRUE(device_->inputs().has_value());
  EXPECT_EQ(script().contexts, 2);
}

TEST_F(FakedCubebAudioDeviceTest, TheLastFallbackIsTriedAnewEveryTimeSinceAServerMayBeBack) {
  script().backend = "alsa";
  EXPECT_TRUE(device_->inputs().has_value());
  script().backend = "pulse";
  EXPECT_TRUE(device_->inputs().has_value());
  EXPECT_TRUE(device_->inputs().has_value());
  EXPECT_EQ(script().contexts, 2);
}

TEST_F(FakedCubebAudioDeviceTest, WithoutASoundSystemLookingForInputsIsQuietAndOpeningOneIsLogged) {
  script().initResult = CUBEB_ERROR;
  EXPECT_FALSE(device_->inputs().has_value());
  EXPECT_TRUE(consoleLines().empty());
  EXPECT_EQ(device_->openInput(client_).error(), kDeviceUnavailableStatus);
  EXPECT_EQ(consoleLines(), std::vector<std::string>{"No sound system could be reached"});
}

TEST_F(FakedCubebAudioDeviceTest, AStreamSaysWhichInputItCapturesFromNow) {
  script().currentInput = "mic";
  const auto input = device_->openInput(client_);
  ASSERT_TRUE(input);
  EXPECT_EQ((*input)->currentInput(), "mic");
  script().currentInput = "spk.monitor";
  EXPECT_EQ((*input)->currentInput(), "spk.monitor");
  script().currentInput = nullptr;
  EXPECT_EQ((*input)->currentInput(), "");
  script().currentInput = "mic";
  script().die();
  EXPECT_EQ((*input)->currentInput(), "") << "a dead stream is not asked";
}

TEST_F(FakedCubebAudioDeviceTest, AConnectionOnWhichAStartFailedIsNotUsedForAnotherStream) {
  const auto first = device_->openOutput(client_);
  ASSERT_TRUE(first);
  script().startResult = CUBEB_ERROR;
  EXPECT_EQ((*first)->start(), kDeviceUnavailableStatus);
  script().startResult = CUBEB_OK;
  const auto second = device_->openOutput(client_);
  ASSERT_TRUE(second);
  EXPECT_EQ(script().contexts, 2);
  const auto third = device_->openOutput(client_);
  ASSERT_TRUE(third);
  EXPECT_EQ(script().contexts, 2);
}

TEST_F(FakedCubebAudioDeviceTest, AConnectionOnWhichAStopFailedIsNotUsedForAnotherStream) {
  const auto first = device_->openOutput(client_);
  ASSERT_TRUE(first);
  EXPECT_EQ((*first)->start(), kAudioStatusOk);
  script().stopResult = CUBEB_ERROR;
  EXPECT_EQ((*first)->stop(), kDeviceUnavailableStatus);
  script().stopResult = CUBEB_OK;
  ASSERT_TRUE(device_->openOutput(client_));
  EXPECT_EQ(script().contexts, 2);
}

}  // namespace
}  // namespace platform::test
