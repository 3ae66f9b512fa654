#include "platform/mainloop/ShownName.h"

#include <gtest/gtest.h>

namespace {

std::string shown(const std::string& name) {
  return platform::shownName(name).toStdString();
}

TEST(ShownNameTest, AnOrdinaryNameStaysAsItIs) {
  EXPECT_EQ(shown("take 1 %1 <b> & Co.wav"), "take 1 %1 <b> & Co.wav");
  EXPECT_EQ(shown("歌 Größe.wav"), "歌 Größe.wav");
  EXPECT_EQ(shown(""), "");
}

TEST(ShownNameTest, LineBreaksTabsAndControlsBecomeSpaces) {
  EXPECT_EQ(shown("a\nb\r\tc\x1b\x7f.wav"), "a b  c  .wav");
  EXPECT_EQ(shown("a\u2028b\u2029c\u0085d"), "a b c d");
}

TEST(ShownNameTest, CharactersThatTurnTheDirectionOfTheTextAroundThemBecomeSpaces) {
  for (const char* const character : {"\u200e", "\u200f", "\u061c", "\u202a", "\u202b", "\u202c",
                                      "\u202d", "\u202e", "\u2066", "\u2067", "\u2068", "\u2069"}) {
    EXPECT_EQ(shown(std::string("take") + character + "vaw.exe"), "take vaw.exe");
  }
}

TEST(ShownNameTest, ANameFromRightToLeftIsIsolatedFromTheSentence) {
  EXPECT_EQ(shown("שיר.wav"), "\u2068שיר.wav\u2069");
  EXPECT_EQ(shown("take أغنية"), "\u2068take أغنية\u2069");
  EXPECT_FALSE(
      QString("“%1” was kept").arg(platform::shownName(std::string("שיר"))).isRightToLeft());
}

TEST(ShownNameTest, WhatJoinsAndPartsLettersStays) {
  EXPECT_EQ(shown("👩\u200d🎤.wav"), "👩\u200d🎤.wav");
  EXPECT_EQ(shown("auf\u200clage"), "auf\u200clage");
}

TEST(ShownNameTest, BytesThatAreNotUtf8BecomeReplacementCharacters) {
  EXPECT_EQ(shown("a\xff.wav"), "a\uFFFD.wav");
}

TEST(ShownMessageTest, AMessageKeepsItsLinesAndLosesWhatDisturbsThem) {
  EXPECT_EQ(platform::shownMessage("One.\n\nTwo\r\x1b[2J\u202Ethree\u2067.").toStdString(),
            "One.\n\nTwo  [2J three .");
}

TEST(ShownMessageTest, ANameThatIsShownInItStaysIsolated) {
  const std::string message = "“" + shown("שיר.wav") + "” was kept";
  EXPECT_EQ(platform::shownMessage(message).toStdString(), message);
}

}  // namespace
