#include "app/OVCommandLineText.h"

#include <algorithm>

#include <gmock/gmock.h>

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

TEST(OVCommandLineTextTest, HelpFitsATerminal) {
  for (const QString& line : OVCommandLineText::help().split('\n')) {
    EXPECT_LE(line.size(), 80) << line.toStdString();
  }
  EXPECT_TRUE(help().ends_with(".\n"));
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
