#pragma once

#include <QObject>
#include <QPalette>

class QDBusConnection;
class QDBusVariant;

namespace platform {

/// Follows the wish for a light or a dark desktop, where the desktop tells it over the message bus
/// (the settings portal's "color-scheme") and the toolkit does not follow it by itself: menus and
/// dialogs then take dark colours. A toolkit that brings dark colours of its own is left alone, and
/// so is everything where nobody answers.
///
/// The question is asked without waiting for the answer.
///
/// Threads: main. Real-time: not safe.
class DesktopColours : public QObject {
  Q_OBJECT

 public:
  /// Begins to follow the desktop on a message bus, usually the session's.
  explicit DesktopColours(const QDBusConnection& bus, QObject* parent = nullptr);

  /// Whether dark colours are put in at the moment.
  [[nodiscard]] bool isDark() const { return isDark_; }

  /// The dark colours.
  [[nodiscard]] static QPalette darkPalette();

 private Q_SLOTS:
  void settingChanged(const QString& group, const QString& key, const QDBusVariant& value);

 private:  // NOLINT(readability-redundant-access-specifiers): it ends the slots
  void follow(const QVariant& colorScheme);

  bool isDark_ = false;
  bool hasChanged_ = false;  // the answer to the first question is out of date
};

}  // namespace platform
