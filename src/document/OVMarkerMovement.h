#pragma once

#include <cstdint>

#include "waveform/views/OVWaveFormView.h"

class OVDocumentAudio;
class OVDocumentSummaries;
class OVFramePositions;
class OVMarkerAndTime;
class OVSpectrum;
class OVTransport;

/// Moves the marker and the recording position to where the user points in the waveform, and by
/// the steps of its keys. The marker's level and the spectrum follow; the marker is drawn at the
/// next tick.
///
/// Threads: main. Real-time: not safe.
class OVMarkerMovement {
 public:
  /// The parts of the document that it uses; they outlive it.
  struct Parts {
    const OVDocumentAudio& audio;
    const OVFramePositions& positions;
    const OVDocumentSummaries& summaries;
    OVTransport& transport;
    OVMarkerAndTime& markerAndTime;
    OVSpectrum& spectrum;
  };

  explicit OVMarkerMovement(const Parts& parts) : parts_(parts) {}

  /// Where the marker is now, 0 to 1 of the audio's length: while recording, at the place that is
  /// recorded.
  [[nodiscard]] double fraction() const;
  /// To a fraction of the length; outside 0 to 1 it counts as the nearer end.
  void moveToFraction(double fraction);
  /// By a step from where it is, at most to the ends. `pixels` is the width of the waveform in
  /// device pixels.
  void step(OVMarkerStep step, double pixels);

 private:
  [[nodiscard]] std::uint64_t markerFrame() const;
  [[nodiscard]] std::uint64_t framesOf(OVMarkerStep::Length length, double pixels) const;
  void moveTo(std::uint64_t frame, double fraction);

  const Parts parts_;
};
