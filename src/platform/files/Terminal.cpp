#include "platform/files/Terminal.h"

#include <sys/ioctl.h>

namespace platform {

std::optional<int> terminalColumns(std::FILE* stream) {
  winsize size = {};
  const bool isKnown = ::ioctl(::fileno(stream), TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
  return isKnown ? std::optional<int>(size.ws_col) : std::nullopt;
}

}  // namespace platform
