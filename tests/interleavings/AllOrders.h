#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

/// Runs a few threads one step at a time, again and again, until every order of their steps was
/// tried. A step ends before each atomic operation and each operation of a Mutex or Condition; what
/// lies between runs undivided, and every thread sees at once what another wrote. So every order
/// that a sequentially consistent machine could choose is tried, up to a number of preemptions:
/// moves to another thread where the one that runs could go on. What lies between is watched: see
/// RaceWatch.h.
namespace interleavings {

/// What one run is made of. Everything that the threads share is made anew for each run.
struct Threads {
  std::vector<std::function<void()>> bodies;  ///< the first one runs on the caller's thread
  std::function<void()> atTheEnd = [] {};     ///< when all have ended; looks at the outcome
};

/// Ends with the first run in which an expectation fails, and prints its order. A run in which no
/// thread can go on, or that does not end, aborts the program. Returns the number of orders.
///
/// Threads: main.
std::uint64_t tryAllOrders(int preemptions, const std::function<Threads()>& make);

/// Whether the caller is a thread of a run. Elsewhere the functions below do nothing.
[[nodiscard]] bool isInRun();

/// The caller's place in Threads::bodies. Only in a run.
[[nodiscard]] std::size_t threadOfRun();

/// Another thread may go on here.
void step();

/// The thread goes on once this is true; it then is until the thread's next step.
void waitUntil(const std::function<bool()>& isTrue);

/// Steps that all threads together have made in this run.
[[nodiscard]] std::uint64_t steps();

/// The thread goes on once another one has made a step, or all others have ended: for loops that
/// look again and again, and have made no step since the last look.
void waitForAnotherThread();

/// Each number from 0 below `options` is tried.
[[nodiscard]] int choose(int options);

}  // namespace interleavings
