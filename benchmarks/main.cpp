// Measures the cost of recording against yardsticks. docs/performance.md lists the budgets.
#include <QApplication>

#include <benchmark/benchmark.h>

#include "RatioReporter.h"

int main(int argc, char** argv) {
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
  }
  benchmark::Initialize(&argc, argv);
  const QApplication application(argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
    return 1;
  }
  RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  return 0;
}
