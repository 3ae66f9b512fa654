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

/// One that needs the input device.
class InputSubscriber {
 public:
  virtual ~InputSubscriber() = default;

  /// The device failed; it is not used for this one any more.
  ///
  /// Threads: the control thread. Real-time: not safe.
  virtual void inputFailed(AudioStatus status) = 0;
};

/// The one input stream of the process: opened for the first user, or ahead of it, closed a few
/// seconds after the last went. All users' sinks hang on its fan-out.
///
/// Threads: any, except where said. Real-time: not safe, except where said.
class SharedInput final : public AudioInputClient,
                          public std::enable_shared_from_this<SharedInput> {
 public:
  /// How long the device stays open without a user: a pause makes a new queue within this time.
  static constexpr std::chrono::seconds kLinger{3};

  [[nodiscard]] static std::shared_ptr<SharedInput> create(std::shared_ptr<DeviceTasks> control,
                                                           std::shared_ptr<AudioClock> clock);

  /// Counts `user` in and opens the device if it is not open. Waits for it until kMaxWait after
  /// the opening began, then says yes; an opening that prepare() began is not waited for, so that
  /// the first window is shown meanwhile. A failure that it answers has not counted the user in; a
  /// later one arrives at the user and counts it out.
  [[nodiscard]] AudioStatus acquire(const std::shared_ptr<InputSubscriber>& user);

  /// Counts `user` out. Without effect for one that is not counted in.
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
  // Added to by the real-time thread, taken by whoever tells it.
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
  bool failing_ GUARDED_BY(mutex_) = false;  // the last try failed, or the device was lost since
  bool untold_ GUARDED_BY(mutex_) = false;   // it began to fail and no alert was claimed for that
  std::vector<std::shared_ptr<InputSubscriber>> users_ GUARDED_BY(mutex_);
  // about the opening under way
  std::vector<std::shared_ptr<TimedReply>> questions_ GUARDED_BY(mutex_);
};

}  // namespace platform
