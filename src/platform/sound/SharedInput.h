#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <vector>

#include "platform/base/Mutex.h"
#include "platform/sound/AudioDevice.h"
#include "platform/sound/CaptureLossDetector.h"
#include "platform/sound/DeviceThread.h"
#include "platform/sound/RecentFailure.h"
#include "platform/sound/TimedReply.h"
#include "platform/sound/realtime/InputFanOut.h"

namespace platform {

/// A user of the input device.
class InputSubscriber {
 public:
  virtual ~InputSubscriber() = default;

  /// The device failed; this subscriber is no longer registered.
  ///
  /// Threads: the control thread. Real-time: not safe.
  virtual void inputFailed(AudioStatus status) = 0;
};

/// The process's only input stream: opened for the first user or ahead of it, closed a few seconds
/// after the last has left. All users' sinks are attached to its fan-out.
///
/// Threads: any, except where noted. Real-time: not safe, except where noted.
class SharedInput final : public AudioInputClient,
                          public std::enable_shared_from_this<SharedInput> {
 public:
  /// How long the device stays open without a user, so that recording can resume after a short
  /// pause.
  static constexpr std::chrono::seconds kLinger{3};

  [[nodiscard]] static std::shared_ptr<SharedInput> create(std::shared_ptr<DeviceTasks> control,
                                                           std::shared_ptr<AudioClock> clock);

  /// Registers `user` and opens the device if it is not open. Waits until kMaxWait after the
  /// opening began, then assumes success; it does not wait for an opening that prepare() began, so
  /// that the first window is shown meanwhile. On failure the user is not registered; a later
  /// failure notifies and unregisters it.
  [[nodiscard]] AudioStatus acquire(const std::shared_ptr<InputSubscriber>& user);

  /// Unregisters `user`; no effect if it is not registered.
  void release(const InputSubscriber& user);

  /// Opens the device ahead of the first user.
  void prepare();

  /// AudioQueues::claimInputFailureAlert().
  [[nodiscard]] bool takeFailureReport();

  [[nodiscard]] InputFanOut& fanOut() { return fanOut_; }

  /// Frames that vanished inside the sound system since the last call.
  [[nodiscard]] std::uint64_t takeFramesLostInSystem() {
    return framesLostInSystem_.exchange(0, std::memory_order_relaxed);
  }

  void deviceCaptured(const float* samples, std::uint32_t frames) noexcept override;
  void deviceInputFailed(AudioStatus status) noexcept override;

 private:
  enum class State { kClosed, kOpening, kOpen, kFailed };

  SharedInput(std::shared_ptr<DeviceTasks> control, std::shared_ptr<AudioClock> clock);

  void beginOpening() REQUIRES(mutex_);
  void scheduleClosing() REQUIRES(mutex_);

  // On the control thread.
  void open(AudioDevice& device);
  void settle(AudioStatus status) EXCLUDES(mutex_);
  void tearDownFailed();
  void closeIfUnused() EXCLUDES(mutex_);
  void close();

  // Fixed after construction.
  const std::shared_ptr<DeviceTasks> control_;
  const std::shared_ptr<AudioClock> clock_;
  std::shared_ptr<DeviceTasks::Signal> failureSignal_;

  InputFanOut fanOut_;

  // Written by the real-time thread; before the stream opens, by the control thread.
  CaptureLossDetector detector_;
  // Incremented by the real-time thread, reset by the thread that logs it.
  std::atomic<std::uint64_t> framesLostInSystem_{0};
  // Set by a thread of the device, cleared by the control thread; 0 is none.
  std::atomic<AudioStatus> pendingFailure_{kAudioStatusOk};

  // Control thread only.
  std::unique_ptr<AudioInputStream> stream_;

  Mutex mutex_;
  State state_ GUARDED_BY(mutex_) = State::kClosed;
  // the opening under way, if any, was begun by prepare()
  bool preparing_ GUARDED_BY(mutex_) = false;
  AudioClock::TimePoint openingSince_ GUARDED_BY(mutex_);
  AudioClock::TimePoint unusedSince_ GUARDED_BY(mutex_);
  RecentFailure failure_ GUARDED_BY(mutex_);
  bool failing_ GUARDED_BY(mutex_) =
      false;                                // the last opening failed, or the device was lost since
  bool untold_ GUARDED_BY(mutex_) = false;  // it began to fail and no alert was claimed yet
  std::vector<std::shared_ptr<InputSubscriber>> users_ GUARDED_BY(mutex_);
  // awaiting the opening under way
  std::vector<std::shared_ptr<TimedReply>> questions_ GUARDED_BY(mutex_);
};

}  // namespace platform
