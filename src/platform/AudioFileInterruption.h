#pragma once

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
/// The limit counts work, not waiting: the time that the system takes for a read is given back, so
/// that a sleeping disk does not make a good file bad. The bytes read are limited instead.
///
/// Threads: the one that reads; the flag may be set by any thread at any time. Real-time: not safe.
class AudioFileInterruption {
 public:
  using Clock = std::chrono::steady_clock;

  /// `cancelled` may be null: nobody cancels.
  explicit AudioFileInterruption(std::shared_ptr<const std::atomic<bool>> cancelled)
      : cancelled_(std::move(cancelled)) {}

  [[nodiscard]] bool isCancelled() const {
    return cancelled_ != nullptr && cancelled_->load(std::memory_order_relaxed);
  }

  /// Whether to end now.
  [[nodiscard]] bool isDue() const {
    return isCancelled() || (deadline_ && (bytesLeft_ <= 0 || Clock::now() >= *deadline_));
  }

  /// From now on at most so much work and so many bytes, until lift().
  void limit(std::chrono::milliseconds work, std::int64_t bytes) {
    deadline_ = Clock::now() + work;
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

  /// A read of the system took so long and gave so many bytes.
  void noteRead(Clock::duration waited, std::uint64_t bytes) {
    if (deadline_) {
      *deadline_ += waited;
      bytesLeft_ -= static_cast<std::int64_t>(bytes);
    }
  }

 private:
  // A hint and nothing more is read through the flag, so relaxed order serves.
  const std::shared_ptr<const std::atomic<bool>> cancelled_;
  std::optional<Clock::time_point> deadline_;  // none: no limit
  std::int64_t bytesLeft_ = 0;
};

}  // namespace platform
