#include "platform/mainloop/FontPreparation.h"

#include <QLibrary>

namespace platform {

// fontconfig is loaded already, since Qt links it: this loads nothing.
FontPreparation::FontPreparation() {
  using Initialise = int (*)();
  const auto initialise =
      reinterpret_cast<Initialise>(QLibrary::resolve("fontconfig", 1, "FcInit"));
  if (initialise != nullptr) {
    prepared_ = std::async(std::launch::async, [initialise] { static_cast<void>(initialise()); });
  }
}

void FontPreparation::finish() {
  if (prepared_.valid()) {
    prepared_.get();
  }
}

}  // namespace platform
