// Holds the recordings of a running Orvo, and writes those that would be lost when it has ended.

#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <memory>

#include "keeper/Keeper.h"
#include "platform/files/UserDataDirectory.h"
#include "platform/process/DescriptorChannel.h"
#include "platform/process/SpawnedProgram.h"

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
  Keeper keeper(
      std::make_unique<platform::DescriptorChannel>(SpawnedProgram::kInheritedDescriptor),
      {.dataDirectory = platform::userDataDirectory(), .patience = std::chrono::seconds(5)});
  keeper.listen();
  if (!keeper.recover()) {
    std::signal(SIGTERM, SIG_DFL);
    keeper.recoverAll();
  }
  return 0;
}
