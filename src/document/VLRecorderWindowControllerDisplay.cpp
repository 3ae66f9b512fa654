#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

#include "audio/OVAQPlayer.h"
#include "audio/OVAQRecorder.h"
#include "displays/OVTimeView.h"
#include "document/VLRecorderWindowController.h"
#include "platform/base/ApplicationServices.h"
#include "waveform/OVWaveformSummary.h"
#include "waveform/views/OVPlaybackMarkerView.h"
#include "waveform/views/OVWaveFormView.h"

namespace {

constexpr double kMarkerStripWidth = 8.0;  // points, around the marker's line
constexpr double kMarkerStripLeft = 4.0;   // points, from the strip's left edge to the line

QRectF markerStrip(const QWidget& view, double fraction) {
  return {fraction * view.width() - kMarkerStripLeft, 0.0, kMarkerStripWidth,
          static_cast<double>(view.height())};
}

}  // namespace

// Positions -------------------------------------------------------------------------------------

std::uint64_t VLRecorderWindowController::playbackPosition() const {
  return playbackPosQueue_.sync([this] { return _playbackPosition; });
}

void VLRecorderWindowController::setPlaybackPosition(std::uint64_t frames) {
  playbackPosQueue_.sync([this, frames] { _playbackPosition = frames; });
}

std::uint64_t VLRecorderWindowController::recordingPosition() const {
  return recordingPosQueue_.sync([this] { return _recordingPosition; });
}

void VLRecorderWindowController::setRecordingPosition(std::uint64_t frames) {
  recordingPosQueue_.sync([this, frames] { _recordingPosition = frames; });
}

double VLRecorderWindowController::fractionOfBuffer(std::uint64_t frames) const {
  const std::uint64_t size = bufferSizeInFrames();
  return size == 0 ? 0.0 : static_cast<double>(frames) / static_cast<double>(size);
}

double VLRecorderWindowController::secondsOfFrames(std::uint64_t frames) const {
  return buffer_ ? static_cast<double>(frames) / buffer_->format().mSampleRate : 0.0;
}

// The tick --------------------------------------------------------------------------------------

void VLRecorderWindowController::updatePlaybackMarkerView() {
  const platform::PostedAlertsScope afterwards;  // no main loop runs in the middle of a tick
  if (!buffer_) {
    return;
  }
  if (isRenderingWaveform_) {
    updateRendering();
    return;
  }
  if (isRecording()) {
    updateRecording();
  } else if (playbackPosition() != lastPlaybackPosition_) {
    updatePlayback();
  }
}

void VLRecorderWindowController::updateRendering() {
  if (playbackMarkerView_) {
    playbackMarkerView_->setIsRecordingMarker(false);
  }
  const std::uint64_t rendered = waveForm()->readerPos();
  setIndicatorValue(fractionOfBuffer(rendered));
  summaries_->putIntoView();
  setViewNeedsDisplay(wfView_);
  showTime(rendered, true);
}

void VLRecorderWindowController::updatePlayback() {
  const std::uint64_t position = playbackPosition();
  if (playbackMarkerView_) {
    playbackMarkerView_->setIsRecordingMarker(false);
  }
  moveMarker(fractionOfBuffer(position));
  lastPlaybackPosition_ = position;
  if (isPlaying()) {
    setRecordingPosition(position);
  }
  updateMarkerLevel();
  showTime(position, false);
}

void VLRecorderWindowController::updateRecording() {
  if (writtenSincePress_) {  // before that, Record may still be taken back as if never pressed
    summaries_->follow(recordingPosition(), _lastNumberOfFramesWritten);
  }
  if (playbackMarkerView_) {
    playbackMarkerView_->setIsRecordingMarker(true);
  }
  const std::uint64_t position = recordingPosition();
  moveMarker(fractionOfBuffer(position));
  lastPlaybackPosition_ = playbackPosition();
  if (isPlaying()) {
    setRecordingPosition(playbackPosition());
  }
  updateMarkerLevel();
  showTime(recordingPosition(), true);
}

// Marker and time -------------------------------------------------------------------------------

void VLRecorderWindowController::moveMarker(double toFraction) {
  if (!playbackMarkerView_) {
    return;
  }
  const QWidget& view = *playbackMarkerView_;
  setViewNeedsDisplay(playbackMarkerView_, markerStrip(view, playbackMarkerView_->position()));
  setViewNeedsDisplay(playbackMarkerView_, markerStrip(view, toFraction));
  playbackMarkerView_->setPosition(toFraction);
}

void VLRecorderWindowController::updateMarkerLevel() {
  std::optional<std::vector<float>> levels;
  if (isRecording()) {
    levels = recorder_->powerLevels();
  } else if (isPlaying()) {
    levels = player_->powerLevels();
  }
  if (levels && !levels->empty() && playbackMarkerView_) {
    const double sum = std::accumulate(levels->begin(), levels->end(), 0.0);
    playbackMarkerView_->setAudioLevel(sum / static_cast<double>(levels->size()));
  }
}

void VLRecorderWindowController::showTime(std::uint64_t currentFrames, bool always) {
  if (!timeView_) {
    return;
  }
  const double current = secondsOfFrames(currentFrames);
  const double duration = secondsOfFrames(bufferSizeInFrames());
  const bool same =
      timeView_->currentTimeInSeconds() == current && timeView_->durationInSeconds() == duration;
  if (same && !always) {
    return;
  }
  timeView_->setCurrentTimeInSeconds(current);
  timeView_->setDurationInSeconds(duration);
  setViewNeedsDisplay(timeView_);
}

// Clicks and drags ------------------------------------------------------------------------------

void VLRecorderWindowController::waveFormViewReceivedClick(OVWaveFormView*, QPointF,
                                                           double timeLinePosition) {
  moveToTimeLinePosition(timeLinePosition);
}

void VLRecorderWindowController::waveFormViewReceivedDrag(OVWaveFormView*, QPointF,
                                                          double timeLinePosition) {
  moveToTimeLinePosition(timeLinePosition);
}

void VLRecorderWindowController::moveToTimeLinePosition(double fraction) {
  if (!buffer_) {
    return;
  }
  const double clamped = std::clamp(fraction, 0.0, 1.0);
  const auto frames =
      static_cast<std::uint64_t>(static_cast<double>(bufferSizeInFrames()) * clamped);
  setPlaybackPosition(frames);
  setReadingPosition(frames);
  setRecordingPosition(frames);
  setWritingPosition(frames);
  if (playbackMarkerView_) {
    playbackMarkerView_->setAudioLevel(waveForm()->powerAtPosition(clamped));
  }
  if (!isRecording()) {
    doFFT();  // the spectrum of the place that was clicked
  }
}
