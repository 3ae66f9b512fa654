#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include <QPointer>
#include <QString>

#include "displays/OVTimeView.h"
#include "waveform/views/OVPlaybackMarkerView.h"

class OVDocumentAudio;
class OVRecorderWindow;

/// The marker over the waveform and the time display, both of which may be missing.
///
/// Threads: main. Real-time: not safe.
class OVMarkerAndTime {
 public:
  explicit OVMarkerAndTime(const OVDocumentAudio& audio) : audio_(audio) {}

  void connect(OVRecorderWindow* window);

  /// The playback position at the last update of the marker; a different position is not drawn yet.
  [[nodiscard]] std::uint64_t lastPlaybackPosition() const { return lastPlaybackPosition_; }
  void setLastPlaybackPosition(std::uint64_t frames) { lastPlaybackPosition_ = frames; }
  /// The next tick draws the marker even if it has not moved.
  void invalidate() { ++lastPlaybackPosition_; }

  void setIsRecordingMarker(bool recording);
  /// Moves the marker to a frame of the audio and redraws where it was and where it is.
  void moveTo(std::uint64_t frames);
  /// Shows the mean of the channels' levels. Without levels, nothing changes.
  void setLevels(const std::optional<std::vector<float>>& levels);
  void setLevel(double level);

  /// Shows a frame as the current time, and the audio's length. Redraws if either has changed or
  /// `always` is set.
  void showTime(std::uint64_t currentFrames, bool always = false);
  /// As showTime(), with the length loaded so far.
  void showDuration(std::uint64_t frames);
  /// The text of the time display.
  [[nodiscard]] QString text() const { return timeView_ ? timeView_->text() : QString(); }

 private:
  const OVDocumentAudio& audio_;
  QPointer<OVPlaybackMarkerView> playbackMarkerView_;
  QPointer<OVTimeView> timeView_;
  std::uint64_t lastPlaybackPosition_ = 0;
};
