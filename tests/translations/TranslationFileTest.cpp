#include "translations/TranslationFile.h"

#include <gmock/gmock.h>
#include <QFile>
#include <QTemporaryDir>

namespace translations {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using testing::UnorderedElementsAre;

QString written(const QTemporaryDir& folder, const QString& name, const QByteArray& content) {
  const QString path = folder.filePath(name);
  QFile file(path);
  EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
  return path;
}

std::vector<std::string> strings(const QStringList& list) {
  std::vector<std::string> result;
  for (const QString& text : list) {
    result.push_back(text.toStdString());
  }
  return result;
}

QByteArray fileOf(const QByteArray& messages) {
  return "<?xml version=\"1.0\"?><!DOCTYPE TS><TS version=\"2.1\" language=\"de\"><context>"
         "<name>Orvo</name>" +
         messages + "</context></TS>";
}

QStringList complaintsAbout(const QString& key, const QString& text, const QString& language) {
  return complaintsAboutText({.key = key, .text = text}, language);
}

TEST(TranslationFileTest, MessagesAreReadWithTheirState) {
  const QTemporaryDir folder;
  const auto file = readTranslations(
      written(folder, "orvo_de.ts",
              fileOf("<message><source>a &amp; b</source><comment>c</comment>"
                     "<translation>ä</translation></message>"
                     "<message><source>c</source><translation type=\"unfinished\">d</translation>"
                     "</message>"
                     "<message><source>e</source><translation type=\"vanished\">f</translation>"
                     "</message>"
                     "<message><source>g</source><translation></translation></message>")));
  EXPECT_THAT(file.errors, IsEmpty());
  EXPECT_EQ(file.language, "de");
  ASSERT_THAT(file.translations, SizeIs(4));
  EXPECT_EQ(file.translations[0].key, "a & b");
  EXPECT_EQ(file.translations[0].text, "ä");
  EXPECT_TRUE(file.translations[0].done && file.translations[0].needed);
  EXPECT_FALSE(file.translations[1].done);
  EXPECT_FALSE(file.translations[2].needed);
  EXPECT_FALSE(file.translations[3].done);
}

TEST(TranslationFileTest, WhatCannotBeReadOrWouldNotBeFoundIsAnError) {
  const QTemporaryDir folder;
  EXPECT_THAT(readTranslations(folder.filePath("none.ts")).errors, SizeIs(1));
  EXPECT_THAT(readTranslations(written(folder, "cut.ts", "<TS><context>")).errors, SizeIs(1));
  EXPECT_THAT(readTranslations(
                  written(folder, "other.ts", "<TS><context><name>Window</name></context></TS>"))
                  .errors,
              SizeIs(1));
}

TEST(TranslationFileTest, MissingGoneAndDoubleKeysAreFound) {
  TranslationFile file;
  file.translations = {{.key = "a", .text = "x"},
                       {.key = "b", .text = "x", .done = false},
                       {.key = "gone", .text = "x"},
                       {.key = "c", .text = "x", .needed = false},
                       {.key = "a", .text = "y"}};
  EXPECT_THAT(strings(complaintsAboutKeys(file, {"a", "b", "c", "d"})),
              UnorderedElementsAre("not translated: b", "not translated: c", "not translated: d",
                                   "no longer in the sources: gone", "no longer in the sources: c",
                                   "twice: a"));
}

TEST(TranslationFileTest, OtherPlaceholdersAreFound) {
  EXPECT_THAT(complaintsAbout("%1 is empty.", "%1 ist leer.", "de"), IsEmpty());
  EXPECT_THAT(complaintsAbout("%2 by %1", "%1 von %2", "de"), IsEmpty());
  EXPECT_THAT(complaintsAbout("%1 is empty.", "Leer.", "de"), SizeIs(1));
  EXPECT_THAT(complaintsAbout("%1 and %2", "%1 und %1", "de"), SizeIs(1));
  EXPECT_THAT(complaintsAbout("error: %s (%s)", "Fehler: %s", "de"), SizeIs(1));
  EXPECT_THAT(complaintsAbout("The file %@ is", "Die Datei %1 ist", "de"), SizeIs(1));
}

TEST(TranslationFileTest, OtherKeyLettersAreFound) {
  EXPECT_THAT(complaintsAbout("&File", "ファイル(&F)", "ja"), IsEmpty());
  EXPECT_THAT(complaintsAbout("&File", "Datei", "de"), SizeIs(1));
  EXPECT_THAT(complaintsAbout("Open", "&Öffnen", "de"), SizeIs(1));
  EXPECT_THAT(complaintsAbout("A && B", "A && C", "de"), IsEmpty());
}

TEST(TranslationFileTest, OtherEndsAndParagraphsAreFound) {
  EXPECT_THAT(complaintsAbout("It is full.", "满了。", "zh_CN"), IsEmpty());
  EXPECT_THAT(complaintsAbout("It is full.", "满了", "zh_CN"), SizeIs(1));
  EXPECT_THAT(complaintsAbout("Type:", "种类：", "zh_CN"), IsEmpty());
  EXPECT_THAT(complaintsAbout("Open…", "Öffnen", "de"), SizeIs(1));
  EXPECT_THAT(complaintsAbout("Open…", "開く...", "ja"), SizeIs(2));
  EXPECT_THAT(complaintsAbout("a\n\nb", "a\nb.", "es"), SizeIs(2));
  EXPECT_THAT(complaintsAbout("write to ", "schreib an", "de"), SizeIs(1));
}

TEST(TranslationFileTest, QuotationMarksAreThoseOfTheLanguage) {
  EXPECT_THAT(complaintsAbout("“%1” is", "„%1“ ist", "de"), IsEmpty());
  EXPECT_THAT(complaintsAbout("“%1” is", "“%1” ist", "de"), SizeIs(2));
  EXPECT_THAT(complaintsAbout("“%1” is", "%1 ist", "de"), SizeIs(1));
  EXPECT_THAT(complaintsAbout("“%1” is", "„%1 ist", "de"), SizeIs(1));
  EXPECT_THAT(complaintsAbout("“%1” is", "«\u00a0%1\u00a0» est", "fr"), IsEmpty());
  EXPECT_THAT(complaintsAbout("“%1” is", "«%1» est", "fr"), SizeIs(1));
  EXPECT_THAT(complaintsAbout("“%1” is", "«%1» es", "es"), IsEmpty());
  EXPECT_THAT(complaintsAbout("“%1” is", "「%1」", "ja"), IsEmpty());
  EXPECT_THAT(complaintsAbout("“%1” is", "“%1”是", "zh_CN"), IsEmpty());
  EXPECT_THAT(complaintsAbout("don't", "n'est pas", "fr"), SizeIs(1));
}

TEST(TranslationFileTest, PunctuationIsThatOfTheLanguage) {
  EXPECT_THAT(complaintsAbout("Save in:", "Dans\u00a0:", "fr"), IsEmpty());
  EXPECT_THAT(complaintsAbout("Save in:", "Dans:", "fr"), SizeIs(1));
  EXPECT_THAT(complaintsAbout("Save in:", "Dans :", "fr"), SizeIs(1));
  EXPECT_THAT(complaintsAbout("Save?", "Guardar?", "es"), SizeIs(1));
  EXPECT_THAT(complaintsAbout("Save?", "¿Guardar?", "es"), IsEmpty());
  EXPECT_THAT(complaintsAbout("Open…", "Öffnen…", "de"), SizeIs(1));
  EXPECT_THAT(complaintsAbout("Open…", "Öffnen\u00a0…", "de"), IsEmpty());
  EXPECT_THAT(complaintsAbout("a b", "a  b c", "de"), SizeIs(1));
}

TEST(TranslationFileTest, WhatStaysAsItIsNeedsNothing) {
  EXPECT_THAT(complaintsAbout("https://orvo.example/", "https://orvo.example/", "fr"), IsEmpty());
}

TEST(TranslationFileTest, TextsOfAnInterfaceAreThoseThatAreShown) {
  const QTemporaryDir folder;
  const QString path = written(
      folder, "window.ui",
      "<ui><property name=\"toolTip\"><string>Stop</string></property>"
      "<property name=\"onImage\"><string notr=\"true\">stop.png</string></property>"
      "<property name=\"accessibleName\"><string notr=\"true\">Halt</string></property></ui>");
  QStringList complaints;
  EXPECT_THAT(textsOfInterface(path, complaints), ElementsAre("Stop"));
  EXPECT_THAT(strings(complaints), ElementsAre("shown, but marked as not to be translated: Halt"));
}

}  // namespace
}  // namespace translations
