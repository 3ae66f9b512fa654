#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>

#include <QPointer>

#include "controls/OVFocusKeeper.h"
#include "document/transport/OVTransport.h"

class OVRecorderWindow;
class OVTransportButton;
class QWidget;

/// The six transport buttons of a window, any of which may be missing, and the enabled state of the
/// waveform view. They show the state of the transport.
///
///              recButton     playButton     the others, waveform
///   resting    enabled, off  enabled, off   enabled
///   recording  enabled, on   disabled       enabled
///   playing    disabled      enabled, on    enabled
///   file       disabled      disabled       disabled
///
/// Threads: main. Real-time: not safe.
class OVTransportControls {
 public:
  enum class Button : std::uint8_t { rec, play, prev, next, stop, pause };
  static constexpr std::size_t kButtonCount = 6;

  /// Finds the buttons and the waveform by their names in the window, and sets the buttons' icons.
  /// `action` is called with the pressed button while `target` exists.
  void connect(OVRecorderWindow* window, const std::weak_ptr<void>& target,
               const std::function<void(Button, OVTransportButton*)>& action);

  /// `available` is false while a file operation runs. Cancels the press, of a key or of the mouse,
  /// of each button that is disabled, and of the toggles when the state has changed.
  void show(OVTransportState state, bool available);

  [[nodiscard]] const QPointer<OVTransportButton>& view(Button button) const {
    return buttons_[static_cast<std::size_t>(button)];
  }
  [[nodiscard]] bool isEnabled(Button button) const;
  void setOn(Button button, bool on);

  /// Shows the button as pressed by a key, a toggle in its other state, until release(). Nothing if
  /// it is disabled or pressed already. Runs no command.
  void press(Button button, std::uint16_t keyCode);
  /// Ends the key's press: the button shows the transport's state again. The button that the key
  /// pressed; none if the press was cancelled meanwhile.
  std::optional<Button> release(std::uint16_t keyCode);

 private:
  [[nodiscard]] bool standsFor(Button button) const;
  void showButton(Button button, bool enabled);
  void cancelPress(Button button);
  [[nodiscard]] std::array<QWidget*, kButtonCount + 1> all() const;

  QPointer<OVRecorderWindow> window_;
  std::array<QPointer<OVTransportButton>, kButtonCount> buttons_;
  QPointer<QWidget> waveform_;
  std::map<std::uint16_t, Button> presses_;  // the button pressed by each held key
  OVTransportState state_ = OVTransportState::resting;
  OVFocusKeeper focusKeeper_;  // for controls disabled by a file operation
};
