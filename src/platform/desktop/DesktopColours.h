#pragma once

// moc must see the whole type of a slot's parameter.
#include <QDBusVariant>
#include <QObject>
#include <QPalette>

class QDBusConnection;

namespace platform {

/// Follows the desktop's light or dark preference, at the start and at every change, where the
/// desktop publishes it on D-Bus (the settings portal's "color-scheme") and Qt does not follow it
/// by itself: menus and dialogs then take dark colours. Where Qt's platform theme has its own dark
/// colours, or no portal answers, nothing changes.
///
/// The portal is queried asynchronously, and nothing here waits for the bus. If its signal cannot
/// be connected, one line is logged.
///
/// Threads: main. Real-time: not safe.
class DesktopColours : public QObject {
  Q_OBJECT

 public:
  /// Starts following the desktop on `bus`, usually the session bus.
  explicit DesktopColours(const QDBusConnection& bus, QObject* parent = nullptr);

  /// Whether the dark palette is in use.
  [[nodiscard]] bool isDark() const { return isDark_; }

  /// Dark colours, with the highlight of the colours in use.
  [[nodiscard]] static QPalette darkPalette();

  /// Gives the application dark colours, or its own again.
  static void setDark(bool isDark);

 private Q_SLOTS:
  void settingChanged(const QString& group, const QString& key, const QDBusVariant& value);

 private:  // NOLINT(readability-redundant-access-specifiers): it ends the slots
  void follow(const QVariant& colorScheme);

  bool isDark_ = false;
  bool hasChanged_ = false;  // the reply to the first query is out of date
};

}  // namespace platform
