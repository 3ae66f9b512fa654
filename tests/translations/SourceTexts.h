#pragma once

#include <set>
#include <string>
#include <vector>

/// The user-visible texts that are written in C++ sources, found without a compiler.
///
/// Threads: any.
namespace translations {

struct SourceTexts {
  /// The literals in textKey("…"), localized("…") and localizedUtf8("…"), UTF-8, with adjacent
  /// literals joined and escapes resolved.
  std::set<std::string> keys;
  /// "12: …" for each literal of that line that a person would read and no translation reaches,
  /// and for each textKey() of something that is not a literal.
  std::vector<std::string> complaints;
};

/// What one file holds. A literal is taken for one that a person reads when it has a letter and
/// goes to a widget, an alert or a panel, or when it has several words and goes to neither the
/// console nor a stream.
[[nodiscard]] SourceTexts textsOfSource(const std::string& source);

}  // namespace translations
