#pragma once

#include <mutex>

namespace platform {

/// A shared library that is loaded when something first asks for it, and never unloaded. Nothing
/// links with it: what it brings along costs a start of the program nothing.
///
/// Threads: any; a call during the loading waits for its end. Real-time: not safe.
class LateLibrary {
 public:
  /// `name` as the linker has it, without prefix and suffix; `version` is that of the interface
  /// that its headers describe. `name` must outlive the library.
  constexpr LateLibrary(const char* name, int version) : name_(name), version_(version) {}
  LateLibrary(const LateLibrary&) = delete;
  LateLibrary& operator=(const LateLibrary&) = delete;

  /// Loads it unless that was done. False when it is missing, every time; the reason is told on
  /// the diagnostics console once.
  [[nodiscard]] bool load();

  /// The address of a function; ends the program where the library is not there or lacks it, so
  /// ask load() first.
  [[nodiscard]] void* functionNamed(const char* name);

 private:
  const char* const name_;
  const int version_;
  std::once_flag once_;
  // Written inside `once_`. Never destroyed: threads may outlive main.
  void* library_ = nullptr;
};

}  // namespace platform
