#include "platform/mainloop/TerminationSignals.h"

#include <utility>

#if defined(__unix__) || defined(__APPLE__)

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <ctime>
#include <limits>

#include <QSocketNotifier>

namespace platform {
namespace {

constexpr std::array kSignals{SIGTERM, SIGINT, SIGHUP};
constexpr std::size_t kSignalsToEnd = 3;

using Nanoseconds = std::int64_t;
constexpr Nanoseconds kNever = std::numeric_limits<Nanoseconds>::min();

// The handler's end of the pipe; -1 without a listener. Written only by the main thread.
std::atomic<int> wakeUp = -1;
// Written by the main thread before the handler is installed.
std::atomic<Nanoseconds> thirdSignalWindow = 0;
// The times of the last three signals, and how many there were. Written only by the handler, which
// can run on several threads at once; each call has an element of its own.
std::array<std::atomic<Nanoseconds>, kSignalsToEnd> times;
std::atomic<unsigned> signalCount = 0;
static_assert(std::atomic<int>::is_always_lock_free);
static_assert(std::atomic<Nanoseconds>::is_always_lock_free);

Nanoseconds now() {
  struct timespec time = {};
  ::clock_gettime(CLOCK_MONOTONIC, &time);  // async-signal-safe, unlike the clocks of <chrono>
  return Nanoseconds{time.tv_sec} * 1'000'000'000 + time.tv_nsec;
}

// Notes a signal; whether it is the third within the window.
bool isThirdOfThree() {
  const Nanoseconds time = now();
  const unsigned number = signalCount.fetch_add(1, std::memory_order_relaxed);
  times[number % kSignalsToEnd].store(time, std::memory_order_relaxed);
  const Nanoseconds first = times[(number + 1) % kSignalsToEnd].load(std::memory_order_relaxed);
  return first != kNever && time - first < thirdSignalWindow.load(std::memory_order_relaxed);
}

// Runs on any thread at any point: only async-signal-safe calls are allowed.
extern "C" void terminationSignalCame(int signal) {
  const int error = errno;
  if (isThirdOfThree()) {
    struct sigaction standard = {};
    standard.sa_handler = SIG_DFL;
    ::sigaction(signal, &standard, nullptr);
    ::raise(signal);  // takes effect when this handler returns
  }
  const char byte = 0;
  static_cast<void>(!::write(wakeUp.load(std::memory_order_relaxed), &byte, sizeof byte));
  errno = error;
}

}  // namespace

struct TerminationSignals::Handlers {
  Handlers(std::function<void()> terminate, std::chrono::nanoseconds window);
  ~Handlers();
  Handlers(const Handlers&) = delete;
  Handlers& operator=(const Handlers&) = delete;

  void listen(std::function<void()> terminate);

  std::array<int, 2> pipe{-1, -1};  // the handler writes, the main loop reads
  std::unique_ptr<QSocketNotifier> notifier;
  std::array<struct sigaction, kSignals.size()> before{};
};

TerminationSignals::Handlers::Handlers(std::function<void()> terminate,
                                       std::chrono::nanoseconds window) {
  if (::pipe(pipe.data()) != 0) {
    return;  // the signals keep their previous effect
  }
  for (const int end : pipe) {
    ::fcntl(end, F_SETFD, FD_CLOEXEC);
    ::fcntl(end, F_SETFL, O_NONBLOCK);
  }
  listen(std::move(terminate));
  thirdSignalWindow.store(window.count(), std::memory_order_relaxed);
  for (auto& time : times) {
    time.store(kNever, std::memory_order_relaxed);
  }
  wakeUp.store(pipe[1], std::memory_order_relaxed);
  struct sigaction action = {};
  action.sa_handler = terminationSignalCame;
  action.sa_flags = SA_RESTART;
  for (std::size_t i = 0; i < kSignals.size(); ++i) {
    ::sigaction(kSignals[i], nullptr, &before[i]);
    if (before[i].sa_handler != SIG_IGN) {
      ::sigaction(kSignals[i], &action, nullptr);
    }
  }
}

void TerminationSignals::Handlers::listen(std::function<void()> terminate) {
  notifier = std::make_unique<QSocketNotifier>(pipe[0], QSocketNotifier::Read);
  QObject::connect(notifier.get(), &QSocketNotifier::activated, notifier.get(),
                   [this, terminate = std::move(terminate)] {
                     std::array<char, 64> bytes{};
                     static_cast<void>(!::read(pipe[0], bytes.data(), bytes.size()));
                     terminate();
                   });
}

TerminationSignals::Handlers::~Handlers() {
  if (!notifier) {
    return;
  }
  for (std::size_t i = 0; i < kSignals.size(); ++i) {
    ::sigaction(kSignals[i], &before[i], nullptr);
  }
  wakeUp.store(-1, std::memory_order_relaxed);
  notifier.reset();
  for (const int end : pipe) {
    ::close(end);
  }
}

TerminationSignals::TerminationSignals(std::function<void()> terminate,
                                       std::chrono::nanoseconds window)
    : handlers_(std::make_unique<Handlers>(std::move(terminate), window)) {}

TerminationSignals::~TerminationSignals() = default;

}  // namespace platform

#else

namespace platform {

struct TerminationSignals::Handlers {};

TerminationSignals::TerminationSignals(std::function<void()>, std::chrono::nanoseconds) {}
TerminationSignals::~TerminationSignals() = default;

}  // namespace platform

#endif
