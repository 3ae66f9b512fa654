#pragma once

#include <memory>
#include <utility>

#include "platform/base/GuardedPointer.h"

namespace platform {

/// The implementation of an interface that a lower layer owns and a higher one provides. T has a
/// static `whenNoneIsInstalled()` that makes the default: one that only writes to standard error,
/// or the operating system's where the lower layer can provide that itself.
///
/// What get() returned stays alive for as long as it is held, also where a thread outlives main.
///
/// Threads: any. Real-time: not safe.
template <typename T>
class Installed {
 public:
  /// The implementation of the innermost scope, otherwise the default. Never null.
  [[nodiscard]] static std::shared_ptr<T> get() { return slot().get(); }

  /// Installs an implementation for as long as the scope lives. Scopes nest.
  class [[nodiscard]] Scope {
   public:
    explicit Scope(std::shared_ptr<T> implementation)
        : previous_(slot().exchange(std::move(implementation))) {}
    /// The caller keeps the implementation, which must outlive all its uses.
    explicit Scope(T& implementation)
        : Scope(std::shared_ptr<T>(std::shared_ptr<void>(), &implementation)) {}
    ~Scope() { slot().set(std::move(previous_)); }
    Scope(const Scope&) = delete;
    Scope& operator=(const Scope&) = delete;

   private:
    std::shared_ptr<T> previous_;
  };

 private:
  // Never destroyed: threads may outlive main.
  static GuardedPointer<std::shared_ptr<T>>& slot() {
    static auto* const slot = new GuardedPointer<std::shared_ptr<T>>(T::whenNoneIsInstalled());
    return *slot;
  }
};

}  // namespace platform
