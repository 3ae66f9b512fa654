#pragma once

#include <array>
#include <atomic>
#include <cstddef>

namespace platform {

/// A lock-free queue of at most `kRoom` small values between one producer and one consumer.
///
/// Threads: construction and destruction while neither uses it.
template <typename Value, std::size_t kRoom>
class SpscQueue {
 public:
  /// False when the queue is full.
  ///
  /// Threads: the producer, one at a time.
  /// Real-time: safe.
  [[nodiscard]] bool push(Value value) noexcept {
    const std::size_t head = head_.load(std::memory_order_relaxed);
    if (head - tail_.load(std::memory_order_acquire) == kRoom) {
      return false;
    }
    values_[head % kRoom] = value;
    head_.store(head + 1, std::memory_order_release);
    return true;
  }

  /// False when the queue is empty; `value` is then unchanged.
  ///
  /// Threads: the consumer, one at a time.
  /// Real-time: safe.
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
  // Invariant: tail_ <= head_ <= tail_ + kRoom. Values numbered [tail_, head_) wait and belong to
  // the consumer, the other places to the producer. Value n is stored at n modulo kRoom.
  std::array<Value, kRoom> values_{};
  // Only writer: the producer, with release after the value was written.
  alignas(64) std::atomic<std::size_t> head_{0};
  // Only writer: the consumer, with release after the value was read.
  alignas(64) std::atomic<std::size_t> tail_{0};
};

}  // namespace platform
