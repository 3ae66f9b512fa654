#pragma once

#include <cstdint>
#include <optional>

#include <QString>

/// Where an import goes.
struct OVImportPlace {
  double atSecond = 0.0;
  double endSecond = 0.0;  ///< of the audio that is there

  /// The place in a sentence, with times as the time display shows them, and what an import of
  /// `seconds` replaces there; only the place without a length.
  [[nodiscard]] QString sentence(std::optional<double> seconds) const;
};
