#include "platform/mainloop/Timer.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "platform/base/MainThread.h"

namespace platform {

Timer::Timer(double intervalInSeconds, std::function<void()> tick) {
  assertMainThread();
  timer_.setInterval(std::max(1, static_cast<int>(std::lround(intervalInSeconds * 1000.0))));
  QObject::connect(&timer_, &QTimer::timeout, &timer_, std::move(tick));
  timer_.start();
}

Timer::~Timer() {
  assertMainThread();
}

double Timer::intervalInSeconds() const {
  return timer_.interval() / 1000.0;
}

}  // namespace platform
