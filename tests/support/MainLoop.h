#pragma once

#include <chrono>
#include <functional>

#include <QCoreApplication>
#include <QEventLoop>

/// Runs the main loop until a condition holds; false when the deadline passed first.
/// Threads: main.
inline bool runMainLoopUntil(const std::function<bool()>& condition,
                             std::chrono::milliseconds deadline = std::chrono::seconds(20)) {
  const auto end = std::chrono::steady_clock::now() + deadline;
  while (!condition()) {
    if (std::chrono::steady_clock::now() > end) {
      return false;
    }
    QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
  }
  return true;
}
