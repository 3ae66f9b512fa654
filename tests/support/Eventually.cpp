#include "support/Eventually.h"

#include <thread>

namespace support {

bool eventually(const std::function<bool()>& condition, std::chrono::milliseconds patience) {
  constexpr std::chrono::milliseconds kLookAgain{2};
  const auto deadline = std::chrono::steady_clock::now() + patience;
  while (!condition()) {
    if (std::chrono::steady_clock::now() >= deadline) {
      return condition();
    }
    std::this_thread::sleep_for(kLookAgain);
  }
  return true;
}

}  // namespace support
