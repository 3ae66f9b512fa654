#include "platform/desktop/DesktopColours.h"

#include <QApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

#include "platform/base/ApplicationServices.h"
#include "platform/desktop/DialogStyle.h"

namespace platform {

namespace {

const QString kService = QStringLiteral("org.freedesktop.portal.Desktop");
const QString kPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString kInterface = QStringLiteral("org.freedesktop.portal.Settings");
const QString kGroup = QStringLiteral("org.freedesktop.appearance");
const QString kKey = QStringLiteral("color-scheme");
constexpr uint kPreferDark = 1;

bool isDarkPalette(const QPalette& palette) {
  return palette.color(QPalette::Window).lightness() <
         palette.color(QPalette::WindowText).lightness();
}

// The portal's Read wraps its reply in two variants, newer calls in one.
QVariant unwrapped(QVariant value) {
  while (value.canConvert<QDBusVariant>()) {
    value = value.value<QDBusVariant>().variant();
  }
  return value;
}

}  // namespace

DesktopColours::DesktopColours(const QDBusConnection& bus, QObject* parent) : QObject(parent) {
  if (!bus.isConnected()) {
    return;
  }
  qRegisterMetaType<QDBusVariant>();  // connect() looks for a slot's types by their names
  QDBusConnection connection = bus;
  // With the portal's name as the sender, Qt would wait for the bus to find it.
  if (!connection.connect(QString(), kPath, kInterface, QStringLiteral("SettingChanged"), this,
                          SLOT(settingChanged(QString, QString, QDBusVariant)))) {
    ConsoleLog("changes between light and dark are not followed: %s",
               qUtf8Printable(connection.lastError().message()));
  }
  QDBusMessage question =
      QDBusMessage::createMethodCall(kService, kPath, kInterface, QStringLiteral("Read"));
  question.setArguments({kGroup, kKey});
  auto* const watcher = new QDBusPendingCallWatcher(connection.asyncCall(question), this);
  QObject::connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
    const QDBusPendingReply<QDBusVariant> answer = *watcher;
    if (!answer.isError() && !hasChanged_) {
      follow(answer.value().variant());
    }
    watcher->deleteLater();
  });
}

void DesktopColours::settingChanged(const QString& group, const QString& key,
                                    const QDBusVariant& value) {
  if (group == kGroup && key == kKey) {
    hasChanged_ = true;
    follow(value.variant());
  }
}

void DesktopColours::follow(const QVariant& colorScheme) {
  const bool wanted = unwrapped(colorScheme).toUInt() == kPreferDark;
  if (wanted == isDark_ || (wanted && isDarkPalette(QApplication::palette()))) {
    return;
  }
  isDark_ = wanted;
  setDark(wanted);
}

void DesktopColours::setDark(bool isDark) {
  QApplication::setPalette(isDark ? darkPalette() : DialogStyle::lightPalette());
}

QPalette DesktopColours::darkPalette() {
  const QColor ground(45, 46, 50);
  const QColor text(236, 237, 240);
  const QColor faint(150, 152, 158);
  const QPalette current = QApplication::palette();
  QPalette palette(ground);
  palette.setColor(QPalette::Base, QColor(32, 33, 37));
  palette.setColor(QPalette::AlternateBase, QColor(39, 40, 44));
  palette.setColor(QPalette::ToolTipBase, QColor(60, 61, 66));
  for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
    for (const auto role : {QPalette::Highlight, QPalette::HighlightedText}) {
      palette.setColor(group, role, current.color(group, role));
    }
  }
  palette.setColor(QPalette::Link, QColor(94, 196, 206));
  palette.setColor(QPalette::LinkVisited, QColor(160, 150, 214));
  for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText,
                          QPalette::ToolTipText, QPalette::BrightText}) {
    palette.setColor(role, text);
    palette.setColor(QPalette::Disabled, role, faint);
  }
  palette.setColor(QPalette::PlaceholderText, faint);
  return palette;
}

}  // namespace platform
