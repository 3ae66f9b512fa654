#include "platform/Localization.h"

#include <QCoreApplication>

namespace platform {

QString localized(const char* englishText) {
  return QCoreApplication::translate("Orvo", englishText);
}

std::string localizedUtf8(const char* englishText) {
  return localized(englishText).toStdString();
}

}  // namespace platform
