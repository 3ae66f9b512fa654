#pragma once

#include <memory>

#include "platform/AudioControlThread.h"
#include "platform/InputQueueCore.h"

namespace platform {

/// An input queue of DeviceAudioQueues.
///
/// Threads, Real-time: as AudioInputQueue.
class DeviceInputQueue final : public AudioInputQueue {
 public:
  DeviceInputQueue(Callback callback, FailureListener failed,
                   std::shared_ptr<AudioControlThread> controlThread,
                   std::shared_ptr<SharedInput> input)
      : controlThread_(std::move(controlThread)),
        core_(std::make_shared<InputQueueCore>(*this, std::move(callback), std::move(failed),
                                               std::move(input))) {}
  ~DeviceInputQueue() override { core_->dispose(); }

  [[nodiscard]] AudioStatus acquireDevice() { return core_->acquireDevice(); }

  [[nodiscard]] AudioStatus allocateBuffer(std::uint32_t byteCapacity,
                                           AudioQueueBuffer*& buffer) override {
    return core_->allocate(byteCapacity, buffer);
  }
  [[nodiscard]] AudioStatus enqueueBuffer(AudioQueueBuffer* buffer) override {
    return core_->enqueue(buffer);
  }
  [[nodiscard]] AudioStatus start() override { return core_->start(); }
  [[nodiscard]] AudioStatus stopImmediately() override {
    core_->stop();
    return kAudioStatusOk;
  }
  [[nodiscard]] AudioStatus dispose() override {
    core_->dispose();
    return kAudioStatusOk;
  }
  [[nodiscard]] AudioStatus streamDescription(
      AudioStreamBasicDescription& description) const override {
    description = kWorkingFormat;
    return kAudioStatusOk;
  }
  [[nodiscard]] AudioStatus enableLevelMetering(bool enabled) override {
    core_->levels().enable(enabled);
    return kAudioStatusOk;
  }
  [[nodiscard]] AudioStatus currentLevels(AudioQueueLevelMeterState* levels, std::size_t capacity,
                                          std::size_t& count) const override {
    count = core_->levels().read(levels, capacity);
    return kAudioStatusOk;
  }
  [[nodiscard]] std::uint64_t capturedFrames() const override { return core_->capturedFrames(); }
  void waitUntilDelivered(std::uint64_t frame) override { core_->waitUntilDelivered(frame); }
  [[nodiscard]] std::uint64_t lostFrames() const override { return core_->lostFrames(); }

 private:
  // Keeps the control thread until this queue has given up the device.
  const std::shared_ptr<AudioControlThread> controlThread_;
  const std::shared_ptr<InputQueueCore> core_;
};

}  // namespace platform
