#pragma once

#include <string>

#include <QString>

namespace platform {

/// Looks a user-visible text up in the installed translations, with the English text as key; the
/// key itself when there is no translation.
///
/// Threads: any. Real-time: not safe.
[[nodiscard]] QString localized(const char* englishText);
[[nodiscard]] std::string localizedUtf8(const char* englishText);

}  // namespace platform
