#include "rounds/RoundDesktop.h"

#include <QByteArray>
#include <QtGlobal>

RoundDesktop::RoundDesktop() : screen_(support::VirtualScreen::start(error_)) {
  if (screen_ == nullptr) {
    return;
  }
  if (!bus_.isRunning()) {
    error_ = "the message bus does not start";
    return;
  }
  for (const auto& [name, value] : screen_->environment()) {
    qputenv(name.c_str(), QByteArray::fromStdString(value));
  }
  qputenv("XDG_DATA_HOME", QByteArray::fromStdString(data_.path()));
  qputenv("DBUS_SESSION_BUS_ADDRESS", bus_.address().toUtf8());
  qputenv("DBUS_SYSTEM_BUS_ADDRESS", bus_.address().toUtf8());
}

bool RoundDesktop::offerLoginManager() {
  return loginManager_.offerOn(bus_.connect("login manager"));
}
