#pragma once

#include <chrono>

#include "platform/base/AudioTypes.h"
#include "platform/base/Mutex.h"
#include "platform/sound/AudioClock.h"

namespace platform {

/// Remembers a device failure for one second, so that requests meanwhile fail at once. After that
/// the device is tried again, since it may be back.
///
/// Threads: any. Real-time: not safe.
class RecentFailure {
 public:
  static constexpr std::chrono::seconds kMemory{1};

  void note(AudioStatus status, AudioClock::TimePoint now) {
    const MutexLock lock(mutex_);
    status_ = status;
    since_ = now;
  }

  void clear() {
    const MutexLock lock(mutex_);
    status_ = kAudioStatusOk;
  }

  /// The failure if it is less than a second old at `now`, otherwise kAudioStatusOk.
  [[nodiscard]] AudioStatus recent(AudioClock::TimePoint now) const {
    const MutexLock lock(mutex_);
    return now - since_ < kMemory ? status_ : kAudioStatusOk;
  }

 private:
  mutable Mutex mutex_;
  AudioStatus status_ GUARDED_BY(mutex_) = kAudioStatusOk;
  AudioClock::TimePoint since_ GUARDED_BY(mutex_);
};

}  // namespace platform
