#pragma once

#include <cstdint>
#include <functional>

#include "document/transport/OVTransportControls.h"

/// The window's keys R, Return and Space: key-down shows a button as pressed, key-up runs its
/// command unless the press was cancelled meanwhile, by the window or by the controls.
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
  void cancel(std::uint16_t keyCode) { controls_.release(keyCode); }

 private:
  OVTransportControls& controls_;
  const OVTransport& transport_;
  const std::function<void(Button)> command_;
};
