#include "platform/mainloop/FailedWriteSignals.h"

#if defined(__unix__) || defined(__APPLE__)

#include <array>
#include <csignal>

namespace platform {
namespace {

// Unlike an ignored signal, one with a handler is back at its default in a program that is started.
extern "C" void writeFailed(int) {}

}  // namespace

void failWritesWithoutSignals() {
  for (const int signal : std::array{SIGPIPE, SIGXFSZ}) {
    struct sigaction action = {};
    ::sigaction(signal, nullptr, &action);
    if (action.sa_handler != SIG_IGN) {
      action = {};
      action.sa_handler = writeFailed;
      action.sa_flags = SA_RESTART;
      ::sigaction(signal, &action, nullptr);
    }
  }
}

}  // namespace platform

#else

namespace platform {

void failWritesWithoutSignals() {}

}  // namespace platform

#endif
