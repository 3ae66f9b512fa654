#include "document/files/OVDocumentFile.h"

#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <QDateTime>
#include <QRegularExpression>

#include "controls/OVRecorderWindow.h"

namespace {

/// "Recording", today's date and a time of a minute or less ago.
bool isNameOfNewTake(const std::string& name) {
  const QString text = QString::fromStdString(name);
  const auto match =
      QRegularExpression(QStringLiteral("^Recording (\\d{4}-\\d\\d-\\d\\d \\d\\d\\.\\d\\d)$"))
          .match(text);
  const auto time = QDateTime::fromString(match.captured(1), QStringLiteral("yyyy-MM-dd HH.mm"));
  return match.hasMatch() && std::abs(time.secsTo(QDateTime::currentDateTime())) < 3700;
}

}  // namespace

TEST(OVDocumentFileTest, ANewDocumentHasNoFileAndIsCalledUnnamed) {
  OVRecorderWindow window;
  OVDocumentFile file;
  file.connect(&window);
  EXPECT_EQ(window.title(), "Orvo - Unnamed");
  EXPECT_TRUE(file.name().empty());
  EXPECT_EQ(file.type(), -1);
  EXPECT_TRUE(isNameOfNewTake(file.suggestedName())) << file.suggestedName();
  EXPECT_EQ(file.suggestedType(), 0);
  EXPECT_FALSE(file.canBeSaved());
  EXPECT_TRUE(file.folder().empty());
}

TEST(OVDocumentFileTest, TheTitleNamesTheFileAlsoOneThatLooksLikeAPlaceholder) {
  OVRecorderWindow window;
  OVDocumentFile file;
  file.connect(&window);
  file.take("/music/take %1 %2.aif", 1);
  EXPECT_EQ(window.title(), "Orvo - take %1 %2.aif");
  EXPECT_EQ(file.suggestedName(), "take %1 %2");
  EXPECT_EQ(file.suggestedType(), 1);
  EXPECT_TRUE(file.canBeSaved());
  EXPECT_EQ(file.folder(), "/music");
  file.forget();
  EXPECT_EQ(window.title(), "Orvo - Unnamed");
  EXPECT_FALSE(file.canBeSaved());
}

TEST(OVDocumentFileTest, ANameThatWouldDisturbItsLineIsShownWithoutThat) {
  OVRecorderWindow window;
  OVDocumentFile file;
  file.connect(&window);
  file.take("/music/a\nb\u202Efdp.wav", 0);
  EXPECT_EQ(file.shownName(), "a b fdp.wav");
  EXPECT_EQ(window.title(), "Orvo - a b fdp.wav");
  EXPECT_EQ(file.suggestedName(), "a\nb\u202Efdp") << "a name for a file stays as it is";
}

TEST(OVDocumentFileTest, WhoeverWantsToKnowIsToldOfEachFileThatTheDocumentGets) {
  OVDocumentFile file;
  std::vector<std::string> taken;
  file.setTakenHandler([&taken](const std::string& path) { taken.push_back(path); });
  file.setName("/music/opened.wav");
  file.take("/music/one.wav", 0);
  file.take("/music/two.caf", 2);
  file.forget();
  EXPECT_EQ(taken, (std::vector<std::string>{"/music/one.wav", "/music/two.caf"}));
}

TEST(OVDocumentFileTest, TagsBelongToTheDocumentUntilItForgetsItsFile) {
  OVDocumentFile file;
  EXPECT_TRUE(file.tags()->all().empty());
  platform::AudioFileTags tags;
  tags.texts[platform::AudioFileTag::title] = "Song";
  file.setTags(std::make_shared<const platform::AudioFileTags>(tags));
  file.take("/music/take.wav", 0);
  EXPECT_EQ(*file.tags(), tags);
  file.forget();
  EXPECT_TRUE(file.tags()->all().empty());
}

TEST(OVDocumentFileTest, ADocumentWithoutAFileMayHaveANameUntilItGetsAFile) {
  OVRecorderWindow window;
  OVDocumentFile file;
  file.connect(&window);
  file.nameWithoutFile("Recovered 21/11/2026 14:02", "Recovered 2026-11-21");
  EXPECT_EQ(window.title(), "Orvo - Recovered 21/11/2026 14:02");
  EXPECT_EQ(file.shownName(), "Recovered 21/11/2026 14:02");
  EXPECT_EQ(file.suggestedName(), "Recovered 2026-11-21");
  EXPECT_TRUE(file.name().empty());
  EXPECT_TRUE(file.folder().empty());
  EXPECT_FALSE(file.canBeSaved());
  file.take("/music/take.wav", 0);
  EXPECT_EQ(file.shownName(), "take.wav");
  EXPECT_EQ(file.suggestedName(), "take");
  file.forget();
  EXPECT_EQ(window.title(), "Orvo - Unnamed");
  EXPECT_TRUE(isNameOfNewTake(file.suggestedName())) << file.suggestedName();
}

TEST(OVDocumentFileTest, AnOpenedFileIsOfferedInItsOwnKindWhereThatCanBeWritten) {
  OVDocumentFile file;
  file.setName("/music/take.CAF");
  EXPECT_EQ(file.suggestedType(), 2);
  EXPECT_FALSE(file.canBeSaved());  // its type is not known yet
  file.setName("/music/take.mp3");
  EXPECT_EQ(file.suggestedType(), 0);
}
