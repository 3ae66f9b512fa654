#include "platform/mainloop/Timer.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <utility>
#include <vector>

#include "platform/base/MainThread.h"

namespace platform {
namespace {

/// The timers of one interval.
struct Rhythm {
  std::vector<QTimer*> running;
  std::vector<QTimer*> waiting;  // for the next tick of those
};

// By interval, in milliseconds. Timers are few, and on the main thread alone.
std::map<int, Rhythm>& rhythms() {
  static std::map<int, Rhythm> all;
  return all;
}

void startWaiting(int interval) {
  Rhythm& rhythm = rhythms()[interval];
  for (QTimer* const timer : std::exchange(rhythm.waiting, {})) {
    timer->start();
    rhythm.running.push_back(timer);
  }
}

void enter(QTimer& timer) {
  rhythms()[timer.interval()].waiting.push_back(&timer);
  if (rhythms()[timer.interval()].running.empty()) {
    startWaiting(timer.interval());
  }
}

void leave(QTimer& timer) {
  const auto found = rhythms().find(timer.interval());
  Rhythm& rhythm = found->second;
  std::erase(rhythm.running, &timer);
  std::erase(rhythm.waiting, &timer);
  if (rhythm.running.empty()) {
    startWaiting(timer.interval());
  }
  if (rhythm.running.empty()) {
    rhythms().erase(found);
  }
}

}  // namespace

Timer::Timer(double intervalInSeconds, std::function<void()> tick) {
  assertMainThread();
  const int interval = std::max(1, static_cast<int>(std::lround(intervalInSeconds * 1000.0)));
  timer_.setInterval(interval);
  QObject::connect(&timer_, &QTimer::timeout, &timer_, [interval, tick = std::move(tick)] {
    startWaiting(interval);
    tick();
  });
  enter(timer_);
}

Timer::~Timer() {
  assertMainThread();
  leave(timer_);
}

double Timer::intervalInSeconds() const {
  return timer_.interval() / 1000.0;
}

}  // namespace platform
