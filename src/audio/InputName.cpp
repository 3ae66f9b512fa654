#include "audio/InputName.h"

#include <QChar>
#include <QList>
#include <QTextBoundaryFinder>

#include "platform/mainloop/ShownName.h"

namespace {

// A device's name needs none of these, not even those that a file's name may hold.
bool isInvisible(char32_t character) {
  switch (QChar::category(character)) {
    case QChar::Other_Control:
    case QChar::Other_Format:
    case QChar::Other_Surrogate:
    case QChar::Other_PrivateUse:
    case QChar::Other_NotAssigned:
      return true;
    default:
      return character == QChar::ReplacementCharacter;
  }
}

QString inOneLine(const QString& name) {
  QString line;
  for (const char32_t character : name.toUcs4()) {
    if (isInvisible(character)) {
      line += QLatin1Char(' ');
    } else {
      line += QString::fromUcs4(&character, 1);
    }
  }
  return line.simplified();
}

}  // namespace

QString shownInputName(const std::string& name) {
  const QString line = inOneLine(QString::fromStdString(name));
  QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, line);
  qsizetype cut = 0;
  for (int characters = 0; characters < kMaxInputNameLength; ++characters) {
    const qsizetype end = finder.toNextBoundary();
    if (end < 0 || end >= line.size()) {
      return platform::shownName(line);
    }
    if (characters == kMaxInputNameLength - 2) {
      cut = end;
    }
  }
  return platform::shownName(line.left(cut).trimmed() + QChar(0x2026));
}
