#include "platform/mainloop/ShownName.h"

#include <QChar>
#include <QList>

namespace platform {
namespace {

constexpr char32_t kNonJoiner = 0x200C;  // Persian words are spelt with it
constexpr char32_t kJoiner = 0x200D;     // and many emoji are made with it
constexpr QChar kIsolate(0x2068);
constexpr QChar kEndOfIsolate(0x2069);

bool disturbsItsLine(char32_t character) {
  switch (QChar::category(character)) {
    case QChar::Other_Control:
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph:
      return true;
    case QChar::Other_Format:
      return character != kNonJoiner && character != kJoiner;
    default:
      return false;
  }
}

bool runsFromRightToLeft(char32_t character) {
  const QChar::Direction direction = QChar::direction(character);
  return direction == QChar::DirR || direction == QChar::DirAL;
}

}  // namespace

QString shownName(const QString& name) {
  QString line;
  bool isIsolated = false;
  for (const char32_t character : name.toUcs4()) {
    line += disturbsItsLine(character) ? QStringLiteral(" ") : QString::fromUcs4(&character, 1);
    isIsolated = isIsolated || runsFromRightToLeft(character);
  }
  return isIsolated ? kIsolate + line + kEndOfIsolate : line;
}

QString shownName(const std::string& name) {
  return shownName(QString::fromStdString(name));
}

}  // namespace platform
