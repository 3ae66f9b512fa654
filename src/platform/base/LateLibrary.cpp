#include "platform/base/LateLibrary.h"

#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "platform/base/ApplicationServices.h"

namespace platform {

bool LateLibrary::load() {
  std::call_once(once_, [this] {
    const std::string file = "lib" + std::string(name_) + ".so." + std::to_string(version_);
    library_ = dlopen(file.c_str(), RTLD_LAZY | RTLD_LOCAL);
    if (library_ == nullptr) {
      ConsoleLog("%s", dlerror());
    }
  });
  return library_ != nullptr;
}

void* LateLibrary::functionNamed(const char* name) {
  void* const address = load() ? dlsym(library_, name) : nullptr;
  if (address == nullptr) {
    std::fprintf(stderr, "The library %s has no %s\n", name_, name);
    std::abort();
  }
  return address;
}

}  // namespace platform
