#pragma once

#include <cstddef>
#include <string>

#include <QString>
#include <QStringList>

namespace platform {

/// A user-visible English text, the key to its translations.
///
/// Only textKey() makes one, and only from a literal. Every text that reaches localized() therefore
/// appears in the sources as localized("…") or textKey("…"), where the tests find it.
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

/// Marks a literal that is stored in a table or passed on before it is shown.
[[nodiscard]] consteval TextKey textKey(const char* english) {
  return TextKey(english);
}

/// Looks up a user-visible text in the installed translations; the English text if not found.
///
/// Threads: any. Real-time: not safe.
[[nodiscard]] QString localized(TextKey key);
[[nodiscard]] std::string localizedUtf8(TextKey key);

namespace detail {
[[nodiscard]] QString lookedUp(const char* english);
}

/// The same for a literal. Code generated from interface files passes a comment as the second
/// argument; it is ignored.
template <std::size_t N>
[[nodiscard]] QString localized(const char (&english)[N], std::nullptr_t = nullptr) {
  return detail::lookedUp(english);
}

template <std::size_t N>
[[nodiscard]] std::string localizedUtf8(const char (&english)[N]) {
  return detail::lookedUp(english).toStdString();
}

/// Sentences one after another, with a blank between them where their language has one: none
/// follows an ideographic full stop. Empty ones are left out.
///
/// Threads: any. Real-time: not safe.
[[nodiscard]] QString sentencesInARow(const QStringList& sentences);

}  // namespace platform
