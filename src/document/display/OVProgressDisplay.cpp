#include "document/display/OVProgressDisplay.h"

#include <algorithm>
#include <cmath>

#include <QLayout>

#include "controls/OVLoadingIndicator.h"
#include "controls/OVRecorderWindow.h"

namespace {

constexpr int kSteps = 1000;  // of the bar, from 0.0 to 1.0

}  // namespace

void OVProgressDisplay::connect(OVRecorderWindow* window) {
  loadingPanel_ = window->findChild<OVLoadingPanel*>("loadingPanel");
  loadingIndicator_ = window->findChild<QProgressBar*>("loadingIndicator");
}

void OVProgressDisplay::recreate(bool indeterminate, platform::TextKey activity) {
  if (!loadingIndicator_) {
    return;
  }
  QProgressBar* const old = loadingIndicator_;
  auto* fresh = new OVLoadingIndicator(old->parentWidget());
  fresh->setObjectName(old->objectName());
  fresh->setGeometry(old->geometry());
  value_ = 0.0;
  fresh->setRange(0, indeterminate ? 0 : kSteps);
  fresh->setValue(0);
  fresh->setVisible(false);
  if (QLayout* const layout = old->parentWidget()->layout()) {
    delete layout->replaceWidget(old, fresh);
  }
  loadingIndicator_ = fresh;
  delete old;
  setActivity(activity);
}

void OVProgressDisplay::begin(platform::TextKey activity, bool indeterminate) {
  recreate(indeterminate, activity);
  show(true);
}

void OVProgressDisplay::end() {
  setValue(0.0);
  show(false);
}

void OVProgressDisplay::setActivity(platform::TextKey activity) {
  if (loadingPanel_) {
    loadingPanel_->setActivity(platform::localized(activity));
  }
}

void OVProgressDisplay::setValue(double value) {
  value_ = value;
  if (loadingIndicator_) {
    loadingIndicator_->setRange(0, kSteps);
    const double shown = std::clamp(value, 0.0, 1.0);
    loadingIndicator_->setValue(static_cast<int>(std::lround(shown * kSteps)));
  }
}

void OVProgressDisplay::show(bool shown) {
  if (loadingIndicator_) {
    loadingIndicator_->setVisible(shown);
  }
  if (loadingPanel_) {
    loadingPanel_->setVisible(shown);
  }
}
