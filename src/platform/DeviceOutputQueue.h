#pragma once

#include <cstdint>
#include <memory>
#include <utility>

#include "platform/DeviceQueue.h"
#include "platform/OutputQueueCore.h"

namespace platform {

/// An output queue of DeviceAudioQueues.
///
/// Threads, Real-time: as AudioOutputQueue.
class DeviceOutputQueue final : public DeviceQueue<AudioOutputQueue, OutputQueueCore> {
 public:
  DeviceOutputQueue(Callback callback, std::shared_ptr<AudioControlThread> controlThread,
                    std::shared_ptr<AudioClock> clock, std::shared_ptr<KnownFailure> known)
      : DeviceQueue(controlThread, [&](AudioOutputQueue& queue) {
          return OutputQueueCore::create(queue, std::move(callback), controlThread->control(),
                                         std::move(clock), std::move(known));
        }) {}
  ~DeviceOutputQueue() override { core().dispose(); }

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
