// Every text that a person reads, in every language that there is.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <QDir>

#include "translations/SourceTexts.h"
#include "translations/TranslationFile.h"

namespace translations {
namespace {

using testing::Contains;
using testing::IsEmpty;
using testing::SizeIs;

const std::filesystem::path kRoot = ORVO_REPOSITORY;

// Told in English on purpose.
const std::vector<std::string> kEnglishOnly{
    // An alert that comes from below everything that knows of languages.
    "couldn't open temp file for writing!", "The file ",
    " couldn't be opened for writing. This shouldn't happen! Check your permissions.",
    // The name of a call that failed, in the alert about it.
    "AudioQueueStart failed",
    // In a line of the console.
    "It is longer than ", "further messages about this file are left out",
    "No sound system could be reached", "No sound %s could be opened through \"%s\" (%d)%s",
    "; no sound server was found",
    // Names of files: the same in every language.
    "Orvo recording", "Orvo recording ", "yyyy-MM-dd HH.mm", "yyyy-MM-dd HH.mm.ss",
    "Orvo recording %Y-%m-%d %H.%M.%S",
    // Names of memory and of fields within files.
    "orvo journal", "recorded date", "track number", "Cover (front)",
    // The manual page, which is English.
    "\n.Dt ORVO 1\n.Os\n.Sh NAME\n.Nm orvo\n.Nd audio recorder and simple editor\n.Sh "
    "SYNOPSIS\n.Nm\n"
    ".Op Ar OPTION ...\n.Op Fl Fl\n.Op Ar\n.Sh DESCRIPTION\n",
    "LANGUAGE, LC_ALL, LANG", "Fl Fl", ".Bl -tag -width Ds\n", "EXIT STATUS",
    // Names of fonts.
    "Liberation Sans", "Nimbus Sans", "Noto Sans", "DejaVu Sans",
    // The name of a lock in the compiler's warnings.
    "waveform summary"};

bool isEnglishOnly(const std::string& complaint) {
  return std::any_of(kEnglishOnly.begin(), kEnglishOnly.end(), [&](const std::string& text) {
    return complaint.ends_with("marked: " + text);
  });
}

std::string contentOf(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::vector<std::filesystem::path> sources() {
  std::vector<std::filesystem::path> paths;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(kRoot / "src")) {
    const auto extension = entry.path().extension();
    if (entry.is_regular_file() && (extension == ".cpp" || extension == ".h")) {
      paths.push_back(entry.path());
    }
  }
  return paths;
}

std::vector<std::filesystem::path> interfaces() {
  std::vector<std::filesystem::path> paths;
  for (const auto& entry : std::filesystem::directory_iterator(kRoot / "resources")) {
    if (entry.path().extension() == ".ui") {
      paths.push_back(entry.path());
    }
  }
  return paths;
}

QString toQt(const std::filesystem::path& path) {
  return QString::fromStdString(path.string());
}

std::set<QString> allKeys() {
  std::set<QString> keys;
  for (const auto& path : sources()) {
    for (const std::string& key : textsOfSource(contentOf(path)).keys) {
      keys.insert(QString::fromStdString(key));
    }
  }
  QStringList ignored;
  for (const auto& path : interfaces()) {
    keys.merge(textsOfInterface(toQt(path), ignored));
  }
  return keys;
}

/// The languages that there are, by their files' names.
QStringList languages() {
  QStringList names;
  const QDir folder(toQt(kRoot / "resources" / "translations"));
  for (const QString& file : folder.entryList({"orvo_*.ts"})) {
    names << file.mid(5).chopped(3);
  }
  return names;
}

TranslationFile translationsInto(const QString& language) {
  return readTranslations(
      toQt(kRoot / "resources" / "translations" / ("orvo_" + language.toStdString() + ".ts")));
}

TEST(LanguagesTest, SourcesTextsAndLanguagesAreFound) {
  EXPECT_THAT(sources(), Contains(kRoot / "src" / "app" / "main.cpp"));
  EXPECT_TRUE(allKeys().contains("&Save"));
  EXPECT_TRUE(languages().contains("de"));
}

TEST(LanguagesTest, EveryTextOfTheSourcesIsMarkedForTranslation) {
  for (const auto& path : sources()) {
    for (const std::string& complaint : textsOfSource(contentOf(path)).complaints) {
      EXPECT_TRUE(isEnglishOnly(complaint)) << path << ":" << complaint;
    }
  }
}

TEST(LanguagesTest, EveryTextOfTheInterfaceFilesIsTranslated) {
  EXPECT_THAT(interfaces(), SizeIs(testing::Ge(1)));
  for (const auto& path : interfaces()) {
    QStringList complaints;
    EXPECT_THAT(textsOfInterface(toQt(path), complaints), Contains(QString("Record")));
    EXPECT_THAT(complaints, IsEmpty()) << path;
  }
}

TEST(LanguagesTest, TextsOfEveryKindAreKnown) {
  const auto keys = allKeys();
  for (const char* key : {"Unnamed", "&File", "Progress", "The disk is full.", "&Undo %1",
                          "Core Audio returned the error: %s (%s)", "Waveform"}) {
    EXPECT_THAT(keys, Contains(QString(key)));
  }
  EXPECT_GT(keys.size(), 120U);
}

TEST(LanguagesTest, EnglishHasOneKindOfApostropheAndOfQuotationMarks) {
  for (const QString& key : allKeys()) {
    if (key != QLatin1String("this shouldn't happen. contact ")) {  // a given text
      EXPECT_FALSE(key.contains(u'\'') || key.contains(u'"')) << key.toStdString();
    }
  }
}

TEST(LanguagesTest, GermanFrenchSpanishJapaneseAndSimplifiedChineseAreThere) {
  for (const char* language : {"de", "fr", "es", "ja", "zh_CN"}) {
    EXPECT_THAT(languages(), Contains(QString(language)));
  }
}

TEST(LanguagesTest, EachTranslatesEveryTextAndNoOther) {
  const auto keys = allKeys();
  for (const QString& language : languages()) {
    EXPECT_EQ(translationsInto(language).language, language);
    EXPECT_EQ(complaintsAboutKeys(translationsInto(language), keys).join("\n").toStdString(), "")
        << language.toStdString();
  }
}

TEST(LanguagesTest, EachKeepsPlaceholdersKeyLettersAndItsOwnPunctuation) {
  for (const QString& language : languages()) {
    for (const Translation& translation : translationsInto(language).translations) {
      EXPECT_EQ(complaintsAboutText(translation, language).join("\n").toStdString(), "")
          << language.toStdString();
    }
  }
}

TEST(LanguagesTest, EachIsInTheDesktopEntry) {
  const std::string entry = contentOf(kRoot / "resources" / "desktop" / "entry.desktop.in");
  for (const QString& language : languages()) {
    for (const char* key : {"GenericName", "Comment", "Keywords", "Name"}) {
      const std::string line = std::string("\n") + key + "[" + language.toStdString() + "]=";
      EXPECT_THAT(entry, testing::HasSubstr(line));
    }
  }
}

TEST(LanguagesTest, EachIsInTheMetainfoWhereverEnglishIs) {
  for (const char* const name : {"metainfo.xml.in", "mime.xml.in"}) {
    const std::string text = contentOf(kRoot / "resources" / "desktop" / name);
    const auto count = [&text](const std::string& word) {
      std::size_t found = 0;
      for (std::size_t at = text.find(word); at != std::string::npos;
           at = text.find(word, at + 1)) {
        ++found;
      }
      return found;
    };
    std::size_t english = 0;
    for (const char* const element : {"<summary>", "<p>", "<li>", "<comment>"}) {
      english += count(element);
    }
    ASSERT_GT(english, 0U) << name;
    for (const QString& language : languages()) {
      EXPECT_EQ(count("xml:lang=\"" + language.toStdString() + "\""), english)
          << name << " " << language.toStdString();
    }
  }
}

}  // namespace
}  // namespace translations
