#pragma once

#include <map>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

/// A console reporter that also prints, at the end, each benchmark as a multiple of its yardstick
/// in the same run: on a busy machine, ratios mean more than times.
///
/// A benchmark is named "Group/case". Its yardstick is the benchmark of the group whose case begins
/// with "yardstick", with the same arguments if there are several.
class RatioReporter : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override;
  void Finalize() override;

 private:
  struct Measured {
    std::string group;
    std::string what;
    std::string arguments;
    double seconds = 0;  // of one iteration
  };

  [[nodiscard]] const Measured* yardstickOf(const Measured& measured) const;

  std::vector<Measured> measured_;
};
