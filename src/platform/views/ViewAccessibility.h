#pragma once

#include <functional>
#include <memory>
#include <utility>

#include <QAccessible>
#include <QString>
#include <QWidget>

#include "platform/base/Installed.h"

namespace platform {

/// Sets a self-drawn view's localised name and role for assistive technology. A view with a text
/// property "accessibleValue" exposes it as its value and, unless it has its own, as its
/// description.
///
/// Threads: main. Real-time: not safe.
void describeView(QWidget* view, const QString& name, QAccessible::Role role);

/// The role of a view whose texts are announced.
#if QT_VERSION >= QT_VERSION_CHECK(6, 8, 0)
inline constexpr QAccessible::Role kAnnouncerRole = QAccessible::StaticText;
#else
// Without announcements, screen readers on Linux read a notification when it is shown.
inline constexpr QAccessible::Role kAnnouncerRole = QAccessible::Notification;
#endif

/// Has texts read out. The default passes them to assistive technology, if there is any; tests
/// record them.
///
/// Threads: main. Real-time: not safe.
class Announcer {
 public:
  virtual ~Announcer() = default;
  static std::shared_ptr<Announcer> whenNoneIsInstalled();

  /// `text` is also the name or the description of `view`. A view that is not shown yet is
  /// announced before it is shown.
  virtual void announce(QWidget* view, const QString& text) = 0;
};

/// Announces by events of Qt: an announcement from Qt 6.8, before that an alert and the view's
/// being shown.
///
/// Threads: main. Real-time: not safe.
class QtAnnouncer final : public Announcer {
 public:
  /// Passes an event to assistive technology. Qt drops it if there is none, so tests have their
  /// own.
  using Send = std::function<void(QAccessibleEvent*)>;

  explicit QtAnnouncer(Send send = &QAccessible::updateAccessibility) : send_(std::move(send)) {}
  void announce(QWidget* view, const QString& text) override;

 private:
  const Send send_;
};

inline void announce(QWidget* view, const QString& text) {
  Installed<Announcer>::get()->announce(view, text);
}

}  // namespace platform
