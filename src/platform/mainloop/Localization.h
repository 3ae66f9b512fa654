#pragma once

#include <cstddef>
#include <string>

#include <QString>

namespace platform {

/// The English text of something that a person reads, under which its translations are found.
///
/// Only textKey() makes one, and only from a literal: whatever reaches localized() is therefore
/// written down in the sources as localized("…") or textKey("…"), where the tests find it.
///
/// Threads: any. Real-time: safe.
class TextKey {
 public:
  [[nodiscard]] constexpr const char* english() const { return english_; }

 private:
  friend consteval TextKey textKey(const char* english);
  explicit constexpr TextKey(const char* english) : english_(english) {}

  const char* english_;  // a literal, UTF-8
};

/// Marks a literal that is kept in a table or handed on before it is shown.
[[nodiscard]] consteval TextKey textKey(const char* english) {
  return TextKey(english);
}

/// Looks a user-visible text up in the installed translations, with the English text as key; the
/// key itself when there is no translation.
///
/// Threads: any. Real-time: not safe.
[[nodiscard]] QString localized(TextKey key);
[[nodiscard]] std::string localizedUtf8(TextKey key);

namespace detail {
[[nodiscard]] QString lookedUp(const char* english);
}

/// The same for a literal where it stands. The second parameter is what the code made from
/// interface files hands over, a comment of theirs; it is not looked at.
template <std::size_t N>
[[nodiscard]] QString localized(const char (&english)[N], std::nullptr_t = nullptr) {
  return detail::lookedUp(english);
}

template <std::size_t N>
[[nodiscard]] std::string localizedUtf8(const char (&english)[N]) {
  return detail::lookedUp(english).toStdString();
}

}  // namespace platform
