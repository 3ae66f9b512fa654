#pragma once

#include <atomic>

#include "platform/base/LateLibrary.h"

namespace platform {

/// A function of a LateLibrary, called as if it were linked; its address is looked up at the first
/// call. A list of them inside namespace platform, each under its own name, takes the place of
/// linking: a plain call finds the name there before it finds the header's declaration, and a
/// function that is missing in the list does not link.
///
/// Threads: those of the function itself; the first call loads the library. Real-time: as the
/// function itself, once it has been called.
template <typename Function>
class LateFunction;

template <typename Result, typename... Arguments>
class LateFunction<Result(Arguments...)> {
 public:
  using Pointer = Result (*)(Arguments...);

  constexpr LateFunction(LateLibrary& library, const char* name) : library_(library), name_(name) {}

  Result operator()(Arguments... arguments) const { return pointer()(arguments...); }

  [[nodiscard]] Pointer pointer() const {
    void* address = address_.load(std::memory_order_relaxed);  // code: nothing goes along with it
    if (address == nullptr) {
      address = library_.functionNamed(name_);
      address_.store(address, std::memory_order_relaxed);
    }
    return reinterpret_cast<Pointer>(address);
  }

 private:
  LateLibrary& library_;
  const char* const name_;
  mutable std::atomic<void*> address_ = nullptr;
};

/// A function with further arguments after the declared ones.
template <typename Result, typename... Arguments>
class LateFunction<Result(Arguments..., ...)> {
 public:
  using Pointer = Result (*)(Arguments..., ...);

  constexpr LateFunction(LateLibrary& library, const char* name) : library_(library), name_(name) {}

  template <typename... Further>
  Result operator()(Arguments... arguments, Further... further) const {
    const auto function = reinterpret_cast<Pointer>(library_.functionNamed(name_));
    return function(arguments..., further...);
  }

 private:
  LateLibrary& library_;
  const char* const name_;
};

// NOLINTBEGIN(bugprone-macro-parentheses): the arguments are names, not expressions
/// Declares the late function `name` of a LateLibrary, with the type that its header gives it.
#define ORVO_LATE_FUNCTION(library, name) \
  inline constinit LateFunction<decltype(::name)> name{library, #name};
// NOLINTEND(bugprone-macro-parentheses)

}  // namespace platform
