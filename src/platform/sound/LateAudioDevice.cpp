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

  void setInputsChangedHandler(std::function<void()> changed) override {
    if (device_) {
      device_->setInputsChangedHandler(std::move(changed));
    } else {
      inputsChanged_ = std::move(changed);  // loads nothing yet
    }
  }

  std::optional<std::vector<AudioInputDevice>> inputs() override {
    return load() ? device_->inputs() : std::nullopt;
  }

 private:
  // Tries once, whether it succeeds or not.
  [[nodiscard]] bool load() {
    if (const char* const name = std::exchange(moduleName_, nullptr); name != nullptr) {
      device_.reset(makeFromModule<AudioDevice>(name));
      if (device_) {
        device_->setInputsChangedHandler(std::exchange(inputsChanged_, nullptr));
      }
    }
    return device_ != nullptr;
  }

  std::function<void()> inputsChanged_;
  const char* moduleName_;  // null once loaded or found missing
  std::unique_ptr<AudioDevice> device_;
};

}  // namespace

std::shared_ptr<AudioDevice> lateAudioDevice(const char* moduleName) {
  return std::make_shared<LateAudioDevice>(moduleName);
}

}  // namespace platform
