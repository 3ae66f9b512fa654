#pragma once

#include <memory>
#include <utility>

#include "platform/base/GuardedPointer.h"

namespace platform {

/// The implementation of an interface that a lower layer defines and a higher layer provides. The
/// static function T::whenNoneIsInstalled() makes the default: one that only writes to standard
/// error, or the operating system's where the lower layer can provide it.
///
/// The result of get() stays alive while it is held, even in a thread that outlives main.
///
/// Threads: any. Real-time: not safe.
template <typename T>
class Installed {
 public:
  /// The innermost scope's implementation, or the default. Never null.
  [[nodiscard]] static std::shared_ptr<T> get() { return slot().get(); }

  /// Installs an implementation while the scope lives. Scopes nest.
  class [[nodiscard]] Scope {
   public:
    explicit Scope(std::shared_ptr<T> implementation)
        : previous_(slot().exchange(std::move(implementation))) {}
    /// The caller keeps ownership; the implementation must outlive all its uses.
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
