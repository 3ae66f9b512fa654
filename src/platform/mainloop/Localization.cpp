#include "platform/mainloop/Localization.h"

#include <QCoreApplication>

namespace platform {

QString detail::lookedUp(const char* english) {
  return QCoreApplication::translate("Orvo", english);
}

QString localized(TextKey key) {
  return detail::lookedUp(key.english());
}

std::string localizedUtf8(TextKey key) {
  return localized(key).toStdString();
}

}  // namespace platform
