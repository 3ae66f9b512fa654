#include "platform/sound/LateAudioDevice.h"

#include <utility>

#include "platform/base/LateModule.h"

namespace platform {
namespace {

class LateAudioDevice final : public AudioDevice {
 public:
  explicit LateAudioDevice(const char* moduleName) : moduleName_(moduleName) {}

  Input openInput(AudioInputClient& client) override {
    return load() ? device_->openInput(client) : Input(kDeviceUnavailableStatus);
  }

  Output openOutput(AudioOutputClient& client) override {
    return load() ? device_->openOutput(client) : Output(kDeviceUnavailableStatus);
  }

  void prepare() override {
    if (load()) {
      device_->prepare();
    }
  }

 private:
  // Tries once, whether it succeeds or not.
  [[nodiscard]] bool load() {
    if (const char* const name = std::exchange(moduleName_, nullptr); name != nullptr) {
      device_.reset(makeFromModule<AudioDevice>(name));
    }
    return device_ != nullptr;
  }

  const char* moduleName_;  // null once loaded or found missing
  std::unique_ptr<AudioDevice> device_;
};

}  // namespace

std::shared_ptr<AudioDevice> lateAudioDevice(const char* moduleName) {
  return std::make_shared<LateAudioDevice>(moduleName);
}

}  // namespace platform
