#pragma once

#include <optional>
#include <string>

#include <QString>

/// What the command line says about itself: one table of texts is both the answer to --help and the
/// manual page.
///
/// Threads: any. Real-time: not safe.
class OVCommandLineText {
 public:
  /// The answer to --help, in the language of the user interface, for a terminal of so many columns
  /// or, with none, for a file. Ends with a newline.
  [[nodiscard]] static QString help(std::optional<int> terminalColumns = std::nullopt);

  /// The answer to an option that is unknown, shown so that it does not disturb the terminal. Ends
  /// with a newline.
  [[nodiscard]] static QString refusalOf(const std::string& option);

  /// The manual page in mdoc, always ASCII. `date` is the day of the release as YYYY-MM-DD.
  [[nodiscard]] static std::string manualPage(const std::string& date);
};
