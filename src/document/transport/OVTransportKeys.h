#pragma once

#include <cstdint>
#include <functional>
#include <map>

#include "document/transport/OVTransportControls.h"

/// The window's keys R, Return and Space: a key-down shows the press of a button, the key-up gives
/// its command. The press of each key is kept until it is released, or cancelled because the window
/// lost the keyboard or the button was disabled.
///
/// Threads: main. Real-time: not safe.
class OVTransportKeys {
 public:
  using Button = OVTransportControls::Button;

  /// `command` gives the menu command of a button: rec, prev or play.
  OVTransportKeys(OVTransportControls& controls, const OVTransport& transport,
                  std::function<void(Button)> command);

  /// `keyCode` is that of the hardware keyboard. Any other key does nothing.
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
  std::map<std::uint16_t, Button> presses_;  // what the key-down of each held key has pressed
};
