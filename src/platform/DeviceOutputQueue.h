#pragma once

#include <memory>

#include "platform/OutputQueueCore.h"

namespace platform {

/// An output queue of DeviceAudioQueues.
///
/// Threads, Real-time: as AudioOutputQueue.
class DeviceOutputQueue final : public AudioOutputQueue {
 public:
  DeviceOutputQueue(Callback callback, std::shared_ptr<AudioControlThread> controlThread,
                    std::shared_ptr<AudioClock> clock, std::shared_ptr<KnownFailure> known)
      : controlThread_(std::move(controlThread)),
        core_(OutputQueueCore::create(*this, std::move(callback), controlThread_->control(),
                                      std::move(clock), std::move(known))) {}
  ~DeviceOutputQueue() override { core_->dispose(); }

  [[nodiscard]] AudioStatus open() { return core_->open(); }

  [[nodiscard]] AudioStatus allocateBuffer(std::uint32_t byteCapacity,
                                           AudioQueueBuffer*& buffer) override {
    return core_->allocate(byteCapacity, buffer);
  }
  [[nodiscard]] AudioStatus enqueueBuffer(AudioQueueBuffer* buffer) override {
    return core_->enqueue(buffer);
  }
  [[nodiscard]] AudioStatus start() override { return core_->start(); }
  [[nodiscard]] AudioStatus pause() override { return core_->pause(); }
  [[nodiscard]] AudioStatus stopAfterQueued() override { return core_->stopAfterQueued(); }
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
  [[nodiscard]] AudioStatus isRunning(std::uint32_t& running) const override {
    running = core_->isRunning() ? 1 : 0;
    return kAudioStatusOk;
  }
  AudioStatus setRunningListener(RunningListener listener) override {
    return core_->setRunningListener(std::move(listener));
  }
  [[nodiscard]] AudioStatus failure() const override { return core_->failure(); }
  [[nodiscard]] std::uint64_t underrunFrames() const override { return core_->underrunFrames(); }

 private:
  // Keeps the control thread until this queue has given up its stream.
  const std::shared_ptr<AudioControlThread> controlThread_;
  const std::shared_ptr<OutputQueueCore> core_;
};

}  // namespace platform
