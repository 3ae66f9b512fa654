#include "app/OVTranslations.h"

#include <gmock/gmock.h>
#include <QCoreApplication>
#include <QFile>
#include <QLibraryInfo>

#include "platform/mainloop/Localization.h"

namespace {

using testing::Contains;

std::string languageOf(const QStringList& uiLanguages) {
  return OVTranslations::languageOf(uiLanguages).toStdString();
}

TEST(OVTranslationsTest, TheFirstLanguageThatThereIsIsTaken) {
  EXPECT_EQ(languageOf({"de-DE", "de", "de-Latn-DE"}), "de");
  EXPECT_EQ(languageOf({"fr-CA"}), "fr");
  EXPECT_EQ(languageOf({"es-419", "fr"}), "es");
  EXPECT_EQ(languageOf({"ja-JP"}), "ja");
  EXPECT_EQ(languageOf({"nl-NL", "nl", "fr-BE", "de"}), "fr");
}

TEST(OVTranslationsTest, EnglishEndsTheSearch) {
  EXPECT_EQ(languageOf({"en-GB", "en", "de"}), "");
  EXPECT_EQ(languageOf({"nl", "en", "de"}), "");
}

TEST(OVTranslationsTest, WhatIsNotThereOrNoLanguageAtAllIsEnglish) {
  EXPECT_EQ(languageOf({}), "");
  EXPECT_EQ(languageOf({"nl-NL", "nl"}), "");
  EXPECT_EQ(languageOf({"C"}), "");
  EXPECT_EQ(languageOf({"POSIX", "", "no such language", "../../de"}), "");
}

TEST(OVTranslationsTest, EveryKindOfSimplifiedChineseIsOneLanguageAndTraditionalIsNone) {
  for (const char* name : {"zh", "zh-CN", "zh-SG", "zh-Hans", "zh-Hans-CN", "zh-Hans-HK"}) {
    EXPECT_EQ(languageOf({name}), "zh_CN") << name;
  }
  for (const char* name : {"zh-TW", "zh-HK", "zh-MO", "zh-Hant", "zh-Hant-TW"}) {
    EXPECT_EQ(languageOf({name}), "") << name;
  }
  EXPECT_EQ(languageOf({"zh-TW", "ja"}), "ja");
}

TEST(OVTranslationsTest, EveryLanguageOfTheProgramCanBeTaken) {
  for (const char* name : {"de", "fr", "es", "ja", "zh_CN"}) {
    EXPECT_THAT(OVTranslations::languages(), Contains(QString(name)));
  }
  for (const QString& language : OVTranslations::languages()) {
    const OVTranslations translations({language});
    EXPECT_EQ(translations.language(), language);
    EXPECT_NE(platform::localized("Unnamed"), "Unnamed") << language.toStdString();
  }
}

TEST(OVTranslationsTest, TextsAreTranslatedForAsLongAsItLives) {
  EXPECT_EQ(platform::localized("Unnamed"), "Unnamed");
  {
    const OVTranslations german({"de-AT"});
    EXPECT_EQ(platform::localized("Unnamed"), "Unbenannt");
    EXPECT_EQ(platform::localizedUtf8("“%1”"), "„%1“");
    constexpr platform::TextKey kKept = platform::textKey("The disk is full.");
    EXPECT_EQ(platform::localizedUtf8(kKept), "Der Datenträger ist voll.");
  }
  EXPECT_EQ(platform::localized("Unnamed"), "Unnamed");
}

TEST(OVTranslationsTest, ATextWithoutATranslationStaysEnglish) {
  const OVTranslations german({"de"});
  EXPECT_EQ(platform::localized("No one has translated this"), "No one has translated this");
}

TEST(OVTranslationsTest, TextsOfQtAreTranslatedWhereQtBringsThem) {
  const OVTranslations german({"de"});
  if (!QFile::exists(QLibraryInfo::path(QLibraryInfo::TranslationsPath) + "/qtbase_de.qm")) {
    GTEST_SKIP() << "Qt's translations are not installed";
  }
  EXPECT_EQ(QCoreApplication::translate("QPlatformTheme", "Cancel"), "Abbrechen");
}

}  // namespace
