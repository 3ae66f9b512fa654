#include "document/display/OVMarkerAndTime.h"

#include <numeric>

#include <QRectF>

#include "controls/OVRecorderWindow.h"
#include "document/editing/OVDocumentAudio.h"
#include "platform/views/ViewRedraw.h"

namespace {

constexpr double kMarkerStripWidth = 8.0;  // points, around the marker's line
constexpr double kMarkerStripLeft = 4.0;   // points, from the strip's left edge to the line

QRectF markerStrip(const QWidget& view, double fraction) {
  return {fraction * view.width() - kMarkerStripLeft, 0.0, kMarkerStripWidth,
          static_cast<double>(view.height())};
}

}  // namespace

void OVMarkerAndTime::connect(OVRecorderWindow* window) {
  playbackMarkerView_ = window->findChild<OVPlaybackMarkerView*>("playbackMarkerView");
  timeView_ = window->findChild<OVTimeView*>("timeView");
}

// Marker ----------------------------------------------------------------------------------------

void OVMarkerAndTime::setIsRecordingMarker(bool recording) {
  if (playbackMarkerView_) {
    playbackMarkerView_->setIsRecordingMarker(recording);
  }
}

void OVMarkerAndTime::moveTo(std::uint64_t frames) {
  if (!playbackMarkerView_) {
    return;
  }
  const double fraction = audio_.fractionOfFrames(frames);
  const QWidget& view = *playbackMarkerView_;
  requestRedraw(playbackMarkerView_, markerStrip(view, playbackMarkerView_->position()));
  requestRedraw(playbackMarkerView_, markerStrip(view, fraction));
  playbackMarkerView_->setPosition(fraction);
}

void OVMarkerAndTime::setLevels(const std::optional<std::vector<float>>& levels) {
  if (levels && !levels->empty()) {
    const double sum = std::accumulate(levels->begin(), levels->end(), 0.0);
    setLevel(sum / static_cast<double>(levels->size()));
  }
}

void OVMarkerAndTime::setLevel(double level) {
  if (playbackMarkerView_) {
    playbackMarkerView_->setAudioLevel(level);
  }
}

// Time ------------------------------------------------------------------------------------------

void OVMarkerAndTime::showTime(std::uint64_t currentFrames, bool always) {
  if (!timeView_) {
    return;
  }
  const double current = audio_.secondsOfFrames(currentFrames);
  const double duration = audio_.secondsOfFrames(audio_.sizeInFrames());
  const bool same =
      timeView_->currentTimeInSeconds() == current && timeView_->durationInSeconds() == duration;
  if (same && !always) {
    return;
  }
  timeView_->setCurrentTimeInSeconds(current);
  timeView_->setDurationInSeconds(duration);
  requestRedraw(timeView_);
}

void OVMarkerAndTime::showDuration(std::uint64_t frames) {
  if (timeView_) {
    timeView_->setDurationInSeconds(audio_.secondsOfFrames(frames));
    requestRedraw(timeView_);
  }
}
