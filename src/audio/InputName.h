#pragma once

#include <string>

#include <QString>

/// The name of a sound input as a sentence can hold it. Sound systems pass on what a device says of
/// itself: the result is one line without control and format characters, of at most
/// kMaxInputNameLength characters as a reader counts them, the last one "…" if it was cut. Empty if
/// nothing is left. It may hold markup, so it is shown as plain text only.
///
/// Threads: any. Real-time: not safe.
inline constexpr int kMaxInputNameLength = 60;

[[nodiscard]] QString shownInputName(const std::string& name);
