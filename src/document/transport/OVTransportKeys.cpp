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
    controls_.press(Button::rec, keyCode);
  } else if (keyCode == kKeyReturn) {
    controls_.press(Button::prev, keyCode);
  } else if (keyCode == kKeySpace) {
    const bool endsRecording = controls_.isEnabled(Button::rec) && transport_.isRecording();
    controls_.press(endsRecording ? Button::rec : Button::play, keyCode);
  }
}

void OVTransportKeys::keyUp(std::uint16_t keyCode) {
  if (const auto button = controls_.release(keyCode)) {
    command_(*button);
  }
}
