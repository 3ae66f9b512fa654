#pragma once

#include <atomic>
#include <chrono>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <thread>
#include <utility>
#include <vector>

#include "platform/base/Mutex.h"
#include "platform/sound/AudioClock.h"
#include "platform/sound/AudioDevice.h"
#include "platform/sound/realtime/Semaphore.h"

namespace platform {

/// The longest time that a caller waits for the sound system.
inline constexpr std::chrono::milliseconds kMaxWait{250};

/// The control thread's tasks. Shared by the thread and by everything that posts to it; it lives as
/// long as any of them, including a hanging thread.
///
/// Threads: any. Real-time: not safe, except Signal::raise().
class DeviceTasks {
 public:
  /// Runs on the control thread. It keeps everything that it uses alive.
  using Task = std::function<void(AudioDevice&)>;

  /// A prepared task that a real-time thread can trigger.
  class Signal {
   public:
    Signal(DeviceTasks& control, Task task) : control_(control), task_(std::move(task)) {}

    /// Makes the task run soon, once for any number of raises before it runs.
    ///
    /// Threads: any. Real-time: safe.
    void raise() noexcept;

   private:
    friend class DeviceTasks;
    DeviceTasks& control_;
    const Task task_;
    // Set by raise(), cleared by the control thread before it runs the task.
    std::atomic<bool> raised_{false};
  };

  explicit DeviceTasks(std::shared_ptr<AudioClock> clock) : clock_(std::move(clock)) {}

  /// Runs `task` after those already posted. Dropped once the thread has ended.
  void post(Task task);

  /// Runs `task` after `delay` on the clock. Dropped if the thread ends first.
  void postAfter(std::chrono::nanoseconds delay, Task task);

  /// Runs `task` at the very end of the thread.
  void postAtEnd(Task task);

  /// The signal ends with its last reference. `task` must not keep its own signal alive.
  [[nodiscard]] std::shared_ptr<Signal> makeSignal(Task task);

 private:
  friend class DeviceThread;

  void run(std::shared_ptr<AudioDevice> device);
  void runSignals(AudioDevice& device) EXCLUDES(mutex_);
  /// Takes the next task due; false for none. `wakeAt` is then the time of the next delayed task,
  /// TimePoint::max() for none.
  [[nodiscard]] bool take(Task& task, AudioClock::TimePoint& wakeAt) EXCLUDES(mutex_);
  void finish(AudioDevice& device) EXCLUDES(mutex_);

  // Fixed after construction.
  const std::shared_ptr<AudioClock> clock_;

  Semaphore wake_;
  Semaphore ended_;  // posted once, when run() is done

  Mutex mutex_;
  std::deque<Task> ready_ GUARDED_BY(mutex_);
  std::multimap<AudioClock::TimePoint, Task> delayed_ GUARDED_BY(mutex_);
  std::vector<Task> atEnd_ GUARDED_BY(mutex_);
  std::vector<std::weak_ptr<Signal>> signals_ GUARDED_BY(mutex_);
  bool ending_ GUARDED_BY(mutex_) = false;
};

/// Owns the only thread that calls an AudioDevice. A call may hang for minutes; it then holds up
/// only this thread.
///
/// Threads: any but the control thread itself. Real-time: not safe.
class DeviceThread {
 public:
  DeviceThread(std::shared_ptr<AudioDevice> device, std::shared_ptr<AudioClock> clock);

  /// Runs the posted tasks, then those of postAtEnd(), and ends the thread. Waits at most kMaxWait
  /// of real time; a hanging thread is then detached, and keeps DeviceTasks, the device and
  /// everything that its tasks hold until it returns or the process ends.
  ~DeviceThread();
  DeviceThread(const DeviceThread&) = delete;
  DeviceThread& operator=(const DeviceThread&) = delete;

  [[nodiscard]] const std::shared_ptr<DeviceTasks>& control() const { return control_; }

 private:
  const std::shared_ptr<DeviceTasks> control_;
  std::thread thread_;
};

}  // namespace platform
