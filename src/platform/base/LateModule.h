#pragma once

#include "platform/base/ApplicationServices.h"

/// Modules of the program: shared libraries of our own that link what is too slow to load before
/// the first window. A module NAME.so exports one function, its factory:
///
///     extern "C" ORVO_MODULE_FACTORY Interface* orvoModule(platform::ModuleConsole* consoleLog)
///
/// A module links no library of ours, so the process has no second copy of any state: what it needs
/// of the program comes through its factory and its interface.
namespace platform {

/// ConsoleLog(), as a module gets it.
using ModuleConsole = decltype(ConsoleLog);

/// Loads a module and gives its factory; null when the module or a library that it links is
/// missing, which is logged to the diagnostics console. Never unloads it. The system's loader finds
/// the module by the run path of the program, which the build sets.
///
/// Threads: any. Real-time: not safe.
[[nodiscard]] void* loadModule(const char* name);

/// What a module's factory makes, loading the module first where needed; null as above. `Interface`
/// must be the one that the factory returns, which says whether the object is the caller's.
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
