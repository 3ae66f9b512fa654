#pragma once

#include <functional>

#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace support {

/// Whether `work` makes no system call but read, write and the return from a signal: it runs in a
/// copy of this process, which the kernel kills at any other. What it changes is lost, except in
/// shared memory. Only on Linux.
///
/// Threads: any one at a time; no lock that `work` takes may be held by another thread.
[[nodiscard]] inline bool makesNoSystemCalls(const std::function<void()>& work) {
  const pid_t child = ::fork();
  if (child == 0) {
    constexpr int kNotWatched = 2;
    if (::prctl(PR_SET_SECCOMP, SECCOMP_MODE_STRICT) != 0) {
      ::_exit(kNotWatched);
    }
    work();
    ::syscall(SYS_exit, 0);  // _exit() would end all threads, which is another call
  }
  int status = 0;
  return ::waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

}  // namespace support
