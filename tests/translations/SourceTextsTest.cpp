#include "translations/SourceTexts.h"

#include <gmock/gmock.h>

namespace translations {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::UnorderedElementsAre;

TEST(SourceTextsTest, KeysAreWhatIsMarkedWhereverItStands) {
  const auto texts = textsOfSource(R"(
    constexpr std::array kReasons{Reason{EIO, textKey("The disk is full.")}};
    label->setText(platform::localized("Wait"));
    ShowModalAlert(localizedUtf8("Title"), message);
  )");
  EXPECT_THAT(texts.keys, UnorderedElementsAre("The disk is full.", "Wait", "Title"));
  EXPECT_THAT(texts.complaints, IsEmpty());
}

TEST(SourceTextsTest, AdjacentLiteralsAreOneKeyAndEscapesAreResolved) {
  EXPECT_THAT(textsOfSource("localized(\"one \\\"two\\\"\\n\"\n    \"three\")").keys,
              ElementsAre("one \"two\"\nthree"));
}

TEST(SourceTextsTest, TextInACommentOrAnIncludeIsNoText) {
  const auto texts = textsOfSource(
      "// setText(\"Not shown here\")\n/* \"Nor is\nthis one\" */\n#include \"two words.h\"\n");
  EXPECT_THAT(texts.keys, IsEmpty());
  EXPECT_THAT(texts.complaints, IsEmpty());
}

TEST(SourceTextsTest, RawLiteralEndsAtItsOwnMark) {
  EXPECT_THAT(textsOfSource("localized(R\"x(one \"two\")\" three)x\") + localized(\"four\")").keys,
              ElementsAre("four", "one \"two\")\" three"));
}

TEST(SourceTextsTest, QuoteAsACharacterOpensNoLiteral) {
  EXPECT_THAT(textsOfSource("f('\"', '\\'', 1'000); setText(localized(\"A\"));").keys,
              ElementsAre("A"));
}

TEST(SourceTextsTest, UnmarkedTextOnItsWayToAPersonIsFoundWithItsLine) {
  for (const char* source : {
           "setText(\"Wait\");",
           "view->setToolTip(QStringLiteral(\"Wait\"));",
           "setWindowTitle(QString::fromUtf8(\"Wait\") + name);",
           "box.setAccessibleName(\"Wait\");",
           "new QLabel(\"Wait\");",
           "QLabel label(\"Wait\");",
           "menu->addAction(\"Wait\", this);",
           "alert.addButton(\"Wait\", Role::accept);",
           "ShowModalAlert(\"Wait\", localizedUtf8(\"key\"));",
           "QMessageBox::about(window, \"Wait\", text);",
           "fileDialogs().beginSheet({.window = w, .title = \"Wait\"}, answer);",
           "ShowModalAlert(title, std::string(\"Wait\") + \"!\");",
           "describeView(this, \"Wait\", QAccessible::Graphic);",
       }) {
    EXPECT_THAT(textsOfSource(std::string("\n") + source).complaints,
                ElementsAre("2: shown, but not marked: Wait"))
        << source;
  }
}

TEST(SourceTextsTest, SeveralWordsThatAreNotMarkedAreFoundAnywhere) {
  EXPECT_THAT(textsOfSource("const char* kText = \"The disk is full.\";").complaints,
              ElementsAre(HasSubstr("The disk is full.")));
  EXPECT_THAT(textsOfSource("return all ? \"Nothing, really\" : other;").complaints, SizeIs(1));
}

TEST(SourceTextsTest, WhatNobodyReadsIsNoText) {
  for (const char* source : {
           "ConsoleLog(\"lost %d frames of it\", lost);",
           "std::fprintf(stderr, \"this is wrong\");",
           "throw std::out_of_range(\"nothing to undo\");",
           "setText(name + QStringLiteral(\" - \"));",
           "setText(QStringLiteral(\"%1 (%2)\").arg(a, b));",
           "addButton(title, [] { open(\"file\"); });",
           "image(\"rec_on.png\");",
           "platform::SerialQueue q_{\"disk buffer\"};",
           "CheckAudioStatus(status, \"start failed\");",
           "write(\"<a href=x class=y>\");",
       }) {
    EXPECT_THAT(textsOfSource(source).complaints, IsEmpty()) << source;
  }
}

TEST(SourceTextsTest, AMarkerWithoutALiteralIsFound) {
  EXPECT_THAT(textsOfSource("const auto key = textKey(kText);").complaints, SizeIs(1));
  EXPECT_THAT(textsOfSource("consteval TextKey textKey(const char* english) {}").complaints,
              IsEmpty());
}

}  // namespace
}  // namespace translations
