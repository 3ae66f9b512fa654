#include "platform/mainloop/TerminationSignals.h"

#include <utility>

#if defined(__unix__) || defined(__APPLE__)

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>

#include <QSocketNotifier>

namespace platform {
namespace {

constexpr std::array kSignals{SIGTERM, SIGINT, SIGHUP};

// The handler's end of the pipe; -1 without a listener. Written only by the main thread.
std::atomic<int> wakeUp = -1;
static_assert(std::atomic<int>::is_always_lock_free);

// Runs on any thread at any point: only async-signal-safe calls are allowed.
extern "C" void terminationSignalCame(int) {
  const int error = errno;
  const char byte = 0;
  static_cast<void>(!::write(wakeUp.load(std::memory_order_relaxed), &byte, sizeof byte));
  errno = error;
}

}  // namespace

struct TerminationSignals::Handlers {
  explicit Handlers(std::function<void()> terminate);
  ~Handlers();
  Handlers(const Handlers&) = delete;
  Handlers& operator=(const Handlers&) = delete;

  std::array<int, 2> pipe{-1, -1};  // the handler writes, the main loop reads
  std::unique_ptr<QSocketNotifier> notifier;
  std::array<struct sigaction, kSignals.size()> before{};
};

TerminationSignals::Handlers::Handlers(std::function<void()> terminate) {
  if (::pipe(pipe.data()) != 0) {
    return;  // the signals keep their previous effect
  }
  for (const int end : pipe) {
    ::fcntl(end, F_SETFD, FD_CLOEXEC);
    ::fcntl(end, F_SETFL, O_NONBLOCK);
  }
  notifier = std::make_unique<QSocketNotifier>(pipe[0], QSocketNotifier::Read);
  QObject::connect(notifier.get(), &QSocketNotifier::activated, notifier.get(),
                   [this, terminate = std::move(terminate)] {
                     std::array<char, 16> bytes{};
                     static_cast<void>(!::read(pipe[0], bytes.data(), bytes.size()));
                     terminate();
                   });
  wakeUp.store(pipe[1], std::memory_order_relaxed);
  struct sigaction once = {};
  once.sa_handler = terminationSignalCame;
  once.sa_flags = static_cast<int>(SA_RESETHAND | SA_RESTART);
  for (std::size_t i = 0; i < kSignals.size(); ++i) {
    ::sigaction(kSignals[i], nullptr, &before[i]);
    if (before[i].sa_handler != SIG_IGN) {
      ::sigaction(kSignals[i], &once, nullptr);
    }
  }
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

TerminationSignals::TerminationSignals(std::function<void()> terminate)
    : handlers_(std::make_unique<Handlers>(std::move(terminate))) {}

TerminationSignals::~TerminationSignals() = default;

}  // namespace platform

#else

namespace platform {

struct TerminationSignals::Handlers {};

TerminationSignals::TerminationSignals(std::function<void()>) {}
TerminationSignals::~TerminationSignals() = default;

}  // namespace platform

#endif
