#pragma once

#include <cstdint>
#include <memory>
#include <utility>

#include "platform/DeviceQueue.h"
#include "platform/InputQueueCore.h"

namespace platform {

/// An input queue of DeviceAudioQueues.
///
/// Threads, Real-time: as AudioInputQueue.
class DeviceInputQueue final : public DeviceQueue<AudioInputQueue, InputQueueCore> {
 public:
  DeviceInputQueue(Callback callback, FailureListener failed,
                   std::shared_ptr<AudioControlThread> controlThread,
                   std::shared_ptr<SharedInput> input)
      : DeviceQueue(std::move(controlThread), [&](AudioInputQueue& queue) {
          return std::make_shared<InputQueueCore>(queue, std::move(callback), std::move(failed),
                                                  std::move(input));
        }) {}
  ~DeviceInputQueue() override { core().dispose(); }

  [[nodiscard]] AudioStatus acquireDevice() { return core().acquireDevice(); }

  [[nodiscard]] std::uint64_t capturedFrames() const override { return core().capturedFrames(); }
  void waitUntilDelivered(std::uint64_t frame) override { core().waitUntilDelivered(frame); }
  [[nodiscard]] std::uint64_t lostFrames() const override { return core().lostFrames(); }
};

}  // namespace platform
