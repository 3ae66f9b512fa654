#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "platform/base/Mutex.h"
#include "platform/sound/AudioDevice.h"
#include "platform/sound/CaptureLossDetector.h"
#include "platform/sound/DeviceThread.h"
#include "platform/sound/InputSourceTracker.h"
#include "platform/sound/RecentFailure.h"
#include "platform/sound/StallWatch.h"
#include "platform/sound/TimedReply.h"
#include "platform/sound/realtime/InputFanOut.h"

namespace platform {

/// A user of the input device.
class InputSubscriber {
 public:
  virtual ~InputSubscriber() = default;

  /// What becomes of the block that is being filled when the input ends.
  enum class LastBlock {
    kDelivered,
    kDropped,  ///< its last frames may come from another input
  };

  /// The device failed; this subscriber is no longer registered.
  ///
  /// Threads: the control thread, or that of the StallWatch. Real-time: not safe.
  virtual void inputFailed(AudioStatus status, LastBlock lastBlock) = 0;
};

/// The process's only input stream: opened for the first user or ahead of it, closed a few seconds
/// after the last has left. All users' sinks are attached to its fan-out.
///
/// It ends for all users when the stream fails, when the input that it captures from is lost, and
/// when nothing has arrived for too long; the last also while the control thread hangs. Meanwhile,
/// and until an input can be opened again, it follows which input there is.
///
/// Threads: any, except where noted. Real-time: not safe, except where noted.
class SharedInput final : public AudioInputClient,
                          public std::enable_shared_from_this<SharedInput> {
 public:
  /// How long the device stays open without a user, so that recording can resume after a short
  /// pause.
  static constexpr std::chrono::seconds kLinger{3};
  /// How often the stream's input is looked at: not every change is notified.
  static constexpr std::chrono::seconds kLookAtStream{1};
  /// How often a missing input is looked for: a sound system that is gone does not notify.
  static constexpr std::chrono::seconds kLookForInput{5};

  [[nodiscard]] static std::shared_ptr<SharedInput> create(std::shared_ptr<DeviceTasks> control,
                                                           std::shared_ptr<AudioClock> clock,
                                                           std::weak_ptr<StallWatch> stallWatch);

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
  [[nodiscard]] bool claimFailureAlert();

  /// AudioQueues::inputSource(), lostInput() and inputSourceRevision().
  [[nodiscard]] AudioInputSource source() const { return tracker_.source(); }
  [[nodiscard]] AudioInputSource lost() const { return tracker_.lost(); }
  [[nodiscard]] std::uint64_t sourceRevision() const { return tracker_.revision(); }

  [[nodiscard]] InputFanOut& fanOut() { return fanOut_; }

  /// Frames that vanished inside the sound system since the last call.
  [[nodiscard]] std::uint64_t takeFramesLostInSystem() {
    return framesLostInSystem_.exchange(0, std::memory_order_relaxed);
  }

  void deviceCaptured(const float* samples, std::uint32_t frames) noexcept override;
  void deviceInputFailed(AudioStatus status) noexcept override;

 private:
  enum class State { kClosed, kOpening, kOpen, kFailed };
  using LastBlock = InputSubscriber::LastBlock;

  SharedInput(std::shared_ptr<DeviceTasks> control, std::shared_ptr<AudioClock> clock,
              std::weak_ptr<StallWatch> stallWatch);

  /// Returns the number of this opening.
  std::uint64_t beginOpening() REQUIRES(mutex_);
  void scheduleClosing() REQUIRES(mutex_);
  /// Watches an opening and its stream, unless it is watched already.
  void watchForStall(std::uint64_t opening) EXCLUDES(mutex_);
  [[nodiscard]] bool isCurrent(std::uint64_t opening) EXCLUDES(mutex_);

  // On the control thread.
  void open(AudioDevice& device, std::uint64_t opening);
  void opened(std::uint64_t opening) EXCLUDES(mutex_);
  void tearDownFailed(AudioDevice& device);
  void scheduleLook(std::chrono::nanoseconds delay);
  void lookAtInputs(AudioDevice& device, bool changed) EXCLUDES(mutex_);
  void lose() EXCLUDES(mutex_);
  void lookForInput(AudioDevice& device) EXCLUDES(mutex_);
  void closeIfUnused() EXCLUDES(mutex_);
  void close();

  // On the control thread, or that of the stall watch.
  /// True if the opening, or its stream, is the last one and nobody else has ended it. The caller
  /// then ends it.
  [[nodiscard]] bool claimEnd(std::uint64_t opening) EXCLUDES(mutex_);
  void noteFailing() REQUIRES(mutex_);
  void fail(AudioStatus status) EXCLUDES(mutex_);
  void endUsers(AudioStatus status, LastBlock lastBlock, State next) EXCLUDES(mutex_);

  // On the stall watch's thread.
  void stalled(std::uint64_t opening) EXCLUDES(mutex_);

  // Fixed after construction.
  const std::shared_ptr<DeviceTasks> control_;
  const std::shared_ptr<AudioClock> clock_;
  const std::weak_ptr<StallWatch> stallWatch_;
  std::shared_ptr<DeviceTasks::Signal> failureSignal_;
  std::shared_ptr<DeviceTasks::Signal> inputsSignal_;
  const std::shared_ptr<StallWatch::Progress> calls_ = std::make_shared<StallWatch::Progress>(0);

  InputFanOut fanOut_;
  InputSourceTracker tracker_;  // thread-safe where noted

  // Written by the real-time thread; before the stream opens, by the control thread.
  CaptureLossDetector detector_;
  // Incremented by the real-time thread, reset by the thread that logs it.
  std::atomic<std::uint64_t> framesLostInSystem_{0};
  // Set by a thread of the device, cleared by the control thread; 0 is none.
  std::atomic<AudioStatus> pendingFailure_{kAudioStatusOk};

  // Control thread only.
  std::unique_ptr<AudioInputStream> stream_;
  std::uint64_t streamsOpening_ = 0;  // the opening that stream_ comes from
  std::optional<AudioClock::TimePoint> nextLook_;

  Mutex mutex_;
  State state_ GUARDED_BY(mutex_) = State::kClosed;
  // the opening under way, if any, was begun by prepare()
  bool preparing_ GUARDED_BY(mutex_) = false;
  AudioClock::TimePoint openingSince_ GUARDED_BY(mutex_);
  AudioClock::TimePoint unusedSince_ GUARDED_BY(mutex_);
  // The number of the last opening. One that was claimed for its end is no longer the last.
  std::uint64_t opening_ GUARDED_BY(mutex_) = 0;
  std::shared_ptr<StallWatch::Stream> watched_ GUARDED_BY(mutex_);
  RecentFailure failure_ GUARDED_BY(mutex_);
  bool failing_ GUARDED_BY(mutex_) =
      false;  // the last opening failed, or the device was lost since
  bool unreported_ GUARDED_BY(mutex_) = false;  // it began to fail and no alert was claimed yet
  std::vector<std::shared_ptr<InputSubscriber>> users_ GUARDED_BY(mutex_);
  // awaiting the opening under way
  std::vector<std::shared_ptr<TimedReply>> questions_ GUARDED_BY(mutex_);
};

}  // namespace platform
