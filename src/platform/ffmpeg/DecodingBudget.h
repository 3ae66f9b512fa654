#pragma once

#include <time.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>

namespace platform {

/// Decides when a call into FFmpeg must end early: because the user cancelled, or because a damaged
/// file causes endless work. A wrapped length field can make a demuxer search gigabytes for a
/// header's next field.
///
/// The limit counts the working thread's processor time, so that a sleeping disk or a busy machine
/// does not make a good file fail. The number of bytes read is limited as well.
///
/// Threads: the one that reads; the flag may be set by any thread at any time. Real-time: not safe.
class DecodingBudget {
 public:
  /// `cancelled` may be null for no cancellation.
  explicit DecodingBudget(std::shared_ptr<const std::atomic<bool>> cancelled)
      : cancelled_(std::move(cancelled)) {}

  [[nodiscard]] bool isCancelled() const {
    return cancelled_ != nullptr && cancelled_->load(std::memory_order_relaxed);
  }

  /// Whether to end now.
  [[nodiscard]] bool isDue() const {
    return isCancelled() || (deadline_ && (bytesLeft_ <= 0 || workDone() >= *deadline_));
  }

  /// Allows at most this much more work and this many more bytes, until lift().
  void limit(std::chrono::milliseconds work, std::int64_t bytes) {
    deadline_ = workDone() + work;
    bytesLeft_ = bytes;
  }
  /// The same unless a limit is already set; true if this one was set.
  bool limitIfNone(std::chrono::milliseconds work, std::int64_t bytes) {
    if (deadline_) {
      return false;
    }
    limit(work, bytes);
    return true;
  }
  void lift() { deadline_.reset(); }

  /// Counts bytes read from the system.
  void noteRead(std::uint64_t bytes) { bytesLeft_ -= static_cast<std::int64_t>(bytes); }

 private:
  // Processor time of this thread so far.
  [[nodiscard]] static std::chrono::nanoseconds workDone() {
    struct timespec time = {};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
  }

  // The flag guards no other data, so relaxed order is enough.
  const std::shared_ptr<const std::atomic<bool>> cancelled_;
  std::optional<std::chrono::nanoseconds> deadline_;  // of workDone(); none: no limit
  std::int64_t bytesLeft_ = 0;
};

}  // namespace platform
