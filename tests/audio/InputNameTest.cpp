#include "audio/InputName.h"

#include <gtest/gtest.h>

namespace {

std::string shown(const std::string& name) {
  return shownInputName(name).toStdString();
}

TEST(InputNameTest, AnOrdinaryNameStaysAsItIs) {
  EXPECT_EQ(shown("Built-in Audio Analog Stereo"), "Built-in Audio Analog Stereo");
  EXPECT_EQ(shown("Mikrofon für Übungen 録音"), "Mikrofon für Übungen 録音");
}

TEST(InputNameTest, AnEmptyOneOrOneOfWhiteSpaceIsEmpty) {
  EXPECT_EQ(shown(""), "");
  EXPECT_EQ(shown(" \t\n "), "");
}

TEST(InputNameTest, LineBreaksAndControlsBecomeSpaces) {
  EXPECT_EQ(shown("USB\nMic\r\n\tTwo\x1b[1m"), "USB Mic Two [1m");
}

TEST(InputNameTest, CharactersThatTurnTheDirectionOfTheSentenceAreLeftOut) {
  EXPECT_EQ(shown("USB\u202eciM\u200f"), "USB ciM");
}

TEST(InputNameTest, OneFromRightToLeftIsIsolatedFromTheSentence) {
  EXPECT_EQ(shown("מיקרופון 1"), "\u2068מיקרופון 1\u2069");
}

TEST(InputNameTest, MarkupStaysText) {
  EXPECT_EQ(shown("<b>Mic</b> & Co %1"), "<b>Mic</b> & Co %1");
}

TEST(InputNameTest, OneThatIsTooLongIsCutBetweenCharacters) {
  EXPECT_EQ(shown(std::string(60, 'x')), std::string(60, 'x'));
  EXPECT_EQ(shown(std::string(300, 'x')), std::string(59, 'x') + "…");
  std::string accents;
  for (int i = 0; i < 100; ++i) {
    accents += "e\u0301";
  }
  EXPECT_EQ(shown(accents), accents.substr(0, std::size_t{59} * 3) + "…");
}

TEST(InputNameTest, BytesThatAreNoTextAreLeftOut) {
  EXPECT_EQ(shown("Mic \xff\xfe 1"), "Mic 1");
}

}  // namespace
