#pragma once

#include <concepts>
#include <optional>
#include <type_traits>
#include <utility>

namespace platform {

/// An object, or the error that prevented making it.
///
/// @tparam T the object, or a std::unique_ptr to it where its class may vary
/// @tparam Error  an errno unless noted
///
/// Threads: one at a time. Real-time: safe where T is.
template <typename T, typename Error = int>
class [[nodiscard]] Result {
 public:
  template <std::convertible_to<T> Object>
  Result(Object object) : object_(std::move(object)) {}
  Result(Error error) : error_(std::move(error)) {}

  /// Whether there is an object.
  explicit operator bool() const { return object_.has_value(); }

  /// The object; throws std::bad_optional_access if there is none. If T is a pointer, `->` reaches
  /// the object that it points to.
  [[nodiscard]] const T& operator*() const& { return object_.value(); }
  [[nodiscard]] T& operator*() & { return object_.value(); }
  [[nodiscard]] T&& operator*() && { return std::move(object_.value()); }
  auto operator->() { return pointerTo(object_.value()); }
  auto operator->() const { return pointerTo(object_.value()); }

  /// The error; Error{} if there is an object.
  [[nodiscard]] const Error& error() const { return error_; }

 private:
  template <typename Object>
  static auto pointerTo(Object& object) {
    if constexpr (requires { *object; }) {
      return &*object;
    } else {
      return &object;
    }
  }

  std::optional<T> object_;
  Error error_{};
};

}  // namespace platform
