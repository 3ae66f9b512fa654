#include "app/OVCommandLineText.h"

#include <algorithm>
#include <clocale>
#include <cwchar>

#include <gmock/gmock.h>
#include <QScopeGuard>

#include "app/OVTranslations.h"
#include "audio/OVFileKinds.h"

namespace {

using testing::HasSubstr;
using testing::Not;

std::string help() {
  return OVCommandLineText::help().toStdString();
}

TEST(OVCommandLineTextTest, HelpNamesEveryOptionAndEveryKindOfFile) {
  for (const char* const word :
       {"--help", "--version", "--\n", "-platform", "TMPDIR", "XDG_DATA_HOME"}) {
    EXPECT_THAT(help(), HasSubstr(word));
  }
  for (const std::string& kind : readableFileTypes()) {
    EXPECT_THAT(help(), testing::ContainsRegex("[ ,]" + kind + "[ ,.]")) << kind;
  }
}

/// The columns of a text by the system's own table.
int systemColumns(const QString& text) {
  int columns = 0;
  for (const wchar_t character : text.toStdWString()) {
    columns += ::wcwidth(character);
  }
  return columns;
}

QString withoutWhiteSpace(const QString& text) {
  return text.simplified().remove(u' ');
}

TEST(OVCommandLineTextTest, HelpFitsTheTerminalInEveryLanguage) {
  const std::string before = std::setlocale(LC_CTYPE, nullptr);
  ASSERT_NE(std::setlocale(LC_CTYPE, "C.UTF-8"), nullptr);
  const auto restored = qScopeGuard([&before] { std::setlocale(LC_CTYPE, before.c_str()); });
  QStringList languages = OVTranslations::languages();
  languages << "en";
  for (const QString& language : languages) {
    const OVTranslations translations(QStringList{language});
    const QString whole = withoutWhiteSpace(OVCommandLineText::help());
    for (const int columns : {40, 60, 76, 200}) {
      const QString text = OVCommandLineText::help(columns);
      int widest = 0;
      for (const QString& line : text.split('\n')) {
        widest = std::max(widest, systemColumns(line));
        EXPECT_FALSE(line.trimmed().startsWith(u'。') || line.trimmed().startsWith(u'、'));
      }
      EXPECT_LE(widest, std::min(columns, 76)) << language.toStdString();
      EXPECT_GT(widest, std::min(columns, 76) - 8) << language.toStdString() << ": it is used";
      EXPECT_EQ(withoutWhiteSpace(text), whole) << language.toStdString();
    }
  }
  EXPECT_TRUE(help().ends_with(".\n"));
}

TEST(OVCommandLineTextTest, HelpForAFileOrATinyTerminalHasAUsualWidth) {
  EXPECT_EQ(OVCommandLineText::help(), OVCommandLineText::help(76));
  EXPECT_EQ(OVCommandLineText::help(3), OVCommandLineText::help(30));
}

TEST(OVCommandLineTextTest, HelpIsInTheLanguageOfTheInterface) {
  const OVTranslations german({"de"});
  EXPECT_THAT(help(), HasSubstr("Gibt die Version aus."));
  EXPECT_THAT(help(), Not(HasSubstr("Prints")));
}

TEST(OVCommandLineTextTest, ARefusedOptionDoesNotDisturbTheTerminal) {
  EXPECT_EQ(OVCommandLineText::refusalOf("--loud\x1b]0;name\x07\n").toStdString(),
            "orvo: unknown option: --loud ]0;name  \nTry orvo --help\n");
}

TEST(OVCommandLineTextTest, ManualHasTheTextsOfTheHelp) {
  const std::string page = OVCommandLineText::manualPage("2026-03-05");
  for (const char* const text : {"Prints the version.", "Ends the options.\n", ".It Fl \\-help\n",
                                 ".It Ar FILE\n", ".It Fl platform , Fl style\n", ".It Fl Fl\n",
                                 ".It Ev TMPDIR\n", ".Dd March 5, 2026\n", ".Sh EXIT STATUS\n"}) {
    EXPECT_THAT(page, HasSubstr(text));
  }
  EXPECT_TRUE(std::all_of(page.begin(), page.end(),
                          [](char c) { return c == '\n' || (c >= ' ' && c <= '~'); }));
}

TEST(OVCommandLineTextTest, ManualWithoutADateSaysSo) {
  EXPECT_THAT(OVCommandLineText::manualPage("today"), HasSubstr(".Dd today\n"));
}

}  // namespace
