#include "app/wrappedText.h"

#include <algorithm>
#include <array>

#include <QStringList>
#include <QTextBoundaryFinder>

namespace {

struct Range {
  char32_t first;
  char32_t last;
};

// Wide and full-width in Unicode's table of East Asian widths.
constexpr std::array kWide{
    Range{0x1100, 0x115F}, Range{0x2E80, 0x303E},   Range{0x3041, 0x4DBF},   Range{0x4E00, 0xA4CF},
    Range{0xAC00, 0xD7A3}, Range{0xF900, 0xFAFF},   Range{0xFE30, 0xFE6F},   Range{0xFF01, 0xFF60},
    Range{0xFFE0, 0xFFE6}, Range{0x1F300, 0x1FAFF}, Range{0x20000, 0x3FFFD},
};

bool isWide(char32_t character) {
  return std::any_of(kWide.begin(), kWide.end(), [character](const Range& range) {
    return character >= range.first && character <= range.last;
  });
}

bool isWithoutWidth(char32_t character) {
  const auto category = QChar::category(character);
  return category == QChar::Mark_NonSpacing || category == QChar::Mark_Enclosing ||
         category == QChar::Other_Format;
}

int columnsOf(char32_t character) {
  if (isWithoutWidth(character)) {
    return 0;
  }
  return isWide(character) ? 2 : 1;
}

// The parts of a text between which lines may break: after spaces, and beside wide characters where
// Unicode's rules allow it.
QStringList partsOf(const QString& text) {
  QStringList parts;
  QTextBoundaryFinder finder(QTextBoundaryFinder::Line, text);
  qsizetype begin = 0;
  for (qsizetype end = 1; end <= text.size(); ++end) {
    const QChar before = text.at(end - 1);
    finder.setPosition(end);
    const bool mayBreak =
        end == text.size() || before == u' ' ||
        (finder.isAtBoundary() && (isWide(before.unicode()) || isWide(text.at(end).unicode())));
    if (mayBreak) {
      parts << text.mid(begin, end - begin);
      begin = end;
    }
  }
  return parts;
}

QString trimmedAtItsEnd(QString line) {
  while (line.endsWith(u' ')) {
    line.chop(1);
  }
  return line;
}

}  // namespace

int columnsOf(QStringView text) {
  int columns = 0;
  for (const char32_t character : text.toUcs4()) {
    columns += columnsOf(character);
  }
  return columns;
}

QString wrappedText(const QString& text, int indentation, int columns) {
  const QString margin(indentation, u' ');
  QString result;
  QString line;
  for (const QString& part : partsOf(text)) {
    if (!line.isEmpty() && indentation + columnsOf(trimmedAtItsEnd(line + part)) > columns) {
      result += margin + trimmedAtItsEnd(line) + u'\n';
      line.clear();
    }
    line += part;
  }
  return result + margin + trimmedAtItsEnd(line) + u'\n';
}
