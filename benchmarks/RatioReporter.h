#pragma once

#include <map>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

/// Prints what the console reporter prints and, at the end, each benchmark as a multiple of its
/// yardstick in the same run: times on a busy machine mean little, ratios more.
///
/// A benchmark is named "Group/case"; the one of its group whose case begins with "yardstick" is
/// the yardstick, with the same arguments where there are several.
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
