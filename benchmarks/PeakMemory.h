#pragma once

#include <fstream>
#include <string>

/// The resident memory of this process at its highest, as the system counts it.
///
/// Threads: any. Real-time: not safe.
namespace benchmarks {

/// From now on the highest counts anew.
inline void forgetPeakMemory() {
  std::ofstream("/proc/self/clear_refs") << "5";
}

/// 0 where the system does not tell.
[[nodiscard]] inline double peakMegabytes() {
  std::ifstream status("/proc/self/status");
  double kilobytes = 0.0;
  for (std::string word; status >> word;) {
    if (word == "VmHWM:") {
      status >> kilobytes;
      break;
    }
  }
  return kilobytes / 1024.0;
}

}  // namespace benchmarks
