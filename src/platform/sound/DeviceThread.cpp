#include "platform/sound/DeviceThread.h"

#include <utility>

namespace platform {

void DeviceTasks::Signal::raise() noexcept {
  raised_.store(true, std::memory_order_release);
  control_.wake_.post();
}

void DeviceTasks::post(Task task) {
  {
    const MutexLock lock(mutex_);
    if (ending_) {
      return;
    }
    ready_.push_back(std::move(task));
  }
  wake_.post();
}

void DeviceTasks::postAfter(std::chrono::nanoseconds delay, Task task) {
  const auto due =
      clock_->now() + std::chrono::duration_cast<AudioClock::TimePoint::duration>(delay);
  {
    const MutexLock lock(mutex_);
    if (ending_) {
      return;
    }
    delayed_.emplace(due, std::move(task));
  }
  wake_.post();
}

void DeviceTasks::postAtEnd(Task task) {
  const MutexLock lock(mutex_);
  atEnd_.push_back(std::move(task));
}

std::shared_ptr<DeviceTasks::Signal> DeviceTasks::makeSignal(Task task) {
  auto signal = std::make_shared<Signal>(*this, std::move(task));
  const MutexLock lock(mutex_);
  std::erase_if(signals_, [](const auto& other) { return other.expired(); });
  signals_.push_back(signal);
  return signal;
}

void DeviceTasks::runSignals(AudioDevice& device) {
  std::vector<std::shared_ptr<Signal>> raised;
  {
    const MutexLock lock(mutex_);
    for (const auto& weak : signals_) {
      auto signal = weak.lock();
      if (signal && signal->raised_.exchange(false, std::memory_order_acquire)) {
        raised.push_back(std::move(signal));
      }
    }
  }
  for (const auto& signal : raised) {
    signal->task_(device);
  }
}

bool DeviceTasks::take(Task& task, AudioClock::TimePoint& wakeAt) {
  const MutexLock lock(mutex_);
  const auto first = delayed_.begin();
  if (first != delayed_.end() && first->first <= clock_->now()) {
    task = std::move(first->second);
    delayed_.erase(first);
    return true;
  }
  if (!ready_.empty()) {
    task = std::move(ready_.front());
    ready_.pop_front();
    return true;
  }
  wakeAt = first == delayed_.end() ? AudioClock::TimePoint::max() : first->first;
  return false;
}

void DeviceTasks::run(std::shared_ptr<AudioDevice> device) {
  for (;;) {
    runSignals(*device);
    Task task;
    AudioClock::TimePoint wakeAt;
    if (take(task, wakeAt)) {
      task(*device);
      continue;
    }
    {
      const MutexLock lock(mutex_);
      if (ending_ && ready_.empty()) {
        break;
      }
    }
    if (wakeAt == AudioClock::TimePoint::max()) {
      wake_.wait();
    } else {
      static_cast<void>(clock_->waitUntil(wake_, wakeAt));
    }
  }
  finish(*device);
  device.reset();
  ended_.post();
}

void DeviceTasks::finish(AudioDevice& device) {
  // Moved out, so that they are destroyed outside the lock: a task may hold the last reference to a
  // queue.
  decltype(delayed_) dropped;
  decltype(atEnd_) last;
  {
    const MutexLock lock(mutex_);
    dropped.swap(delayed_);
    last.swap(atEnd_);
  }
  for (const auto& task : last) {
    task(device);
  }
}

DeviceThread::DeviceThread(std::shared_ptr<AudioDevice> device, std::shared_ptr<AudioClock> clock)
    : control_(std::make_shared<DeviceTasks>(std::move(clock))),
      thread_([control = control_, its = std::move(device)]() mutable {
        control->run(std::move(its));
      }) {}

DeviceThread::~DeviceThread() {
  {
    const MutexLock lock(control_->mutex_);
    control_->ending_ = true;
  }
  control_->wake_.post();
  if (control_->ended_.waitUntil(std::chrono::steady_clock::now() + kMaxWait)) {
    thread_.join();
  } else {
    thread_.detach();
  }
}

}  // namespace platform
