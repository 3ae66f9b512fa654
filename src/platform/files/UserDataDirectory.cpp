#include "platform/files/UserDataDirectory.h"

#include <cstdlib>

namespace platform {

std::string userDataDirectory() {
  // Nothing in the program changes the environment.
  const char* const data = std::getenv("XDG_DATA_HOME");  // NOLINT(concurrency-mt-unsafe)
  if (data != nullptr && *data == '/') {
    return data;
  }
  const char* const home = std::getenv("HOME");  // NOLINT(concurrency-mt-unsafe)
  return home != nullptr && *home == '/' ? std::string(home) + "/.local/share" : std::string();
}

}  // namespace platform
