#include "platform/process/SessionManagerLoss.h"

#include <array>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

#include "platform/base/MainThread.h"

namespace platform {

namespace {

// As in ICElib.h, which is not needed to build the program.
using Connection = struct IceConnection*;
using ErrorHandler = void (*)(Connection);
using SetErrorHandler = ErrorHandler (*)(ErrorHandler);
using ConnectionNumber = int (*)(Connection);

ConnectionNumber connectionNumber = nullptr;

// Qt goes on to watch the connection and, at its end, to write to it: it gets one on which nothing
// ever comes, since the broken one would report its end without a pause.
void replaceConnection(Connection connection) {
  std::array<int, 2> silent{};
  if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, silent.data()) != 0) {
    return;
  }
  ::dup3(silent[0], connectionNumber(connection), O_CLOEXEC);
  ::close(silent[0]);  // the other end stays open as long as the program runs
}

}  // namespace

void outliveSessionManager() {
  assertMainThread();
  // Only if Qt has loaded it: not on Wayland.
  void* const library = ::dlopen("libICE.so.6", RTLD_LAZY | RTLD_NOLOAD);
  if (library == nullptr) {
    return;
  }
  const auto setErrorHandler =
      reinterpret_cast<SetErrorHandler>(::dlsym(library, "IceSetIOErrorHandler"));
  connectionNumber = reinterpret_cast<ConnectionNumber>(::dlsym(library, "IceConnectionNumber"));
  if (setErrorHandler != nullptr && connectionNumber != nullptr) {
    setErrorHandler(replaceConnection);
  }
}

}  // namespace platform
