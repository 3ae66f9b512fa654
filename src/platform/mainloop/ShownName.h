#pragma once

#include <string>

#include <QString>

namespace platform {

/// A name or a path as a title, a sentence or a menu shows it: one line that keeps to itself.
///
///  - Control characters, line breaks, and invisible characters such as those that reverse the
///    direction of the text around them become spaces. The two that join or part letters stay.
///  - A name with letters of a language written from right to left is isolated, so that it does not
///    reorder the sentence around it.
///  - Bytes that are not UTF-8 become replacement characters.
///
/// Only for display: a file cannot be found by the result, and an edit must not contain it. It may
/// hold markup, so show it as plain text.
///
/// Threads: any. Real-time: not safe.
[[nodiscard]] QString shownName(const std::string& name);
[[nodiscard]] QString shownName(const QString& name);

/// A message of several lines that may contain names as they are: what shownName() makes spaces
/// becomes spaces here, except line feeds and the isolation of names that are shown already.
///
/// Threads: any. Real-time: not safe.
[[nodiscard]] QString shownMessage(const std::string& message);

}  // namespace platform
