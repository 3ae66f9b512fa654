#include "platform/files/Descriptors.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <vector>

namespace platform {
namespace {

constexpr std::size_t kDescriptorsAtATime = 1024;

// How many of `count` descriptors from `first` on are not open. Opens nothing itself: another
// thread may need the last free descriptor.
std::size_t freeAmong(std::size_t first, std::size_t count) {
  std::vector<pollfd> descriptors(count);
  for (std::size_t i = 0; i < count; ++i) {
    descriptors[i].fd = static_cast<int>(first + i);
  }
  int result = 0;
  do {
    result = ::poll(descriptors.data(), static_cast<nfds_t>(count), 0);
  } while (result < 0 && errno == EINTR);
  if (result < 0) {
    return count;  // unknown: the operation itself reports it
  }
  return static_cast<std::size_t>(
      std::count_if(descriptors.begin(), descriptors.end(),
                    [](const pollfd& one) { return (one.revents & POLLNVAL) != 0; }));
}

}  // namespace

void occupyStandardStreams() {
  for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream) {
    if (::fcntl(stream, F_GETFD) < 0 && errno == EBADF) {
      // The lowest free descriptor, which is this one.
      static_cast<void>(::open("/dev/null", stream == STDIN_FILENO ? O_RDONLY : O_WRONLY));
    }
  }
}

void raiseDescriptorLimit() {
  rlimit limit = {};
  if (::getrlimit(RLIMIT_NOFILE, &limit) != 0 || limit.rlim_cur >= kWantedDescriptors) {
    return;
  }
  limit.rlim_cur = std::min<rlim_t>(limit.rlim_max, kWantedDescriptors);
  ::setrlimit(RLIMIT_NOFILE, &limit);  // a system that refuses leaves the limit as it is
}

bool hasFreeDescriptors(std::size_t count) {
  rlimit limit = {};
  if (::getrlimit(RLIMIT_NOFILE, &limit) != 0) {
    return true;
  }
  std::size_t found = 0;
  for (std::size_t first = 0; first < limit.rlim_cur && found < count;
       first += kDescriptorsAtATime) {
    found += freeAmong(first, std::min<std::size_t>(kDescriptorsAtATime, limit.rlim_cur - first));
  }
  return found >= count;
}

}  // namespace platform
