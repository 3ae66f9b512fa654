#pragma once

#include <span>

#include <QPointer>
#include <QWidget>

/// Restores the keyboard focus to a control that was temporarily disabled. By default Qt moves the
/// focus to the next enabled control and leaves it there.
///
/// Threads: main. Real-time: not safe.
class OVFocusKeeper {
 public:
  /// Call before `controls` are disabled: clears the focus of the one that has it, if any. A second
  /// call changes nothing. The window and each control may be null.
  void takeFrom(const QWidget* window, std::span<QWidget* const> controls);

  /// Call when they are enabled again. Does nothing if another widget has the focus by then.
  void giveBack(const QWidget* window);

 private:
  QPointer<QWidget> former_;  // null when there is no focus to restore
};
