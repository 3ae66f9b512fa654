#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "failures/FailingCalls.h"
#include "support/fakes/ScriptedAudioDevice.h"

/// A scripted device each of whose calls can be the one that fails (FailingCalls.h).
///
/// Threads: as AudioDevice.
class CountedAudioDevice : public platform::AudioDevice {
 public:
  explicit CountedAudioDevice(std::shared_ptr<platform::ScriptedAudioDevice> device)
      : device_(std::move(device)) {}

  [[nodiscard]] Input openInput(platform::AudioInputClient& client) override {
    if (failing::fails("openInput")) {
      return platform::kDeviceUnavailableStatus;
    }
    return device_->openInput(client);
  }
  [[nodiscard]] Output openOutput(platform::AudioOutputClient& client) override {
    if (failing::fails("openOutput")) {
      return platform::kDeviceUnavailableStatus;
    }
    auto opened = device_->openOutput(client);
    if (!opened) {
      return opened;
    }
    return std::make_unique<CountedOutput>(*std::move(opened));
  }
  void prepare() override { device_->prepare(); }
  void setInputsChangedHandler(std::function<void()> changed) override {
    device_->setInputsChangedHandler(std::move(changed));
  }
  [[nodiscard]] std::optional<std::vector<platform::AudioInputDevice>> inputs() override {
    return failing::fails("inputs") ? std::nullopt : device_->inputs();
  }

 private:
  class CountedOutput : public platform::AudioOutputStream {
   public:
    explicit CountedOutput(std::unique_ptr<platform::AudioOutputStream> stream)
        : stream_(std::move(stream)) {}

    [[nodiscard]] platform::AudioStatus start() override {
      return failing::fails("start") ? platform::kDeviceLostStatus : stream_->start();
    }
    [[nodiscard]] platform::AudioStatus stop() override {
      return failing::fails("stop") ? platform::kDeviceLostStatus : stream_->stop();
    }
    [[nodiscard]] std::uint64_t position() override { return stream_->position(); }

   private:
    const std::unique_ptr<platform::AudioOutputStream> stream_;
  };

  const std::shared_ptr<platform::ScriptedAudioDevice> device_;
};
