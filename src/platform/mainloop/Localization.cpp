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

QString sentencesInARow(const QStringList& sentences) {
  constexpr QChar kIdeographicFullStop(0x3002);
  QString row;
  for (const QString& sentence : sentences) {
    if (!row.isEmpty() && !sentence.isEmpty() && !row.endsWith(kIdeographicFullStop)) {
      row += QLatin1Char(' ');
    }
    row += sentence;
  }
  return row;
}

}  // namespace platform
