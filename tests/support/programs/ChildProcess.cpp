#include "support/programs/ChildProcess.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <system_error>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace support {

namespace {

std::string describe(int errorNumber) {
  return std::generic_category().message(errorNumber);
}

/// An open, unlinked file, deleted with its last descriptor.
int openUnlinked() {
  std::FILE* stream = std::tmpfile();
  if (stream == nullptr) {
    return -1;
  }
  const int file = ::fcntl(::fileno(stream), F_DUPFD_CLOEXEC, 3);
  std::fclose(stream);
  return file;
}

std::string readAll(int file) {
  std::string text;
  std::array<char, 4096> part{};
  while (file >= 0) {
    const ssize_t count = ::pread(file, part.data(), part.size(), static_cast<off_t>(text.size()));
    if (count <= 0) {
      break;
    }
    text.append(part.data(), static_cast<std::size_t>(count));
  }
  return text;
}

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  pointers.reserve(texts.size() + 1);
  for (std::string& text : texts) {
    pointers.push_back(text.data());
  }
  pointers.push_back(nullptr);
  return pointers;
}

/// The child's work between fork and exec: system calls only, since other threads of the test may
/// hold any lock at the moment of the fork.
struct Launch {
  const char* program;
  char* const* arguments;
  char* const* environment;
  int input;
  int output;
  int error;
  int failurePipe;  ///< receives the errno of a failed exec; closed by a successful one
  pid_t parent;
};

[[noreturn]] void becomeProgram(const Launch& launch) {
  ::setpgid(0, 0);
  ::prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (::getppid() == launch.parent) {
    sigset_t none;
    sigemptyset(&none);
    ::pthread_sigmask(SIG_SETMASK, &none, nullptr);
    if (::dup2(launch.input, STDIN_FILENO) >= 0 && ::dup2(launch.output, STDOUT_FILENO) >= 0 &&
        ::dup2(launch.error, STDERR_FILENO) >= 0) {
      ::execve(launch.program, launch.arguments, launch.environment);
    }
  }
  const int failure = errno;
  static_cast<void>(!::write(launch.failurePipe, &failure, sizeof failure));
  ::_exit(127);
}

}  // namespace

Environment cleanEnvironment() {
  Environment environment{{"LC_ALL", "C.UTF-8"}};
  for (const char* name :
       {"PATH", "TMPDIR", "ASAN_OPTIONS", "LSAN_OPTIONS", "TSAN_OPTIONS", "UBSAN_OPTIONS"}) {
    if (const char* value = std::getenv(name)) {  // NOLINT(concurrency-mt-unsafe): never set here
      environment[name] = value;
    }
  }
  return environment;
}

Environment with(Environment base, const Environment& additions) {
  for (const auto& [name, value] : additions) {
    base[name] = value;
  }
  return base;
}

std::string findProgram(const std::string& name) {
  if (name.find('/') != std::string::npos) {
    return ::access(name.c_str(), X_OK) == 0 ? name : std::string();
  }
  const char* path = std::getenv("PATH");  // NOLINT(concurrency-mt-unsafe): never set here
  std::istringstream folders(path != nullptr ? path : "/usr/bin:/bin");
  for (std::string folder; std::getline(folders, folder, ':');) {
    std::string candidate = folder;
    candidate.append("/").append(name);
    if (::access(candidate.c_str(), X_OK) == 0) {
      return candidate;
    }
  }
  return {};
}

char processState(pid_t pid) {
  std::ifstream file("/proc/" + std::to_string(pid) + "/stat");
  std::ostringstream read;
  read << file.rdbuf();  // a process that ends meanwhile is an error of the read, not an exception
  const std::string text = read.str();
  const std::size_t nameEnd = text.rfind(") ");  // the name may contain brackets and spaces
  return nameEnd == std::string::npos || nameEnd + 2 >= text.size() ? '\0' : text[nameEnd + 2];
}

bool hasEnded(pid_t pid) {
  const char state = processState(pid);
  return state == '\0' || state == 'Z';
}

std::unique_ptr<ChildProcess> ChildProcess::start(const std::vector<std::string>& arguments,
                                                  const Environment& environment,
                                                  std::string& error,
                                                  const std::string& outputPath) {
  const std::string program = arguments.empty() ? std::string() : findProgram(arguments.front());
  if (program.empty()) {
    error = (arguments.empty() ? std::string("no program") : arguments.front()) + ": not found";
    return nullptr;
  }
  std::unique_ptr<ChildProcess> process(new ChildProcess);
  process->errorFile_ = openUnlinked();
  const int output = outputPath.empty() ? openUnlinked()
                                        : ::open(outputPath.c_str(),
                                                 O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
  const int input = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
  std::array<int, 2> failure{-1, -1};
  if (process->errorFile_ < 0 || output < 0 || input < 0 ||
      ::pipe2(failure.data(), O_CLOEXEC) != 0) {
    error = arguments.front() + ": " + describe(errno);
    for (const int file : {output, input}) {
      if (file >= 0) {
        ::close(file);
      }
    }
    return nullptr;
  }

  std::vector<std::string> argumentTexts = arguments;
  std::vector<std::string> environmentTexts;
  for (const auto& [name, value] : environment) {
    environmentTexts.push_back(name);
    environmentTexts.back().append("=").append(value);
  }
  const std::vector<char*> argumentPointers = pointersTo(argumentTexts);
  const std::vector<char*> environmentPointers = pointersTo(environmentTexts);
  const Launch launch{program.c_str(),
                      argumentPointers.data(),
                      environmentPointers.data(),
                      input,
                      output,
                      process->errorFile_,
                      failure[1],
                      ::getpid()};
  const pid_t pid = ::fork();
  if (pid == 0) {
    becomeProgram(launch);
  }
  const int forkError = errno;
  ::close(failure[1]);
  ::close(input);
  int childError = pid < 0 ? forkError : 0;
  if (pid > 0) {
    static_cast<void>(!::read(failure[0], &childError, sizeof childError));
  }
  ::close(failure[0]);
  if (outputPath.empty()) {
    process->outputFile_ = output;
  } else {
    ::close(output);
  }
  process->pid_ = pid;
  if (childError != 0) {
    error = program + ": " + describe(childError);
    return nullptr;
  }
  return process;
}

ChildProcess::~ChildProcess() {
  kill();
  for (const int file : {outputFile_, errorFile_}) {
    if (file >= 0) {
      ::close(file);
    }
  }
}

bool ChildProcess::isRunning() {
  if (pid_ <= 0 || ended_) {
    return false;
  }
  siginfo_t information{};
  if (::waitid(P_PID, static_cast<id_t>(pid_), &information, WEXITED | WNOHANG | WNOWAIT) == 0 &&
      information.si_pid == 0) {
    return true;
  }
  // The program has ended but is not reaped: its id, also the group's, cannot be reused yet, so its
  // remaining group can be killed safely now.
  ::kill(-pid_, SIGKILL);
  int status = 0;
  ::waitpid(pid_, &status, 0);
  ended_ =
      WIFSIGNALED(status) ? ExitStatus{0, WTERMSIG(status)} : ExitStatus{WEXITSTATUS(status), 0};
  return false;
}

std::optional<ExitStatus> ChildProcess::waitForExit(std::chrono::milliseconds patience) {
  static_cast<void>(eventually([this] { return !isRunning(); }, patience));
  return ended_;
}

void ChildProcess::signal(int number) {
  if (isRunning()) {
    ::kill(pid_, number);
  }
}

void ChildProcess::freeze() {
  signal(SIGSTOP);
  static_cast<void>(eventually([this] { return processState(pid_) == 'T' || !isRunning(); }));
}

void ChildProcess::thaw() {
  signal(SIGCONT);
}

void ChildProcess::kill() {
  if (isRunning()) {
    ::kill(pid_, SIGKILL);  // the group follows once its end is noticed
    static_cast<void>(waitForExit());
  }
}

ExitStatus ChildProcess::end(std::chrono::milliseconds patience) {
  signal(SIGTERM);
  if (!waitForExit(patience)) {
    kill();
  }
  return ended_.value_or(ExitStatus{0, SIGKILL});
}

std::string ChildProcess::output() const {
  return readAll(outputFile_);
}

std::string ChildProcess::errorOutput() const {
  return readAll(errorFile_);
}

Finished runToEnd(const std::vector<std::string>& arguments, const Environment& environment,
                  std::chrono::milliseconds patience) {
  Finished finished{{-1, 0}, {}, {}};
  const auto process = ChildProcess::start(arguments, environment, finished.error);
  if (process == nullptr) {
    return finished;
  }
  const auto status = process->waitForExit(patience);
  finished.output = process->output();
  finished.error = process->errorOutput();
  if (status) {
    finished.status = *status;
  } else {
    finished.error += arguments.front() + " did not end in time";
  }
  return finished;
}

}  // namespace support
