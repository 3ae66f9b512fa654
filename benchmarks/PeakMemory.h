#pragma once

#include <fstream>
#include <string>

/// The peak of this process's resident memory, as the system counts it.
///
/// Threads: any. Real-time: not safe.
namespace benchmarks {

/// Resets the peak.
inline void forgetPeakMemory() {
  std::ofstream("/proc/self/clear_refs") << "5";
}

/// 0 if the system does not report it.
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
