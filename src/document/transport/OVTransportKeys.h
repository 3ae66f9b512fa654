#pragma once

#include <cstdint>
#include <functional>
#include <map>

#include "document/transport/OVTransportControls.h"

/// The window's keys R, Return and Space: key-down shows a button as pressed, key-up runs its
/// command. The press of each key is kept until the key is released, or until it is cancelled
/// because the window lost the keyboard focus or the button was disabled.
///
/// Threads: main. Real-time: not safe.
class OVTransportKeys {
 public:
  using Button = OVTransportControls::Button;

  /// `command` runs the menu command of a button: rec, prev or play.
  OVTransportKeys(OVTransportControls& controls, const OVTransport& transport,
                  std::function<void(Button)> command);

  /// `keyCode` is a hardware key code. Other keys do nothing.
  void keyDown(std::uint16_t keyCode);
  void keyUp(std::uint16_t keyCode);
  void cancel(std::uint16_t keyCode);

 private:
  [[nodiscard]] bool spaceEndsRecording() const;
  void press(std::uint16_t keyCode, Button button);
  bool release(std::uint16_t keyCode, Button button);

  OVTransportControls& controls_;
  const OVTransport& transport_;
  const std::function<void(Button)> command_;
  std::map<std::uint16_t, Button> presses_;  // the button pressed by each held key
};
