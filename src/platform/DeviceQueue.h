#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>

#include "platform/AudioControlThread.h"
#include "platform/AudioQueue.h"

namespace platform {

/// What the input and the output queues of DeviceAudioQueues share: a thin object over its core.
///
/// The destructor of the queue itself calls dispose(), not this one: a callback that still runs
/// then may call whatever the queue offers.
///
/// @tparam Interface  AudioInputQueue or AudioOutputQueue
/// @tparam Core       InputQueueCore or OutputQueueCore
///
/// Threads, Real-time: as AudioQueue.
template <typename Interface, typename Core>
class DeviceQueue : public Interface {
 public:
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

 protected:
  /// `makeCore` makes the core of the queue that it is given.
  template <typename MakeCore>
  DeviceQueue(std::shared_ptr<AudioControlThread> controlThread, MakeCore makeCore)
      : controlThread_(std::move(controlThread)), core_(makeCore(static_cast<Interface&>(*this))) {}

  [[nodiscard]] Core& core() const { return *core_; }

 private:
  // Keeps the control thread until this queue has given up the device.
  const std::shared_ptr<AudioControlThread> controlThread_;
  const std::shared_ptr<Core> core_;
};

}  // namespace platform
