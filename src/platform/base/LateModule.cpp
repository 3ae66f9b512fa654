#include "platform/base/LateModule.h"

#include <dlfcn.h>

#include <string>

namespace platform {

void* loadModule(const char* name) {
  void* const module = dlopen((std::string(name) + ".so").c_str(), RTLD_LAZY | RTLD_LOCAL);
  void* const factory = module != nullptr ? dlsym(module, "orvoModule") : nullptr;
  if (factory == nullptr) {
    ConsoleLog("%s", dlerror());
  }
  return factory;
}

}  // namespace platform
