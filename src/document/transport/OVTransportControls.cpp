#include "document/transport/OVTransportControls.h"

#include "controls/OVRecorderWindow.h"
#include "controls/buttons/OVRoundedTransportButton.h"
#include "controls/buttons/OVTransportButton.h"
#include "platform/views/ViewRedraw.h"

#include <algorithm>
#include <utility>

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

bool isSwitch(Button button) {
  return button == Button::rec || button == Button::play;
}

void roundOff(OVTransportButton* button, int type) {
  if (auto* const rounded = qobject_cast<OVRoundedTransportButton*>(button)) {
    rounded->setType(type);
  }
}

}  // namespace

void OVTransportControls::connect(OVRecorderWindow* window, const std::weak_ptr<void>& target,
                                  const std::function<void(Button, OVTransportButton*)>& action) {
  window_ = window;
  waveform_ = window->findChild<QWidget*>("wfView");
  for (const Description& description : kDescriptions) {
    auto* const button = window->findChild<OVTransportButton*>(description.name);
    buttons_[static_cast<std::size_t>(description.button)] = button;
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
    requestRedraw(view(description.button));
  }
  roundOff(view(Button::prev), 1);
  roundOff(view(Button::next), 0);
}

// State of the transport ------------------------------------------------------------------------

void OVTransportControls::show(OVTransportState state, bool available) {
  if (std::exchange(state_, state) != state) {
    cancelPress(Button::rec);  // what the press was for has happened
    cancelPress(Button::play);
  }
  if (!available) {
    focusKeeper_.takeFrom(window_, all());
  }
  showButton(Button::rec, available && state != OVTransportState::playing);
  showButton(Button::play, available && state != OVTransportState::recording);
  for (const Button button : {Button::prev, Button::next, Button::stop, Button::pause}) {
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
  if (!view(button)) {
    return;
  }
  if (!enabled) {
    cancelPress(button);  // it would see neither the key's nor the mouse's release
  }
  view(button)->setEnabled(enabled);
  if (isSwitch(button) && !view(button)->isHighlighted()) {
    view(button)->setIsOn(standsFor(button));
  }
}

bool OVTransportControls::standsFor(Button button) const {
  return (button == Button::rec && state_ == OVTransportState::recording) ||
         (button == Button::play && state_ == OVTransportState::playing);
}

std::array<QWidget*, OVTransportControls::kButtonCount + 1> OVTransportControls::all() const {
  std::array<QWidget*, kButtonCount + 1> all{};
  std::ranges::copy(buttons_, all.begin());
  all.back() = waveform_;
  return all;
}

// Single buttons --------------------------------------------------------------------------------

bool OVTransportControls::isEnabled(Button button) const {
  return view(button) && view(button)->isEnabled();
}

void OVTransportControls::setOn(Button button, bool on) {
  if (view(button)) {
    view(button)->setIsOn(on);
  }
}

void OVTransportControls::press(Button button, std::uint16_t keyCode) {
  if (!isEnabled(button) || view(button)->isHighlighted()) {
    return;
  }
  presses_[keyCode] = button;
  if (isSwitch(button)) {
    setOn(button, !standsFor(button));
  }
  view(button)->setIsHighlighted(true);
  requestRedraw(view(button));
}

std::optional<Button> OVTransportControls::release(std::uint16_t keyCode) {
  const auto press = presses_.extract(keyCode);
  if (!press) {
    return std::nullopt;
  }
  cancelPress(press.mapped());
  return press.mapped();
}

void OVTransportControls::cancelPress(Button button) {
  std::erase_if(presses_, [button](const auto& press) { return press.second == button; });
  if (!view(button)) {
    return;
  }
  view(button)->cancelPress();
  if (isSwitch(button)) {
    setOn(button, standsFor(button));
  }
}
