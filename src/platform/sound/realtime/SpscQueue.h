#pragma once

#include <array>
#include <atomic>
#include <cstddef>

namespace platform {

/// A lock-free queue of small values between one producer and one consumer.
///
/// Threads: push() on one at a time, pop() on one at a time. Real-time: safe.
template <typename Value, std::size_t kRoom>
class SpscQueue {
 public:
  /// False when `kRoom` values wait already.
  [[nodiscard]] bool push(Value value) noexcept {
    const std::size_t head = head_.load(std::memory_order_relaxed);
    if (head - tail_.load(std::memory_order_acquire) == kRoom) {
      return false;
    }
    values_[head % kRoom] = value;
    head_.store(head + 1, std::memory_order_release);
    return true;
  }

  /// False when none waits.
  [[nodiscard]] bool pop(Value& value) noexcept {
    const std::size_t tail = tail_.load(std::memory_order_relaxed);
    if (head_.load(std::memory_order_acquire) == tail) {
      return false;
    }
    value = values_[tail % kRoom];
    tail_.store(tail + 1, std::memory_order_release);
    return true;
  }

 private:
  // Values numbered [tail_, head_) wait and belong to the consumer.
  std::array<Value, kRoom> values_{};
  alignas(64) std::atomic<std::size_t> head_{0};  // only writer: the producer
  alignas(64) std::atomic<std::size_t> tail_{0};  // only writer: the consumer
};

}  // namespace platform
