#include "platform/sound/realtime/RealTimeGracePeriod.h"

#include <chrono>
#include <thread>

namespace platform {

void RealTimeGracePeriod::waitUntilLeft() const noexcept {
  const std::uint64_t seen = passages_.load(std::memory_order_seq_cst);
  if (seen % 2 == 0) {
    return;
  }
  for (int turns = 0; passages_.load(std::memory_order_seq_cst) == seen; ++turns) {
    if (turns < 64) {
      std::this_thread::yield();
    } else {
      // A preempted thread needs our core more than we do.
      std::this_thread::sleep_for(std::chrono::microseconds(100));
    }
  }
}

}  // namespace platform
