#pragma once

#include <chrono>
#include <functional>

#include <QCoreApplication>
#include <QEventLoop>

#include "platform/base/GlobalQueue.h"
#include "platform/mainloop/MainQueue.h"
#include "support/Eventually.h"

/// Runs the main loop until a condition holds; false if the deadline passed first.
/// Threads: main.
inline bool runMainLoopUntil(const std::function<bool()>& condition,
                             std::chrono::milliseconds deadline = support::kPatience) {
  const auto end = std::chrono::steady_clock::now() + deadline;
  while (!condition()) {
    if (std::chrono::steady_clock::now() > end) {
      return false;
    }
    QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
  }
  return true;
}

/// Waits until the global queue is idle; false if that took longer than the usual deadline.
/// Threads: any but the global queue's.
inline bool awaitGlobalQueue() {
  return platform::globalQueue().waitUntilIdle(
      std::chrono::duration<double>(support::kPatience).count());
}

/// Runs everything that was submitted to the main queue before this call.
/// Threads: main.
inline bool drainMainQueue() {
  bool reached = false;
  platform::mainQueue().async([&reached] { reached = true; });
  return runMainLoopUntil([&reached] { return reached; });
}
