#include "document/OVMarkerMovement.h"

#include <algorithm>
#include <cmath>

#include "document/display/OVMarkerAndTime.h"
#include "document/editing/OVDocumentAudio.h"
#include "document/editing/OVFramePositions.h"
#include "document/spectrum/OVSpectrum.h"
#include "document/summaries/OVDocumentSummaries.h"
#include "document/transport/OVTransport.h"

std::uint64_t OVMarkerMovement::markerFrame() const {
  return parts_.transport.isRecording() ? parts_.positions.recording()
                                        : parts_.positions.playback();
}

double OVMarkerMovement::fraction() const {
  return parts_.audio.fractionOfFrames(markerFrame());
}

void OVMarkerMovement::moveToFraction(double fraction) {
  const double clamped = std::clamp(fraction, 0.0, 1.0);
  const auto size = static_cast<double>(parts_.audio.sizeInFrames());
  moveTo(static_cast<std::uint64_t>(size * clamped), clamped);
}

// In frames: a fraction of hours of audio would be rounded.
void OVMarkerMovement::step(OVMarkerStep step, double pixels) {
  const std::uint64_t size = parts_.audio.sizeInFrames();
  const std::uint64_t from = std::min(markerFrame(), size);  // an undo may leave it past the end
  const std::uint64_t frames = framesOf(step.length, pixels);
  const std::uint64_t to =
      step.isForward ? from + std::min(frames, size - from) : from - std::min(frames, from);
  moveTo(to, parts_.audio.fractionOfFrames(to));
}

std::uint64_t OVMarkerMovement::framesOf(OVMarkerStep::Length length, double pixels) const {
  const auto buffer = parts_.audio.buffer();
  const double rate = buffer ? buffer->format().mSampleRate : 0.0;
  double frames = 1.0;
  switch (length) {
    case OVMarkerStep::Length::second:
      frames = rate;
      break;
    case OVMarkerStep::Length::tenthOfSecond:
      frames = rate / 10.0;
      break;
    case OVMarkerStep::Length::devicePixel:
      frames = static_cast<double>(parts_.audio.sizeInFrames()) / std::max(1.0, pixels);
      break;
  }
  return static_cast<std::uint64_t>(std::max(1.0, std::round(frames)));
}

void OVMarkerMovement::moveTo(std::uint64_t frame, double fraction) {
  const auto buffer = parts_.audio.buffer();
  if (!buffer) {
    return;
  }
  parts_.transport.moveTo(frame);
  parts_.markerAndTime.setLevel(parts_.summaries.waveForm()->powerAtPosition(fraction));
  if (!parts_.transport.isRecording()) {
    parts_.spectrum.show(buffer.get(), parts_.positions.playback());
  }
}
