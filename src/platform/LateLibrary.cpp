#include "platform/LateLibrary.h"

#include <cstdio>
#include <cstdlib>

#include <QLibrary>

#include "platform/ApplicationServices.h"

namespace platform {

bool LateLibrary::load() {
  std::call_once(once_, [this] {
    library_ = new QLibrary(QString::fromUtf8(name_), version_);
    if (!library_->load()) {
      ConsoleLog("%s", library_->errorString().toUtf8().constData());
    }
  });
  return library_->isLoaded();
}

void* LateLibrary::functionNamed(const char* name) {
  const auto address = load() ? library_->resolve(name) : nullptr;
  if (address == nullptr) {
    std::fprintf(stderr, "The library %s has no %s\n", name_, name);
    std::abort();
  }
  return reinterpret_cast<void*>(address);
}

}  // namespace platform
