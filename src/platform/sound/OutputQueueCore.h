#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <deque>
#include <memory>
#include <optional>

#include "platform/base/Mutex.h"
#include "platform/sound/AudioQueue.h"
#include "platform/sound/DeviceThread.h"
#include "platform/sound/LevelMeter.h"
#include "platform/sound/OutputFeeder.h"
#include "platform/sound/QueueBuffers.h"
#include "platform/sound/QueueThread.h"
#include "platform/sound/RecentFailure.h"
#include "platform/sound/StallWatch.h"
#include "platform/sound/TimedReply.h"

namespace platform {

/// The implementation of an output queue. It outlives its OutputQueueHandle while its thread, or a
/// stream on the control thread, still needs it.
///
/// Threads: as AudioOutputQueue, except where noted. Real-time: only deviceWants() is safe.
class OutputQueueCore final : public AudioOutputClient,
                              public std::enable_shared_from_this<OutputQueueCore> {
 public:
  /// Interval between checks of a draining queue's playing position.
  static constexpr std::chrono::milliseconds kDrainLook{10};
  /// Frames of silence after the last real frame that end a drain whatever the position: 2 s, for a
  /// device whose position does not move.
  static constexpr std::uint64_t kMaxDrainFrames = std::uint64_t{2} * kWorkingRate;

  static std::shared_ptr<OutputQueueCore> create(AudioOutputQueue& owner,
                                                 AudioOutputQueue::Callback callback,
                                                 std::shared_ptr<DeviceTasks> control,
                                                 std::shared_ptr<AudioClock> clock,
                                                 std::weak_ptr<StallWatch> stallWatch,
                                                 std::shared_ptr<RecentFailure> known);

  /// Opens the stream; waits at most kMaxWait, then assumes success.
  [[nodiscard]] AudioStatus open();

  [[nodiscard]] Result<AudioQueueBuffer*, AudioStatus> allocate(std::uint32_t byteCapacity);
  [[nodiscard]] AudioStatus enqueue(AudioQueueBuffer* buffer);
  [[nodiscard]] AudioStatus start();
  [[nodiscard]] AudioStatus pause();
  [[nodiscard]] AudioStatus stopAfterQueued();
  void stop();
  void dispose();
  [[nodiscard]] AudioStatus setRunningListener(AudioOutputQueue::RunningListener listener);
  [[nodiscard]] bool isRunning() const;
  [[nodiscard]] AudioStatus failure() const;
  [[nodiscard]] std::uint64_t underrunFrames() const { return feeder_.underrunFrames(); }
  [[nodiscard]] LevelMeter& levels() { return levels_; }

  void deviceWants(float* samples, std::uint32_t frames) noexcept override;
  void deviceOutputFailed(AudioStatus status) noexcept override;

 private:
  // kEnded: drained or failed.
  enum class State { kCreated, kRunning, kPaused, kEnded, kStopped };

  OutputQueueCore(AudioOutputQueue& owner, AudioOutputQueue::Callback callback,
                  std::shared_ptr<DeviceTasks> control, std::shared_ptr<AudioClock> clock,
                  std::weak_ptr<StallWatch> stallWatch, std::shared_ptr<RecentFailure> known);

  [[nodiscard]] AudioStatus ask(void (OutputQueueCore::*task)(TimedReply&));
  void logUnderruns() const;
  void watchForStall() EXCLUDES(mutex_);
  /// Ends the queue with a failure, whose stream is still to be closed. Threads: any.
  void end(AudioStatus status, TimedReply* answer) EXCLUDES(mutex_);

  // On the stall watch's thread.
  void stalled() EXCLUDES(mutex_);

  // On the control thread.
  void openStream(AudioDevice& device, TimedReply& answer);
  void startStream(TimedReply& answer);
  void pauseStream(TimedReply& answer);
  void watchDrain() EXCLUDES(mutex_);
  void endDrained() EXCLUDES(mutex_);
  void fail(AudioStatus status, TimedReply* answer) EXCLUDES(mutex_);

  // On the queue's thread.
  void serve() EXCLUDES(mutex_);
  void returnTaken() EXCLUDES(mutex_);
  void notifyListener(bool running);

  // Fixed after construction.
  AudioOutputQueue& owner_;
  const std::shared_ptr<DeviceTasks> control_;
  const std::shared_ptr<AudioClock> clock_;
  const std::shared_ptr<RecentFailure> known_;
  const AudioClock::TimePoint created_;
  AudioOutputQueue::Callback callback_;  // released by dispose(), when no callback runs any more
  const std::weak_ptr<StallWatch> stallWatch_;
  std::shared_ptr<DeviceTasks::Signal> failureSignal_;
  const std::shared_ptr<StallWatch::Progress> calls_ = std::make_shared<StallWatch::Progress>(0);

  LevelMeter levels_;
  QueueThread thread_;
  OutputFeeder feeder_;

  // Set by a thread of the device, taken by the control thread; 0 is none.
  std::atomic<AudioStatus> pendingFailure_{kAudioStatusOk};

  // Control thread only.
  std::unique_ptr<AudioOutputStream> stream_;
  bool watching_ = false;  // a check of the drain is posted

  // Queue's thread only: the state that the running listener is being notified of.
  std::optional<bool> notified_;
  // Set while kCreated, before the queue's thread runs; released by dispose(), after it.
  AudioOutputQueue::RunningListener listener_;

  mutable Mutex mutex_;
  State state_ GUARDED_BY(mutex_) = State::kCreated;
  bool draining_ GUARDED_BY(mutex_) = false;
  bool running_ GUARDED_BY(mutex_) = false;      // the running state as the device has it
  bool openSettled_ GUARDED_BY(mutex_) = false;  // the opening has succeeded or failed
  AudioStatus failure_ GUARDED_BY(mutex_) = kAudioStatusOk;
  std::shared_ptr<StallWatch::Stream> watched_ GUARDED_BY(mutex_);  // while kRunning
  std::deque<bool> changes_ GUARDED_BY(mutex_);  // of the running state, not yet notified
  QueueBuffers buffers_ GUARDED_BY(mutex_);
};

}  // namespace platform
