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
  // Without a server cubeb still succeeds with its last fallback, which works only on machines
  // where it can reach the hardware directly. So the real test is whether a stream opens.
  const char* backend = cubeb_get_backend_id(context_);
  const bool lastResort = std::strcmp(backend, "alsa") == 0;
  consoleLog_("No sound %s could be opened through \"%s\" (%d)%s", direction, backend, status,
              lastResort ? "; no sound server was found" : "");
}

}  // namespace platform
