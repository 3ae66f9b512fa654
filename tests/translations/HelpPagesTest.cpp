// The help pages: the same page in every language, which names everything as the program does.
#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QXmlStreamReader>

#include "translations/TranslationFile.h"

namespace translations {
namespace {

using testing::Contains;
using testing::IsEmpty;

const QString kHelp = QStringLiteral(ORVO_REPOSITORY "/resources/help/");
const QString kTexts = QStringLiteral(ORVO_REPOSITORY "/resources/translations/");

/// What matters of a page.
struct Page {
  std::string error;
  std::vector<std::string> elements;  ///< names in order, those with an id as name#id
  std::vector<QString> labels;        ///< what stands in <b>
  std::vector<QString> links;         ///< of href and src
  QString language;
};

Page readPage(const QString& path) {
  Page page;
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly)) {
    page.error = "it cannot be read";
  }
  QXmlStreamReader reader(&file);
  bool isLabel = false;
  while (!reader.atEnd()) {
    reader.readNext();
    if (reader.isStartElement()) {
      const auto attributes = reader.attributes();
      const QString id = attributes.value("id").toString();
      page.elements.push_back(
          (reader.name().toString() + (id.isEmpty() ? QString() : "#" + id)).toStdString());
      for (const char* const link : {"href", "src"}) {
        if (attributes.hasAttribute(link)) {
          page.links.push_back(attributes.value(link).toString());
        }
      }
      if (reader.name() == QLatin1String("html")) {
        page.language = attributes.value("lang").toString();
      }
      isLabel = reader.name() == QLatin1String("b");
    } else if (reader.isCharacters() && isLabel) {
      page.labels.push_back(reader.text().toString().simplified());
      isLabel = false;
    }
  }
  if (reader.hasError()) {
    page.error = reader.errorString().toStdString();
  }
  return page;
}

Page pageIn(const QString& language) {
  return readPage(kHelp + language + "/index.html");
}

QStringList languages() {
  QStringList names;
  for (const QString& file : QDir(kTexts).entryList({"orvo_*.ts"})) {
    names << file.mid(5).chopped(3);
  }
  return names;
}

QStringList withEnglish() {
  QStringList names = languages();
  names << "en";
  return names;
}

/// A text as it is shown: without the letters for the keyboard.
QString shown(QString text) {
  static const QRegularExpression letters("\\(&.\\)|&");
  return text.remove(letters).simplified();
}

/// The texts of the program in English, and what they are in a language.
std::map<QString, QString> textsIn(const QString& language) {
  std::map<QString, QString> texts;
  for (const Translation& each :
       readTranslations(kTexts + "orvo_" + language + ".ts").translations) {
    texts[shown(each.key)] = shown(each.text);
  }
  return texts;
}

TEST(HelpPagesTest, EveryLanguageOfTheProgramHasThePage) {
  ASSERT_TRUE(languages().contains("de"));
  for (const QString& language : withEnglish()) {
    const Page page = pageIn(language);
    EXPECT_EQ(page.error, "") << language.toStdString();
    EXPECT_EQ(page.language.toStdString(), QString(language).replace('_', '-').toStdString());
  }
}

TEST(HelpPagesTest, NoPageIsOfALanguageThatTheProgramLacks) {
  for (const QString& folder : QDir(kHelp).entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
    EXPECT_TRUE(withEnglish().contains(folder)) << folder.toStdString();
  }
}

TEST(HelpPagesTest, EachIsBuiltLikeTheEnglishOne) {
  const Page english = pageIn("en");
  EXPECT_THAT(english.elements, Contains("section#keys"));
  for (const QString& language : languages()) {
    const Page page = pageIn(language);
    EXPECT_EQ(page.labels.size(), english.labels.size()) << language.toStdString();
    const auto sorted = [](std::vector<std::string> names) {  // words stand in other places
      std::sort(names.begin(), names.end());
      return names;
    };
    EXPECT_EQ(sorted(page.elements), sorted(english.elements)) << language.toStdString();
  }
}

TEST(HelpPagesTest, EnglishLabelsAreTextsOfTheProgram) {
  const auto texts = textsIn("de");
  ASSERT_FALSE(texts.empty());
  for (const QString& label : pageIn("en").labels) {
    EXPECT_TRUE(texts.contains(label)) << label.toStdString();
  }
}

TEST(HelpPagesTest, LabelsOfEachLanguageAreTheTranslationsOfTheEnglishOnes) {
  for (const QString& language : languages()) {
    const auto texts = textsIn(language);
    std::multiset<std::string> expected;
    for (const QString& label : pageIn("en").labels) {
      const auto found = texts.find(label);
      expected.insert(found == texts.end() ? "?" : found->second.toStdString());
    }
    std::multiset<std::string> labels;
    for (const QString& label : pageIn(language).labels) {
      labels.insert(label.toStdString());
    }
    EXPECT_EQ(labels, expected) << language.toStdString();
  }
}

TEST(HelpPagesTest, LinksLeadToPagesAndSectionsThatAreThere) {
  const std::set<QString> elsewhere{"../window.png"};  // the build puts it there
  for (const QString& language : withEnglish()) {
    const Page page = pageIn(language);
    EXPECT_GT(page.links.size(), 10U);
    for (const QString& link : page.links) {
      if (link.startsWith('#')) {
        EXPECT_THAT(page.elements, Contains("section" + link.toStdString()));
      } else {
        EXPECT_TRUE(elsewhere.contains(link) || QFile::exists(kHelp + language + "/" + link))
            << language.toStdString() << ": " << link.toStdString();
      }
    }
  }
}

TEST(HelpPagesTest, PagesNameNothingOutsideTheInstallation) {
  for (const QString& language : withEnglish()) {
    for (const QString& link : pageIn(language).links) {
      EXPECT_FALSE(link.contains(':') || link.startsWith('/')) << link.toStdString();
    }
  }
}

}  // namespace
}  // namespace translations
