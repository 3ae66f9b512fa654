#include "platform/desktop/DesktopPortal.h"

#include <QDBusConnection>
#include <QDBusMessage>

namespace platform::portal {

QString nextToken() {
  static int number = 0;
  return QStringLiteral("orvo%1").arg(++number);
}

QString requestPath(const QDBusConnection& bus, const QString& token) {
  QString caller = bus.baseService().mid(1);
  caller.replace(QLatin1Char('.'), QLatin1Char('_'));
  return QLatin1String(kPath) + QStringLiteral("/request/%1/%2").arg(caller, token);
}

void closeRequest(const QDBusConnection& bus, const QString& path) {
  bus.send(QDBusMessage::createMethodCall(
      QLatin1String(kService), path, QLatin1String(kRequestInterface), QStringLiteral("Close")));
}

}  // namespace platform::portal
