#include "translations/TranslationFile.h"

#include <algorithm>
#include <map>

#include <QFile>
#include <QRegularExpression>
#include <QXmlStreamReader>

namespace translations {

namespace {

constexpr QChar kNoBreakSpace = u'\u00a0';

struct QuotationMarks {
  QChar opening;
  QChar closing;
};

QuotationMarks marksOf(const QString& language) {
  static const std::map<QString, QuotationMarks> marks{
      {"de", {u'„', u'“'}}, {"fr", {u'«', u'»'}}, {"es", {u'«', u'»'}}, {"ja", {u'「', u'」'}}};
  const auto found = marks.find(language);
  return found == marks.end() ? QuotationMarks{u'“', u'”'} : found->second;
}

QStringList placeholdersOf(const QString& text) {
  static const QRegularExpression placeholder("%(L?[0-9]+|[a-zA-Z@])");
  QStringList found;
  for (auto match = placeholder.globalMatch(text); match.hasNext();) {
    found << match.next().captured();
  }
  found.sort();
  return found;
}

qsizetype keyLettersOf(const QString& text) {
  static const QRegularExpression keyLetter("(?<!&)&\\p{L}");
  return text.count(keyLetter);
}

/// The sign at the end, as the key would have it.
QChar endOf(const QString& text) {
  static const std::map<QChar, QChar> wide{
      {u'。', u'.'}, {u'：', u':'}, {u'？', u'?'}, {u'！', u'!'}};
  static const QString kSigns = QStringLiteral(".:?!…");
  const QChar last = text.isEmpty() ? QChar() : text.back();
  const auto narrow = wide.find(last);
  const QChar sign = narrow == wide.end() ? last : narrow->second;
  return kSigns.contains(sign) ? sign : QChar();
}

QString quotationComplaint(const QString& text, const QuotationMarks& marks) {
  static const QString kAll = QStringLiteral("\"„“”‚‘«»‹›「」『』");
  bool open = false;
  for (const QChar c : text) {
    if (!kAll.contains(c)) {
      continue;
    }
    if (c != (open ? marks.closing : marks.opening)) {
      return QStringLiteral("quotation mark ") + c;
    }
    open = !open;
  }
  return open ? QStringLiteral("a quotation is not closed") : QString();
}

QStringList complaintsAboutSpaces(const QString& text, const QString& language) {
  QStringList complaints;
  if (text.contains(QLatin1String("  "))) {
    complaints << "two spaces";
  }
  if (language == QLatin1String("fr")) {
    static const QRegularExpression tight("[^\u00a0\u202f][:;!?»](?!//)|«[^\u00a0\u202f]");
    if (text.contains(tight)) {
      complaints << "no no-break space before : ; ! ? or within « »";
    }
  }
  if (language == QLatin1String("de") && text.contains(u'…') &&
      !text.contains(QString(kNoBreakSpace) + u'…')) {
    complaints << "no no-break space before …";
  }
  if (language == QLatin1String("es") &&
      (text.count(u'?') != text.count(u'¿') || text.count(u'!') != text.count(u'¡'))) {
    complaints << "no ¿ or ¡ for its ? or !";
  }
  return complaints;
}

Translation readMessage(QXmlStreamReader& xml) {
  Translation translation;
  while (xml.readNextStartElement()) {
    if (xml.name() == QLatin1String("source")) {
      translation.key = xml.readElementText();
    } else if (xml.name() == QLatin1String("translation")) {
      const QString type = xml.attributes().value("type").toString();
      translation.needed = type != "vanished" && type != "obsolete";
      translation.text = xml.readElementText();
      translation.done = type != "unfinished" && !translation.text.isEmpty();
    } else {
      xml.skipCurrentElement();
    }
  }
  return translation;
}

bool isShown(const QString& property) {
  static const QStringList kShown{"text",      "title",           "windowTitle",
                                  "toolTip",   "statusTip",       "accessibleName",
                                  "whatsThis", "placeholderText", "accessibleDescription"};
  return kShown.contains(property);
}

}  // namespace

TranslationFile readTranslations(const QString& path) {
  TranslationFile result;
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly)) {
    result.errors << path + ": cannot be read";
    return result;
  }
  QXmlStreamReader xml(&file);
  while (!xml.atEnd()) {
    if (xml.readNext() != QXmlStreamReader::StartElement) {
      continue;
    }
    if (xml.name() == QLatin1String("TS")) {
      result.language = xml.attributes().value("language").toString();
    } else if (xml.name() == QLatin1String("name")) {
      const QString context = xml.readElementText();
      if (context != QLatin1String("Orvo")) {
        result.errors << "texts are looked up in the context Orvo, not in " + context;
      }
    } else if (xml.name() == QLatin1String("message")) {
      result.translations.push_back(readMessage(xml));
    }
  }
  if (xml.hasError()) {
    result.errors << xml.errorString();
  }
  return result;
}

std::set<QString> textsOfInterface(const QString& path, QStringList& complaints) {
  std::set<QString> texts;
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly)) {
    complaints << path + ": cannot be read";
    return texts;
  }
  QXmlStreamReader xml(&file);
  QString property;
  while (!xml.atEnd()) {
    if (xml.readNext() != QXmlStreamReader::StartElement) {
      continue;
    }
    if (xml.name() == QLatin1String("property")) {
      property = xml.attributes().value("name").toString();
    } else if (xml.name() == QLatin1String("string")) {
      const bool translated = xml.attributes().value("notr") != QLatin1String("true");
      const QString text = xml.readElementText();
      if (translated) {
        texts.insert(text);
      } else if (isShown(property)) {
        complaints << "shown, but marked as not to be translated: " + text;
      }
    }
  }
  if (xml.hasError()) {
    complaints << xml.errorString();
  }
  return texts;
}

QStringList complaintsAboutKeys(const TranslationFile& file, const std::set<QString>& keys) {
  QStringList complaints = file.errors;
  std::set<QString> missing = keys;
  std::set<QString> seen;
  for (const Translation& translation : file.translations) {
    if (!seen.insert(translation.key).second) {
      complaints << "twice: " + translation.key;
    }
    if (keys.count(translation.key) == 0 || !translation.needed) {
      complaints << "no longer in the sources: " + translation.key;
    } else if (translation.done) {
      missing.erase(translation.key);
    }
  }
  for (const QString& key : missing) {
    complaints << "not translated: " + key;
  }
  return complaints;
}

QStringList complaintsAboutText(const Translation& translation, const QString& language) {
  const QString& key = translation.key;
  const QString& text = translation.text;
  if (key == text) {
    return {};  // names, addresses, letters of keys
  }
  QStringList found;
  const auto expect = [&found](bool holds, const QString& otherwise) {
    if (!holds) {
      found << otherwise;
    }
  };
  expect(placeholdersOf(key) == placeholdersOf(text), "other placeholders");
  expect(keyLettersOf(key) == keyLettersOf(text), "other key letters");
  expect(key.count(u'\n') == text.count(u'\n'), "other paragraphs");
  expect(key.front().isSpace() == text.front().isSpace() &&
             key.back().isSpace() == text.back().isSpace(),
         "other spaces at the ends");
  expect(endOf(key) == endOf(text), "another sign at the end");
  expect(!text.contains(u'\''), "a straight apostrophe");
  expect(!text.contains(QLatin1String("...")), "three dots for an ellipsis");
  const QuotationMarks marks = marksOf(language);
  expect(!key.contains(u'“') || text.contains(marks.opening), "no quotation marks");
  const QString quotation = quotationComplaint(text, marks);
  expect(quotation.isEmpty(), quotation);
  found << complaintsAboutSpaces(text, language);
  QStringList complaints;
  for (const QString& complaint : found) {
    complaints << complaint + ": " + text;
  }
  return complaints;
}

}  // namespace translations
