#include "platform/cubeb/CubebConnection.h"

#include <cstring>

namespace platform {

std::shared_ptr<CubebConnection> CubebConnection::make(ModuleConsole* consoleLog) {
  cubeb* context = nullptr;
  const int result = cubeb_init(&context, "Orvo", nullptr);
  if (result != CUBEB_OK) {
    consoleLog("No sound system could be reached (%d)", result);
    return nullptr;
  }
  return std::make_shared<CubebConnection>(context, consoleLog);
}

void CubebConnection::logFailure(const char* direction, AudioStatus status) const {
  // With no server the library still says yes, with its last resort, which works on a machine
  // whose hardware it can reach alone and nowhere else. So what counts is whether a stream opens.
  const char* backend = cubeb_get_backend_id(context_);
  const bool lastResort = std::strcmp(backend, "alsa") == 0;
  consoleLog_("No sound %s could be opened through \"%s\" (%d)%s", direction, backend, status,
              lastResort ? "; no sound server was found" : "");
}

}  // namespace platform
