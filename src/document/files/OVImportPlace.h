#pragma once

#include <cstdint>
#include <optional>

#include <QString>

/// How long the sound of a file is.
struct OVImportLength {
  enum class Source { header, estimate };

  double seconds = 0.0;
  Source source = Source::header;
};

/// Where an import goes.
struct OVImportPlace {
  double atSecond = 0.0;
  double endSecond = 0.0;  ///< of the audio that is there

  /// The place in a sentence, with times as the time display shows them, and what an import of
  /// `length` replaces there, to the second if it is estimated; only the place without a length.
  [[nodiscard]] QString sentence(std::optional<OVImportLength> length) const;
};
