// Holds the recordings of a running Orvo, and writes those that would be lost when it has ended.

#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <memory>
#include <thread>

#include "keeper/Keeper.h"
#include "platform/files/UserDataDirectory.h"
#include "platform/process/DescriptorChannel.h"
#include "platform/process/SpawnedProgram.h"

namespace {

constexpr std::chrono::seconds kPatience{5};  // between two tries on a full disk

void changeMask(int how, int signal) {
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, signal);
  ::sigprocmask(how, &signals, nullptr);
}

// From the first wait on a termination signal ends the keeper here, but not while a recording that
// is being moved would end with it.
void wait(const Keeper& keeper) {
  if (!keeper.isMoving()) {
    std::signal(SIGTERM, SIG_DFL);
    changeMask(SIG_UNBLOCK, SIGTERM);
  }
  std::this_thread::sleep_for(kPatience);
  changeMask(SIG_BLOCK, SIGTERM);
}

}  // namespace

int main() {
  using platform::SpawnedProgram;
  // It ends with the program, not by a signal to everything in a session, unless it has to wait.
  for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGPIPE, SIGXFSZ}) {
    std::signal(signal, SIG_IGN);
  }
  sigset_t none;
  sigemptyset(&none);
  ::sigprocmask(SIG_SETMASK, &none, nullptr);  // they were blocked until now
  ::umask(077);
  if (::chdir("/") != 0) {
    return 1;
  }
#if defined(__linux__)
  ::close_range(SpawnedProgram::kInheritedDescriptor + 1, ~0U, 0);
#endif
  Keeper keeper(std::make_unique<platform::DescriptorChannel>(SpawnedProgram::kInheritedDescriptor),
                platform::userDataDirectory());
  keeper.listen();
  while (!keeper.recover()) {
    wait(keeper);
  }
  return 0;
}
