#include "document/transport/OVTransportControls.h"

#include "controls/OVRecorderWindow.h"
#include "controls/buttons/OVRoundedTransportButton.h"
#include "controls/buttons/OVTransportButton.h"
#include "platform/views/ViewRedraw.h"

namespace {

using Button = OVTransportControls::Button;

struct Description {
  Button button;
  const char* name;
  const char* onImage;
  const char* offImage;
};

constexpr std::array<Description, OVTransportControls::kButtonCount> kDescriptions{{
    {Button::rec, "recButton", "rec_on.png", "rec_off.png"},
    {Button::play, "playButton", "play_on.png", "play_off.png"},
    {Button::prev, "prevButton", "prev.png", "prev.png"},
    {Button::next, "nextButton", "next.png", "next.png"},
    {Button::stop, "stopButton", "stop.png", "stop.png"},
    {Button::pause, "pauseButton", "pause.png", "pause.png"},
}};

void roundOff(OVTransportButton* button, int type) {
  if (auto* const rounded = qobject_cast<OVRoundedTransportButton*>(button)) {
    rounded->setType(type);
  }
}

}  // namespace

void OVTransportControls::connect(OVRecorderWindow* window, const std::weak_ptr<void>& target,
                                  std::function<void(Button, OVTransportButton*)> action) {
  window_ = window;
  waveform_ = window->findChild<QWidget*>("wfView");
  for (const Description& description : kDescriptions) {
    auto* const button = window->findChild<OVTransportButton*>(description.name);
    buttons_[description.button] = button;
    if (button == nullptr) {
      continue;
    }
    button->setOnImage(description.onImage);
    button->setOffImage(description.offImage);
    button->setAction(
        [action, which = description.button, button](OVTrackingButton*) { action(which, button); });
    button->setTarget(target);
    button->setIsOn(false);
    button->setIsSwitch(isSwitch(description.button));
    requestRedraw(buttons_[description.button]);
  }
  roundOff(buttons_[prev], 1);
  roundOff(buttons_[next], 0);
}

// State of the transport ------------------------------------------------------------------------

void OVTransportControls::show(OVTransportState state, bool available) {
  state_ = state;
  if (!available) {
    focusKeeper_.takeFrom(window_, all());
  }
  showButton(rec, available && state != OVTransportState::playing);
  showButton(play, available && state != OVTransportState::recording);
  for (const Button button : {prev, next, stop, pause}) {
    showButton(button, available);
  }
  if (waveform_) {
    waveform_->setEnabled(available);
  }
  if (available) {
    focusKeeper_.giveBack(window_);
  }
}

void OVTransportControls::showButton(Button button, bool enabled) {
  OVTransportButton* const view = buttons_[button];
  if (view == nullptr) {
    return;
  }
  if (!enabled) {
    cancelPress(button);  // it would see neither the key's nor the mouse's release
  }
  view->setEnabled(enabled);
  if (isSwitch(button)) {
    view->setIsOn(standsFor(button));
  }
}

bool OVTransportControls::standsFor(Button button) const {
  return (button == rec && state_ == OVTransportState::recording) ||
         (button == play && state_ == OVTransportState::playing);
}

std::array<QWidget*, OVTransportControls::kButtonCount + 1> OVTransportControls::all() const {
  return {buttons_[rec],  buttons_[play],  buttons_[prev], buttons_[next],
          buttons_[stop], buttons_[pause], waveform_};
}

// Single buttons --------------------------------------------------------------------------------

OVTransportButton* OVTransportControls::button(Button button) const {
  return buttons_[button];
}

bool OVTransportControls::isEnabled(Button button) const {
  return buttons_[button] && buttons_[button]->isEnabled();
}

bool OVTransportControls::isOn(Button button) const {
  return buttons_[button] && buttons_[button]->isOn();
}

void OVTransportControls::setOn(Button button, bool on) {
  if (buttons_[button]) {
    buttons_[button]->setIsOn(on);
  }
}

bool OVTransportControls::isPressed(Button button) const {
  return buttons_[button] && buttons_[button]->isHighlighted();
}

void OVTransportControls::press(Button button) {
  if (isSwitch(button)) {
    setOn(button, !isOn(button));
  }
  buttons_[button]->setIsHighlighted(true);
  requestRedraw(buttons_[button]);
}

void OVTransportControls::release(Button button) {
  if (isSwitch(button)) {
    setOn(button, !isOn(button));
  }
  buttons_[button]->setIsHighlighted(false);
  requestRedraw(buttons_[button]);
}

void OVTransportControls::cancelPress(Button button) {
  if (!isPressed(button)) {
    return;
  }
  setOn(button, standsFor(button));
  buttons_[button]->setIsHighlighted(false);
  requestRedraw(buttons_[button]);
}
