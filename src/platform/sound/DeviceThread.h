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

/// The longest time for which anybody waits for the sound system.
inline constexpr std::chrono::milliseconds kMaxWait{250};

/// What the control thread has to do. Shared by the thread and by all who give it work; it lives
/// until the last of them is gone, a hanging thread included.
///
/// Threads: any. Real-time: not safe, except Signal::raise().
class DeviceTasks {
 public:
  /// Runs on the control thread. It keeps alive whatever it touches.
  using Task = std::function<void(AudioDevice&)>;

  /// A task made ahead of time that a real-time thread may ask for.
  class Signal {
   public:
    Signal(DeviceTasks& control, Task task) : control_(control), task_(std::move(task)) {}

    /// Has the task run soon, once for any number of raises before that.
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

  /// Runs `task` after those posted before. Dropped once the thread has ended.
  void post(Task task);

  /// Runs `task` when `delay` has passed on the clock. Dropped if the thread ends before.
  void postAfter(std::chrono::nanoseconds delay, Task task);

  /// Runs `task` last of all when the thread ends.
  void postAtEnd(Task task);

  /// The signal ends with its last reference. `task` must not keep its own signal alive.
  [[nodiscard]] std::shared_ptr<Signal> makeSignal(Task task);

 private:
  friend class DeviceThread;

  void run(std::shared_ptr<AudioDevice> device);
  void runSignals(AudioDevice& device) EXCLUDES(mutex_);
  /// Takes the next task that is due; false when there is none. `wakeAt` is then the time of the
  /// next delayed one, TimePoint::max() for none.
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

/// Owns the one thread that makes every call of an AudioDevice. Such a call may hang for minutes;
/// the thread then hangs with it and nobody else.
///
/// Threads: any but the control thread itself. Real-time: not safe.
class DeviceThread {
 public:
  DeviceThread(std::shared_ptr<AudioDevice> device, std::shared_ptr<AudioClock> clock);

  /// Runs what was posted, then the tasks of postAtEnd(), and ends the thread. Waits for that at
  /// most kMaxWait of real time; a thread that hangs is then detached and keeps DeviceTasks,
  /// the device and all that its tasks hold until it comes back or the process ends.
  ~DeviceThread();
  DeviceThread(const DeviceThread&) = delete;
  DeviceThread& operator=(const DeviceThread&) = delete;

  [[nodiscard]] const std::shared_ptr<DeviceTasks>& control() const { return control_; }

 private:
  const std::shared_ptr<DeviceTasks> control_;
  std::thread thread_;
};

}  // namespace platform
