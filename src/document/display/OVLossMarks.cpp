#include "document/display/OVLossMarks.h"

#include <utility>

#include "controls/OVRecorderWindow.h"
#include "document/display/OVLossText.h"
#include "document/editing/OVDocumentAudio.h"
#include "document/editing/OVEditHistory.h"

namespace {

OVLossMark markOf(const OVRecordingLoss& loss) {
  const bool isFilled = loss.place == OVRecordingLoss::Place::silence;
  return {.atFrame = loss.atFrame, .frames = isFilled ? loss.frames : 0, .text = lossText(loss)};
}

}  // namespace

void OVLossMarks::connect(OVRecorderWindow* window) {
  view_ = window->findChild<OVLossMarksView*>("lossMarksView");
}

void OVLossMarks::begin() {
  revision_ = history_.revision();
  update({});
}

void OVLossMarks::update(const std::vector<OVRecordingLoss>& losses) {
  if (revision_ != history_.revision()) {
    revision_.reset();
  }
  const bool isMarked = revision_ && !losses.empty();
  const Shown now = isMarked ? Shown{losses.size(), audio_.sizeInFrames()} : Shown{};
  if (now == shown_ || !view_) {
    return;
  }
  if (std::exchange(shown_, now).losses != now.losses) {
    showLosses(isMarked ? losses : std::vector<OVRecordingLoss>());
  }
  view_->setLengthInFrames(now.size);
  view_->setVisible(isMarked);
}

void OVLossMarks::showLosses(const std::vector<OVRecordingLoss>& losses) const {
  std::vector<OVLossMark> marks;
  marks.reserve(losses.size());
  for (const OVRecordingLoss& loss : losses) {
    marks.push_back(markOf(loss));
  }
  view_->setMarks(std::move(marks), lossesText(losses));
}
