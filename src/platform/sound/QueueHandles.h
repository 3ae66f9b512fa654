#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>

#include "platform/sound/AudioQueue.h"
#include "platform/sound/DeviceThread.h"
#include "platform/sound/InputQueueCore.h"
#include "platform/sound/OutputQueueCore.h"

namespace platform {

/// Base of the input and output queues of DeviceAudioQueues: a thin wrapper over a core.
///
/// The destructor of the derived queue calls dispose(), not this one, since a callback that is
/// still running may call any function of the queue.
///
/// @tparam Interface  AudioInputQueue or AudioOutputQueue
/// @tparam Core       InputQueueCore or OutputQueueCore
///
/// Threads, Real-time: as AudioQueue.
template <typename Interface, typename Core>
class QueueHandle : public Interface {
 public:
  [[nodiscard]] Result<AudioQueueBuffer*, AudioStatus> allocateBuffer(
      std::uint32_t byteCapacity) override {
    return core_->allocate(byteCapacity);
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
  /// `makeCore` creates the core for the queue passed to it.
  template <typename MakeCore>
  QueueHandle(std::shared_ptr<DeviceThread> deviceThread, MakeCore makeCore)
      : deviceThread_(std::move(deviceThread)), core_(makeCore(static_cast<Interface&>(*this))) {}

  [[nodiscard]] Core& core() const { return *core_; }

 private:
  // Keeps the control thread alive until this queue has released the device.
  const std::shared_ptr<DeviceThread> deviceThread_;
  const std::shared_ptr<Core> core_;
};

/// An input queue of DeviceAudioQueues.
///
/// Threads, Real-time: as AudioInputQueue.
class InputQueueHandle final : public QueueHandle<AudioInputQueue, InputQueueCore> {
 public:
  InputQueueHandle(Callback callback, FailureListener failed,
                   std::shared_ptr<DeviceThread> deviceThread, std::shared_ptr<SharedInput> input)
      : QueueHandle(std::move(deviceThread), [&](AudioInputQueue& queue) {
          return std::make_shared<InputQueueCore>(queue, std::move(callback), std::move(failed),
                                                  std::move(input));
        }) {}
  ~InputQueueHandle() override { core().dispose(); }

  [[nodiscard]] AudioStatus acquireDevice() { return core().acquireDevice(); }

  void prepareToRecord() override { core().prepareToRecord(); }
  [[nodiscard]] std::uint64_t capturedFrames() const override { return core().capturedFrames(); }
  void waitUntilDelivered(std::uint64_t frame) override { core().waitUntilDelivered(frame); }
  [[nodiscard]] std::uint64_t lostFrames() const override { return core().lostFrames(); }
};

/// An output queue of DeviceAudioQueues.
///
/// Threads, Real-time: as AudioOutputQueue.
class OutputQueueHandle final : public QueueHandle<AudioOutputQueue, OutputQueueCore> {
 public:
  OutputQueueHandle(Callback callback, std::shared_ptr<DeviceThread> deviceThread,
                    std::shared_ptr<AudioClock> clock, std::weak_ptr<StallWatch> stallWatch,
                    std::shared_ptr<RecentFailure> known)
      : QueueHandle(deviceThread, [&](AudioOutputQueue& queue) {
          return OutputQueueCore::create(queue, std::move(callback), deviceThread->control(),
                                         std::move(clock), std::move(stallWatch), std::move(known));
        }) {}
  ~OutputQueueHandle() override { core().dispose(); }

  [[nodiscard]] AudioStatus open() { return core().open(); }

  [[nodiscard]] AudioStatus pause() override { return core().pause(); }
  [[nodiscard]] AudioStatus stopAfterQueued() override { return core().stopAfterQueued(); }
  [[nodiscard]] AudioStatus isRunning(std::uint32_t& running) const override {
    running = core().isRunning() ? 1 : 0;
    return kAudioStatusOk;
  }
  AudioStatus setRunningListener(RunningListener listener) override {
    return core().setRunningListener(std::move(listener));
  }
  [[nodiscard]] AudioStatus failure() const override { return core().failure(); }
  [[nodiscard]] std::uint64_t underrunFrames() const override { return core().underrunFrames(); }
};

}  // namespace platform
