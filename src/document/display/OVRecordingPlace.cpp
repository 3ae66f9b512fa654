#include "document/display/OVRecordingPlace.h"

#include <algorithm>

#include "controls/OVRecorderWindow.h"
#include "displays/OVTimeText.h"
#include "document/editing/OVDocumentAudio.h"
#include "document/editing/OVFileOperation.h"
#include "document/editing/OVFramePositions.h"
#include "document/transport/OVTransport.h"
#include "platform/mainloop/Localization.h"

using platform::localized;

void OVRecordingPlace::connect(OVRecorderWindow* window) {
  tick_ = window->findChild<OVRecordingTickView*>("recordingTickView");
  record_ = window->findChild<OVTransportButton*>("recButton");
}

void OVRecordingPlace::update() {
  const Place now = place();
  if (shown_ == now) {
    return;
  }
  shown_ = now;
  showTick(now);
  if (record_) {
    record_->setToolTip(tooltip(now));
  }
}

OVRecordingPlace::Place OVRecordingPlace::place() const {
  if (parts_.transport.isRecording()) {
    return {.kind = Place::Kind::recording};
  }
  const std::uint64_t size = parts_.audio.sizeInFrames();
  if (size == 0 || parts_.operation.isLoading()) {
    return {};
  }
  // An undo may have left it past the end; a recording then begins at the end.
  const std::uint64_t frame = std::min(parts_.positions.recording(), size);
  return {
      .kind = frame == size ? Place::Kind::end : Place::Kind::inside, .frame = frame, .size = size};
}

void OVRecordingPlace::showTick(const Place& place) const {
  if (!tick_) {
    return;
  }
  const bool marked = place.kind == Place::Kind::inside || place.kind == Place::Kind::end;
  if (marked) {
    tick_->setPosition(static_cast<double>(place.frame) / static_cast<double>(place.size));
    tick_->setPlaceText(time(place));
  }
  tick_->setVisible(marked);
}

QString OVRecordingPlace::tooltip(const Place& place) const {
  switch (place.kind) {
    case Place::Kind::none:
      return localized("Record (R)");
    case Place::Kind::recording:
      return localized("Ends the recording (R)");
    case Place::Kind::inside:
      return localized("Records from %1 over what is there (R)").arg(time(place));
    case Place::Kind::end:
      return localized("Records at the end (R)");
  }
  return {};
}

QString OVRecordingPlace::time(const Place& place) const {
  return OVTimeText::formatTime(parts_.audio.secondsOfFrames(place.frame));
}
