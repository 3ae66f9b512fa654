#include "platform/mainloop/Timer.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <utility>
#include <vector>

#include "platform/base/MainThread.h"

namespace platform {
namespace {

constexpr int kLongestRhythm = 999;  // milliseconds

/// The timers of one interval.
struct Rhythm {
  std::vector<QTimer*> together;
  std::vector<QTimer*> alone;  // until the next tick of those
};

// By interval, in milliseconds. Timers are few, and on the main thread alone.
std::map<int, Rhythm>& rhythms() {
  static std::map<int, Rhythm> all;
  return all;
}

void joinTogether(int interval) {
  Rhythm& rhythm = rhythms()[interval];
  for (QTimer* const timer : std::exchange(rhythm.alone, {})) {
    timer->start();
    rhythm.together.push_back(timer);
  }
}

// It ticks by itself meanwhile: the tick of the others may run the main loop.
void enter(QTimer& timer) {
  timer.start();
  Rhythm& rhythm = rhythms()[timer.interval()];
  (rhythm.together.empty() ? rhythm.together : rhythm.alone).push_back(&timer);
}

void leave(QTimer& timer) {
  const auto found = rhythms().find(timer.interval());
  Rhythm& rhythm = found->second;
  std::erase(rhythm.together, &timer);
  std::erase(rhythm.alone, &timer);
  if (rhythm.together.empty()) {
    std::swap(rhythm.together, rhythm.alone);
  }
  if (rhythm.together.empty()) {
    rhythms().erase(found);
  }
}

}  // namespace

Timer::Timer(double intervalInSeconds, std::function<void()> tick) {
  assertMainThread();
  const int interval = std::max(1, static_cast<int>(std::lround(intervalInSeconds * 1000.0)));
  timer_.setInterval(interval);
  QObject::connect(&timer_, &QTimer::timeout, &timer_, [interval, tick = std::move(tick)] {
    if (interval <= kLongestRhythm) {
      joinTogether(interval);
    }
    tick();
  });
  if (interval <= kLongestRhythm) {
    enter(timer_);
  } else {
    timer_.start();
  }
}

Timer::~Timer() {
  assertMainThread();
  if (timer_.interval() <= kLongestRhythm) {
    leave(timer_);
  }
}

double Timer::intervalInSeconds() const {
  return timer_.interval() / 1000.0;
}

}  // namespace platform
