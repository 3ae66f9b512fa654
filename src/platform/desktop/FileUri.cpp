#include "platform/desktop/FileUri.h"

#include <glib.h>

#include <memory>

namespace platform {
namespace {

struct Free {
  void operator()(char* text) const { g_free(text); }
};
using Text = std::unique_ptr<char, Free>;

}  // namespace

std::string fileUriOf(const std::string& path) {
  const Text uri(g_filename_to_uri(path.c_str(), nullptr, nullptr));
  return uri ? uri.get() : "";
}

std::optional<std::string> pathOfFileUri(const std::string& uri) {
  char* machine = nullptr;
  const Text path(g_filename_from_uri(uri.c_str(), &machine, nullptr));
  const Text owned(machine);
  const bool isHere = machine == nullptr || g_ascii_strcasecmp(machine, "localhost") == 0;
  return path && isHere ? std::optional<std::string>(path.get()) : std::nullopt;
}

}  // namespace platform
