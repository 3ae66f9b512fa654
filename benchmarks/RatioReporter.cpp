#include "RatioReporter.h"

#include <array>
#include <cstdio>

namespace {

constexpr const char* kYardstick = "yardstick";

bool isYardstick(const std::string& what) {
  return what.rfind(kYardstick, 0) == 0;
}

double secondsOfOne(const benchmark::BenchmarkReporter::Run& run) {
  return run.GetAdjustedRealTime() / benchmark::GetTimeUnitMultiplier(run.time_unit);
}

std::string times(double ratio) {
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%.2f x", ratio);
  return text.data();
}

// Newer versions of the library have one field for failed and for skipped runs.
template <typename Run>
bool wasMeasured(const Run& run) {
  if constexpr (requires { run.error_occurred; }) {
    return !run.error_occurred;
  } else {
    return !run.skipped;
  }
}

}  // namespace

void RatioReporter::ReportRuns(const std::vector<Run>& runs) {
  ConsoleReporter::ReportRuns(runs);
  for (const Run& run : runs) {
    const std::string& name = run.run_name.function_name;
    const auto slash = name.find('/');
    const bool median = run.run_type == Run::RT_Aggregate && run.aggregate_name == "median";
    if (!wasMeasured(run) || slash == std::string::npos ||
        (run.run_type == Run::RT_Aggregate && !median)) {
      continue;
    }
    measured_.push_back({.group = name.substr(0, slash),
                         .what = name.substr(slash + 1),
                         .arguments = run.run_name.args,
                         .seconds = secondsOfOne(run)});
  }
}

const RatioReporter::Measured* RatioReporter::yardstickOf(const Measured& measured) const {
  const Measured* found = nullptr;
  for (const Measured& each : measured_) {
    if (each.group == measured.group && isYardstick(each.what) &&
        (found == nullptr || each.arguments == measured.arguments)) {
      found = &each;
    }
  }
  return found;
}

void RatioReporter::Finalize() {
  std::printf("\n| %-60s | %14s | %9s |\n|---|---:|---:|\n", "benchmark", "time", "ratio");
  for (const Measured& each : measured_) {
    const std::string name =
        each.group + ": " + each.what + (each.arguments.empty() ? "" : " (" + each.arguments + ")");
    const Measured* const yardstick = yardstickOf(each);
    const bool isCompared = yardstick != nullptr && !isYardstick(each.what);
    std::printf("| %-60s | %11.1f us | %9s |\n", name.c_str(), each.seconds * 1e6,
                isCompared ? times(each.seconds / yardstick->seconds).c_str() : "");
  }
}
