#include "document/transport/OVTransportKeys.h"

#include <utility>

namespace {

// Key codes of the hardware keyboard.
constexpr std::uint16_t kKeyR = 15;
constexpr std::uint16_t kKeyReturn = 36;
constexpr std::uint16_t kKeySpace = 49;

}  // namespace

OVTransportKeys::OVTransportKeys(OVTransportControls& controls, const OVTransport& transport,
                                 std::function<void(Button)> command)
    : controls_(controls), transport_(transport), command_(std::move(command)) {}

void OVTransportKeys::keyDown(std::uint16_t keyCode) {
  if (keyCode == kKeyR) {
    press(keyCode, Button::rec);
  } else if (keyCode == kKeyReturn) {
    press(keyCode, Button::prev);
  } else if (keyCode == kKeySpace) {
    press(keyCode, spaceEndsRecording() ? Button::rec : Button::play);
  }
}

void OVTransportKeys::keyUp(std::uint16_t keyCode) {
  if (keyCode == kKeyR) {
    if (release(keyCode, Button::rec)) {
      command_(Button::rec);
    }
  } else if (keyCode == kKeyReturn) {
    if (release(keyCode, Button::prev)) {
      command_(Button::prev);
    }
  } else if (keyCode == kKeySpace) {
    if (spaceEndsRecording()) {
      release(keyCode, Button::rec);
      command_(Button::rec);
    } else if (release(keyCode, Button::play)) {
      command_(Button::play);
    }
  }
}

bool OVTransportKeys::spaceEndsRecording() const {
  return controls_.isEnabled(Button::rec) && transport_.isRecording();
}

void OVTransportKeys::press(std::uint16_t keyCode, Button button) {
  if (!controls_.isEnabled(button) || controls_.isPressed(button)) {
    return;
  }
  cancel(keyCode);  // a held Space changes to Play when the recording ends by itself
  presses_[keyCode] = button;
  controls_.press(button);
}

bool OVTransportKeys::release(std::uint16_t keyCode, Button button) {
  const bool released = controls_.isEnabled(button) && controls_.isPressed(button);
  if (released) {
    controls_.release(button);
  }
  cancel(keyCode);  // if it had pressed another button, or this one is disabled
  return released;
}

// Nothing is left to do if its button was released.
void OVTransportKeys::cancel(std::uint16_t keyCode) {
  if (const auto press = presses_.extract(keyCode)) {
    controls_.cancelPress(press.mapped());
  }
}
