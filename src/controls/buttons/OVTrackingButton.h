#pragma once

#include <functional>
#include <memory>

#include <QWidget>

#include "platform/views/FocusRing.h"

/// Base of the window's picture buttons: on and pressed state, following the mouse while
/// it is down, and sending an action to a target. A subclass draws itself.
///
/// Pressing a switch turns it at once; dragging out shows the old state again and back in the new
/// one, and only a release inside sends the action, which then finds the new state. A push button
/// never changes isOn(). While disabled (QWidget::setEnabled) the mouse does nothing. A window that
/// loses the keyboard cancels the press: its release may be lost.
///
/// The keyboard reaches it by Tab and presses it with Ctrl+Return; every other key goes on to the
/// window, which keeps its transport keys that way. A click does not take the focus. To assistive
/// technology it is a button, checkable if it is a switch, that can be pressed.
///
/// Threads: main. Real-time: not safe.
class OVTrackingButton : public QWidget {
  Q_OBJECT

 public:
  /// Receives the button that was clicked.
  using Action = std::function<void(OVTrackingButton*)>;

  explicit OVTrackingButton(QWidget* parent = nullptr);

  [[nodiscard]] bool isOn() const { return isOn_; }
  void setIsOn(bool isOn);  ///< redraws

  [[nodiscard]] bool isHighlighted() const { return isHighlighted_; }
  void setIsHighlighted(bool isHighlighted) { isHighlighted_ = isHighlighted; }  ///< no redraw

  [[nodiscard]] bool isSwitch() const { return isSwitch_; }
  void setIsSwitch(bool isSwitch) { isSwitch_ = isSwitch; }  ///< no redraw

  /// The action is sent only while the target lives; with no target ever set it is not sent. The
  /// target is kept alive for the length of the action, the button is not.
  [[nodiscard]] std::weak_ptr<void> target() const { return target_; }
  void setTarget(std::weak_ptr<void> target);
  [[nodiscard]] const Action& action() const { return action_; }
  void setAction(Action action);

  /// Ends a press without its action: the highlight goes, a switch that the mouse holds shows its
  /// old state again, and the mouse does nothing until it is pressed again. Redraws.
  void cancelPress();

  /// A click without a mouse, as keyboard and assistive technology make it: turns a switch and
  /// sends the action. Nothing while disabled.
  void performClick();

 protected:
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void keyReleaseEvent(QKeyEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  void changeEvent(QEvent* event) override;

  /// For a subclass to draw above all else.
  [[nodiscard]] const platform::FocusRing& focusRing() const { return focusRing_; }

 private:
  [[nodiscard]] bool tracks(const QMouseEvent* event) const;
  void showOn(bool isOn);
  void announceState();
  void sendAction();

  std::weak_ptr<void> target_;
  Action action_;
  bool isHighlighted_ = false;
  bool isOn_ = false;
  bool prevOn_ = false;  // isOn_ at mouse-down, switches only
  bool isSwitch_ = false;
  bool isTracking_ = false;  // the mouse holds it, inside or outside
  bool isKeyDown_ = false;   // the key that pressed it has not come up yet
  platform::FocusRing focusRing_;
};
