// A login manager that only delays the machine's sleep, for a program on another bus than the
// machine's.
//
//   orvo_login_manager ADDRESS
//
// Prints "ready" when it can be called, "asked: WHAT, WHO, WHY, MODE" for each call, and "held: N"
// when the number of descriptors that the callers still hold has changed.

#include <iostream>

#include <QCoreApplication>
#include <QDBusConnection>
#include <QTimer>

#include "support/fakes/LoginManager.h"

namespace {

constexpr int kInterval = 20;  // milliseconds

void tell(const QString& text) {
  std::cout << text.toStdString() << '\n' << std::flush;
}

}  // namespace

int main(int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  support::LoginManager manager;
  const QStringList arguments = QCoreApplication::arguments();
  if (arguments.size() != 2 ||
      !manager.offerOn(QDBusConnection::connectToBus(arguments[1], QStringLiteral("bus")))) {
    std::cerr << "no bus\n";
    return 1;
  }
  std::size_t asked = 0;
  int held = 0;
  QTimer timer;
  QObject::connect(&timer, &QTimer::timeout, [&] {
    for (; asked < manager.calls.size(); ++asked) {
      tell(QStringLiteral("asked: ") + manager.calls[asked].join(QStringLiteral(", ")));
    }
    if (const int now = manager.held(); now != held) {
      held = now;
      tell(QStringLiteral("held: %1").arg(now));
    }
  });
  timer.start(kInterval);
  tell(QStringLiteral("ready"));
  return QCoreApplication::exec();
}
