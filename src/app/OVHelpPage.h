#pragma once

#include <QString>

/// The help page, a file that is installed with the program, once for each language.
///
/// Threads: main. Real-time: not safe.
class OVHelpPage {
 public:
  /// Absolute path of the page in the language of the user interface, for the program in
  /// `programFolder`; whether it is there or not.
  [[nodiscard]] static QString pathFrom(const QString& programFolder);
};
