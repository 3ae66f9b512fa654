#include "controls/OVFocusKeeper.h"

#include <algorithm>

void OVFocusKeeper::takeFrom(const QWidget* window, std::span<QWidget* const> controls) {
  QWidget* const had = window == nullptr ? nullptr : window->focusWidget();
  if (had != nullptr && std::ranges::find(controls, had) != controls.end()) {
    former_ = had;
    had->clearFocus();
  }
}

void OVFocusKeeper::giveBack(const QWidget* window) {
  if (former_ && window != nullptr && window->focusWidget() == nullptr) {
    former_->setFocus(Qt::OtherFocusReason);
  }
  former_ = nullptr;
}
