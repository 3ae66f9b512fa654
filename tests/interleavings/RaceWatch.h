#pragma once

#include <cstddef>

/// Finds memory that two threads of a run use without an order between them: one of them writes,
/// and no lock, no atomic operation that releases and none that acquires what was released stands
/// between. So it also notices an atomic operation whose memory order is too weak for what it
/// passes on, in any order of steps in which both uses occur.
///
/// Only runs are watched, and not what the scheduler itself looks at. Allocation is not watched
/// within uninstrumented libraries, but their memory is forgotten when it is freed.
///
/// Threads: any of a run; elsewhere the functions do nothing.
namespace interleavings {

/// A run begins, whose threads know of everything that was done before.
void beginWatch();

enum class Use { read, write };

/// A use of `size` bytes. Expects that it is ordered after those uses by other threads that do not
/// go with it. `caller` is told if not.
void use(Use kind, const volatile void* place, std::size_t size, const void* caller);

/// Memory that is freed: whoever gets it next is not compared with former owners.
void forget(const volatile void* place, std::size_t size);

/// What this thread did is passed on by `place`: in place of what others have passed on by it, or,
/// as an operation that reads and writes does, together with it.
void release(const volatile void* place);
void releaseToo(const volatile void* place);

/// A store that passes nothing on, nor what others did.
void forgetRelease(const volatile void* place);

/// What others have passed on by `place` is known to this thread.
void acquire(const volatile void* place);

/// As long as one exists, uses by this thread are not watched.
class Unwatched {
 public:
  Unwatched();
  ~Unwatched();
  Unwatched(const Unwatched&) = delete;
  Unwatched& operator=(const Unwatched&) = delete;
};

}  // namespace interleavings
