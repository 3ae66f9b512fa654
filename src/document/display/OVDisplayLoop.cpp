#include "document/display/OVDisplayLoop.h"

#include "document/display/OVClipping.h"
#include "document/display/OVMarkerAndTime.h"
#include "document/display/OVProgressDisplay.h"
#include "document/display/OVRecordingPlace.h"
#include "document/editing/OVDocumentAudio.h"
#include "document/editing/OVDocumentLife.h"
#include "document/editing/OVFileOperation.h"
#include "document/editing/OVFramePositions.h"
#include "document/summaries/OVDocumentSummaries.h"
#include "document/transport/OVTransport.h"
#include "platform/base/ApplicationServices.h"
#include "platform/mainloop/Localization.h"
#include "platform/views/ViewRedraw.h"
#include "waveform/OVWaveformSummary.h"

namespace {

constexpr double kInterval = 0.04;  // seconds: 25 ticks a second

}  // namespace

void OVDisplayLoop::start() {
  pollTimer_ =
      std::make_unique<platform::Timer>(kInterval, parts_.life.guarded([this] { tick(); }));
}

void OVDisplayLoop::tick() {
  const platform::PostedAlertsScope afterwards;  // no main loop runs in the middle of a tick
  if (ticked_) {
    ticked_();
  }
  if (!parts_.audio.buffer()) {
    return;
  }
  if (isRenderingWaveform_) {
    updateRendering();
  } else if (parts_.transport.isRecording()) {
    updateRecording();
  } else if (parts_.positions.playback() != parts_.markerAndTime.lastPlaybackPosition()) {
    updatePlayback();
  }
  parts_.recordingPlace.update();
  parts_.clipping.update();
}

void OVDisplayLoop::updateRendering() {
  parts_.markerAndTime.setIsRecordingMarker(false);
  const std::uint64_t rendered = parts_.summaries.waveForm()->readerPos();
  parts_.progress.setValue(parts_.audio.fractionOfFrames(rendered));
  parts_.summaries.putIntoView();
  requestRedraw(wfView_);
  parts_.markerAndTime.showTime(rendered, true);
}

void OVDisplayLoop::updatePlayback() {
  const std::uint64_t position = parts_.positions.playback();
  parts_.markerAndTime.setIsRecordingMarker(false);
  show(position, position);
  parts_.markerAndTime.showTime(position);
}

void OVDisplayLoop::updateRecording() {
  const std::uint64_t position = parts_.positions.recording();
  if (parts_.transport.hasRecorded()) {  // before that, Record may still be rolled back
    parts_.summaries.follow(position, _lastNumberOfFramesWritten);
  }
  parts_.markerAndTime.setIsRecordingMarker(true);
  show(position, parts_.positions.playback());
  parts_.markerAndTime.showTime(parts_.positions.recording(), true);
}

void OVDisplayLoop::show(std::uint64_t markerFrame, std::uint64_t playback) {
  parts_.markerAndTime.moveTo(markerFrame);
  parts_.markerAndTime.setLastPlaybackPosition(playback);
  if (parts_.transport.isPlaying()) {
    parts_.positions.setRecording(playback);
  }
  parts_.markerAndTime.setLevels(parts_.transport.powerLevels(OVTransportState::recording));
}

void OVDisplayLoop::refresh(bool regenerate) {
  if (!parts_.operation.isActive()) {  // a file operation shows its own progress
    parts_.progress.begin(platform::textKey("Drawing the waveform"), true);
  }
  parts_.summaries.refresh(regenerate, parts_.life.guarded([this] { refreshed(); }));
}

void OVDisplayLoop::endProgress() {
  parts_.progress.end();
  if (parts_.summaries.isRefreshing()) {
    parts_.progress.begin(platform::textKey("Drawing the waveform"), true);
  }
}

void OVDisplayLoop::refreshed() {
  parts_.summaries.show();
  parts_.markerAndTime.showTime(parts_.positions.playback(), true);
  parts_.markerAndTime.invalidate();
  if (isRunning()) {
    tick();
  }
  if (!parts_.operation.isActive()) {
    parts_.progress.end();
  }
}
