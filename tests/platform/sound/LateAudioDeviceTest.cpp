#include "platform/sound/LateAudioDevice.h"

#include <gmock/gmock.h>

#include "support/fakes/RecordingServices.h"

namespace platform {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class NoInput final : public AudioInputClient {
  void deviceCaptured(const float*, std::uint32_t) noexcept override {}
  void deviceInputFailed(AudioStatus) noexcept override {}
};

class NoOutput final : public AudioOutputClient {
  void deviceWants(float*, std::uint32_t) noexcept override {}
  void deviceOutputFailed(AudioStatus) noexcept override {}
};

TEST(LateAudioDeviceTest, OfAMissingModuleIsLoggedOnceAndUnavailableEveryTime) {
  const support::InstalledRecordingServices services;
  const auto device = lateAudioDevice("orvo-there-is-none");
  device->prepare();
  for (int i = 0; i < 2; ++i) {
    NoInput input;
    NoOutput output;
    EXPECT_EQ(device->openInput(input).error(), kDeviceUnavailableStatus);
    EXPECT_EQ(device->openOutput(output).error(), kDeviceUnavailableStatus);
  }
  EXPECT_THAT(services->consoleLines(), ElementsAre(HasSubstr("orvo-there-is-none")));
}

}  // namespace
}  // namespace platform
