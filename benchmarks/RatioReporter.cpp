#include "RatioReporter.h"

#include <cstdio>

namespace {

constexpr const char* kYardstick = "yardstick";

bool isYardstick(const std::string& what) {
  return what.rfind(kYardstick, 0) == 0;
}

double secondsOfOne(const benchmark::BenchmarkReporter::Run& run) {
  return run.GetAdjustedRealTime() / benchmark::GetTimeUnitMultiplier(run.time_unit);
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
  std::printf("\n%-60s %12s %8s\n", "benchmark", "time", "ratio");
  for (const Measured& each : measured_) {
    const std::string name =
        each.group + ": " + each.what + (each.arguments.empty() ? "" : " (" + each.arguments + ")");
    std::printf("%-60s %9.1f us", name.c_str(), each.seconds * 1e6);
    const Measured* const yardstick = yardstickOf(each);
    if (yardstick != nullptr && !isYardstick(each.what)) {
      std::printf(" %7.2fx", each.seconds / yardstick->seconds);
    }
    std::printf("\n");
  }
}
