#include "app/wrappedText.h"

#include <gtest/gtest.h>

namespace {

std::string wrapped(const char* text, int indentation, int columns) {
  return wrappedText(QString::fromUtf8(text), indentation, columns).toStdString();
}

TEST(WrappedTextTest, WideCharactersTakeTwoColumnsAndCombiningMarksNone) {
  EXPECT_EQ(columnsOf(u""), 0);
  EXPECT_EQ(columnsOf(u"a “b” …"), 7);
  EXPECT_EQ(columnsOf(u"録音、"), 6);
  EXPECT_EQ(columnsOf(u"（ｗａｖ）"), 10);
  EXPECT_EQ(columnsOf(u"한글"), 4);
  EXPECT_EQ(columnsOf(u"e\u0301"), 1);
  EXPECT_EQ(columnsOf(u"\U00020BB7"), 2) << "two units of UTF-16";
}

TEST(WrappedTextTest, BreaksBetweenWordsAndIndentsEachLine) {
  EXPECT_EQ(wrapped("one two three", 0, 13), "one two three\n");
  EXPECT_EQ(wrapped("one two three", 0, 12), "one two\nthree\n");
  EXPECT_EQ(wrapped("to /tmp", 0, 4), "to\n/tmp\n");
  EXPECT_EQ(wrapped("one two three", 2, 9), "  one two\n  three\n");
  EXPECT_EQ(wrapped("", 2, 9), "  \n");
}

TEST(WrappedTextTest, PathsAndOptionsStayWholeAndAWordThatIsTooLongStandsAlone) {
  EXPECT_EQ(wrapped("below ~/.local/share-me or --no-such-option", 0, 12),
            "below\n~/.local/share-me\nor\n--no-such-option\n");
}

TEST(WrappedTextTest, SpacesThatMustNotBreakStay) {
  EXPECT_EQ(wrapped("takes 20\u00a0MB a minute", 0, 8), "takes\n20\u00a0MB a\nminute\n");
}

TEST(WrappedTextTest, BreaksBesideWideCharactersButNotBeforeTheirPunctuation) {
  EXPECT_EQ(wrapped("録音を保存します。", 0, 8), "録音を保\n存しま\nす。\n");
  EXPECT_EQ(wrapped("～/.local/share以下に保存。", 0, 16), "～/.local/share\n以下に保存。\n");
  EXPECT_EQ(wrapped("打开 caf、aif 和 wav 文件。", 0, 12), "打开 caf、\naif 和 wav\n文件。\n");
}

}  // namespace
