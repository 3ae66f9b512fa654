#include "platform/process/SpawnedProgram.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>

namespace platform {
namespace {

// What the new process does before it becomes the program.
class SpawnSettings {
 public:
  explicit SpawnSettings(int inherited) {
    posix_spawn_file_actions_init(&files_);
    posix_spawn_file_actions_adddup2(&files_, inherited, SpawnedProgram::kInheritedDescriptor);
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
      posix_spawn_file_actions_addopen(&files_, stream, "/dev/null", O_RDWR, 0);
    }
    posix_spawnattr_init(&attributes_);
    sigset_t blocked;
    sigemptyset(&blocked);
    for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGTERM}) {
      sigaddset(&blocked, signal);
    }
    posix_spawnattr_setsigmask(&attributes_, &blocked);
    short flags = POSIX_SPAWN_SETSIGMASK;
#if defined(POSIX_SPAWN_SETSID)
    flags = static_cast<short>(flags | POSIX_SPAWN_SETSID);
#endif
    posix_spawnattr_setflags(&attributes_, flags);
  }
  ~SpawnSettings() {
    posix_spawnattr_destroy(&attributes_);
    posix_spawn_file_actions_destroy(&files_);
  }
  SpawnSettings(const SpawnSettings&) = delete;
  SpawnSettings& operator=(const SpawnSettings&) = delete;

  [[nodiscard]] const posix_spawn_file_actions_t* files() const {
    return &files_;
  }
  [[nodiscard]] const posix_spawnattr_t* attributes() const {
    return &attributes_;
  }

 private:
  posix_spawn_file_actions_t files_{};
  posix_spawnattr_t attributes_{};
};

}  // namespace

Result<std::unique_ptr<SpawnedProgram>> SpawnedProgram::start(const std::string& path,
                                                              int descriptor) {
  const SpawnSettings settings(descriptor);
  std::string name = path;
  const std::array<char*, 2> arguments{name.data(), nullptr};
  pid_t number = 0;
  const int error = ::posix_spawn(&number, path.c_str(), settings.files(), settings.attributes(),
                                  arguments.data(), environ);
  if (error != 0) {
    return error;
  }
  return std::unique_ptr<SpawnedProgram>(new SpawnedProgram(number));
}

SpawnedProgram::~SpawnedProgram() {
  static_cast<void>(hasEnded());
}

bool SpawnedProgram::hasEnded() {
  if (!hasEnded_) {
    hasEnded_ = ::waitpid(number_, nullptr, WNOHANG) != 0;
  }
  return hasEnded_;
}

void SpawnedProgram::kill() {
  if (!hasEnded()) {  // so the number is still its own
    ::kill(number_, SIGKILL);
  }
}

}  // namespace platform
