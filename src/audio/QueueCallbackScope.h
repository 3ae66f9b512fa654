#pragma once

#include <memory>
#include <utility>

#include "platform/mainloop/MainQueue.h"
#include "platform/sound/AudioQueue.h"

/// Marks that the calling thread runs a callback of the queue that `owner` owns. If the owner's
/// last reference is released inside such a callback, the queue must not be destroyed there, since
/// its thread would wait for itself.
///
/// Threads: those of audio queues, one scope per callback; scopes nest. Real-time: not safe.
class QueueCallbackScope {
 public:
  explicit QueueCallbackScope(const void* owner) : previous_(std::exchange(current_, owner)) {}
  ~QueueCallbackScope() { current_ = previous_; }
  QueueCallbackScope(const QueueCallbackScope&) = delete;
  QueueCallbackScope& operator=(const QueueCallbackScope&) = delete;

  /// Whether the innermost callback running on this thread is of `owner`'s queue.
  [[nodiscard]] static bool isInside(const void* owner) { return current_ == owner; }

 private:
  static thread_local inline const void* current_ = nullptr;
  const void* previous_;
};

/// A queue callback that calls `function` of the owner inside a scope. It keeps the owner alive
/// while it runs, and does nothing once the owner is destroyed.
template <typename Owner, typename... Arguments>
auto queueCallback(Owner* owner, void (Owner::*function)(Arguments...)) {
  return [owner, weak = owner->weak_from_this(), function](Arguments... arguments) {
    const QueueCallbackScope scope(owner);
    if (const auto self = weak.lock()) {
      ((*self).*function)(std::forward<Arguments>(arguments)...);
    }
  };
}

/// Destroys a stopped queue: here, or later on the main thread if this is a thread of that queue.
/// `maker` outlives it.
template <typename Queue>
void releaseQueue(std::unique_ptr<Queue> queue, std::shared_ptr<platform::AudioQueues> maker,
                  const void* owner) {
  if (queue && QueueCallbackScope::isInside(owner)) {
    platform::mainQueue().async(
        [keptMaker = std::move(maker), last = std::shared_ptr<Queue>(std::move(queue))] {});
  }
}
