#pragma once

#include "platform/base/ApplicationServices.h"

/// Modules: the program's own shared libraries, which link libraries too slow to load before the
/// first window. A module NAME.so exports one function, its factory:
///
///     extern "C" ORVO_MODULE_FACTORY Interface* orvoModule(platform::ModuleConsole* consoleLog)
///
/// A module links none of the program's own libraries, so no state exists twice in the process. It
/// gets everything it needs from the program through its factory and its interface.
namespace platform {

/// The type of ConsoleLog(), which a module's factory receives.
using ModuleConsole = decltype(ConsoleLog);

/// Loads a module and returns its factory. Null when the module or a library that it links is
/// missing, which is logged to the diagnostics console. Never unloads it. The system's loader finds
/// the module through the program's run path, which the build sets.
///
/// Threads: any. Real-time: not safe.
[[nodiscard]] void* loadModule(const char* name);

/// Loads the module if needed and returns the object that its factory makes; null as above.
/// `Interface` must be the type that the factory returns; its documentation says whether the caller
/// owns the object.
///
/// Threads: any. Real-time: not safe.
template <typename Interface>
[[nodiscard]] Interface* makeFromModule(const char* name) {
  using Factory = Interface*(ModuleConsole*);
  auto* const factory = reinterpret_cast<Factory*>(loadModule(name));
  return factory != nullptr ? factory(ConsoleLog) : nullptr;
}

#define ORVO_MODULE_FACTORY __attribute__((visibility("default")))

}  // namespace platform
