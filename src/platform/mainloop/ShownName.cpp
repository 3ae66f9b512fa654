#include "platform/mainloop/ShownName.h"

#include <QChar>
#include <QList>

namespace platform {
namespace {

constexpr char32_t kNonJoiner = 0x200C;  // Persian words are spelt with it
constexpr char32_t kJoiner = 0x200D;     // and many emoji are made with it
constexpr char32_t kIsolate = 0x2068;
constexpr char32_t kEndOfIsolate = 0x2069;

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
    const char32_t shown = disturbsItsLine(character) ? U' ' : character;
    line += QString::fromUcs4(&shown, 1);
    isIsolated = isIsolated || runsFromRightToLeft(shown);
  }
  return isIsolated ? QChar(kIsolate) + line + QChar(kEndOfIsolate) : line;
}

QString shownName(const std::string& name) {
  return shownName(QString::fromStdString(name));
}

QString shownMessage(const std::string& message) {
  QString lines;
  for (const char32_t character : QString::fromStdString(message).toUcs4()) {
    const bool stays = character == U'\n' || character == kIsolate || character == kEndOfIsolate ||
                       !disturbsItsLine(character);
    lines += stays ? QString::fromUcs4(&character, 1) : QStringLiteral(" ");
  }
  return lines;
}

}  // namespace platform
