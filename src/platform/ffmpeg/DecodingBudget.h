#pragma once

#include <time.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>

namespace platform {

/// Decides when a call into the decoding libraries has to end early: because its caller has changed
/// their mind, or because a file makes it work without end. A wrapped length field can make a
/// demuxer search gigabytes for a header's next field.
///
/// The limit counts the processor time of the thread that works: neither a disk that has to wake up
/// nor a busy machine makes a good file bad. The bytes read are limited beside it.
///
/// Threads: the one that reads; the flag may be set by any thread at any time. Real-time: not safe.
class DecodingBudget {
 public:
  /// `cancelled` may be null: nobody cancels.
  explicit DecodingBudget(std::shared_ptr<const std::atomic<bool>> cancelled)
      : cancelled_(std::move(cancelled)) {}

  [[nodiscard]] bool isCancelled() const {
    return cancelled_ != nullptr && cancelled_->load(std::memory_order_relaxed);
  }

  /// Whether to end now.
  [[nodiscard]] bool isDue() const {
    return isCancelled() || (deadline_ && (bytesLeft_ <= 0 || workDone() >= *deadline_));
  }

  /// From now on at most so much work and so many bytes, until lift().
  void limit(std::chrono::milliseconds work, std::int64_t bytes) {
    deadline_ = workDone() + work;
    bytesLeft_ = bytes;
  }
  /// The same where there is no limit yet; whether it is this one that holds now.
  bool limitIfNone(std::chrono::milliseconds work, std::int64_t bytes) {
    if (deadline_) {
      return false;
    }
    limit(work, bytes);
    return true;
  }
  void lift() { deadline_.reset(); }

  /// A read of the system gave so many bytes.
  void noteRead(std::uint64_t bytes) { bytesLeft_ -= static_cast<std::int64_t>(bytes); }

 private:
  // Processor time of this thread so far.
  [[nodiscard]] static std::chrono::nanoseconds workDone() {
    struct timespec time = {};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
  }

  // A hint and nothing more is read through the flag, so relaxed order serves.
  const std::shared_ptr<const std::atomic<bool>> cancelled_;
  std::optional<std::chrono::nanoseconds> deadline_;  // of workDone(); none: no limit
  std::int64_t bytesLeft_ = 0;
};

}  // namespace platform
