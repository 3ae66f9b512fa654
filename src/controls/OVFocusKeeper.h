#pragma once

#include <span>

#include <QPointer>
#include <QWidget>

/// Gives the keyboard back to a control of a window that was disabled for a while. Left to itself,
/// Qt moves the keyboard on to the next control that is enabled, and leaves it there.
///
/// Threads: main. Real-time: not safe.
class OVFocusKeeper {
 public:
  /// Call before `controls` are disabled: takes the keyboard from the one that has it, if any.
  /// Nothing of the window has it then, and a second call changes nothing. The window may be null,
  /// and so may each of the controls.
  void takeFrom(const QWidget* window, std::span<QWidget* const> controls);

  /// Call when they are enabled again. Nothing if something else has the keyboard by now.
  void giveBack(const QWidget* window);

 private:
  QPointer<QWidget> former_;  // null when nothing is to be given back
};
