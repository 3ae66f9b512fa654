#include "platform/desktop/XmlTags.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using platform::attributeEdit;
using platform::edited;
using platform::XmlTag;
using platform::XmlTagScanner;
using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> tagsOf(const std::string& text) {
  XmlTagScanner scanner(text);
  std::vector<std::string> tags;
  while (const auto tag = scanner.next()) {
    tags.push_back(text.substr(tag->begin, tag->end - tag->begin));
  }
  if (scanner.failed()) {
    tags.emplace_back("failed");
  }
  return tags;
}

XmlTag onlyTagOf(const std::string& text) {
  return XmlTagScanner(text).next().value();
}

std::string withAttribute(const std::string& text, const char* name, const char* value) {
  return edited(text, {attributeEdit(text, onlyTagOf(text), name, value)});
}

TEST(XmlTags, AreFoundWhereverTheyStand) {
  EXPECT_THAT(tagsOf("<a><b:c d='e'/>text</a >"), ElementsAre("<a>", "<b:c d='e'/>", "</a >"));
  EXPECT_THAT(tagsOf(""), IsEmpty());
  EXPECT_THAT(tagsOf("no tags"), IsEmpty());
}

TEST(XmlTags, TellWhatTheyAre) {
  EXPECT_EQ(onlyTagOf("<a>").kind, XmlTag::Kind::start);
  EXPECT_EQ(onlyTagOf("</a>").kind, XmlTag::Kind::end);
  EXPECT_EQ(onlyTagOf("<a/>").kind, XmlTag::Kind::empty);
  EXPECT_EQ(onlyTagOf("<a b='/'>").kind, XmlTag::Kind::start);
}

TEST(XmlTags, AreNotSeenInCommentsSectionsInstructionsAndDeclarations) {
  EXPECT_THAT(tagsOf("<?xml version='1.0'?><!DOCTYPE x PUBLIC \"a>b\" '<c>'>"
                     "<!-- <no> --><![CDATA[<no>]]><?do <no> ?><yes>"),
              ElementsAre("<yes>"));
}

TEST(XmlTags, MayHaveBracketsInTheirAttributes) {
  EXPECT_THAT(tagsOf("<a b='>\"' c=\"/>'\"><d/>"), ElementsAre("<a b='>\"' c=\"/>'\">", "<d/>"));
}

TEST(XmlTags, FailOnWhatIsUnfinishedOrHasDeclarationsOfItsOwn) {
  for (const char* text : {"<a", "<a b='>", "<", "<!-- <a>", "<![CDATA[<a>", "<?x", "<!DOCTYPE x",
                           "<!DOCTYPE x [<!ENTITY a '<b/>'>]>"}) {
    EXPECT_THAT(tagsOf(text), ElementsAre("failed")) << text;
  }
}

TEST(XmlTags, FailOnATagWithTooManyAttributes) {
  std::string tag = "<a";
  for (std::size_t i = 0; i < XmlTagScanner::kMaxAttributes; ++i) {
    tag += " b" + std::to_string(i) + "='=>'";
  }
  EXPECT_THAT(tagsOf(tag + "/><c>"), ElementsAre(tag + "/>", "<c>"));
  EXPECT_THAT(tagsOf(tag + " c=''/><c>"), ElementsAre("failed"));
}

TEST(XmlTags, HaveTheirNameWithItsPrefix) {
  for (const std::string text :
       {"<a:b>", "<a:b/>", "</a:b>", "</a:b >", "<a:b c='d'>", "<a:b\n\tc='d'>"}) {
    EXPECT_EQ(nameOfXmlTag(text, onlyTagOf(text)), "a:b") << text;
  }
}

TEST(AnAttribute, IsReplacedWhereItStands) {
  EXPECT_EQ(withAttribute("<a b='1' c = \"2\"\n d='3'/>", "b", "9"),
            "<a b='9' c = \"2\"\n d='3'/>");
  EXPECT_EQ(withAttribute("<a b='1' c = \"2\"\n d='3'/>", "c", "9"),
            "<a b='1' c = \"9\"\n d='3'/>");
  EXPECT_EQ(withAttribute("<a b='1' c = \"2\"\n d='3'/>", "d", ""), "<a b='1' c = \"2\"\n d=''/>");
}

TEST(AnAttribute, IsAddedBehindTheOthers) {
  EXPECT_EQ(withAttribute("<a>", "b", "1"), "<a b=\"1\">");
  EXPECT_EQ(withAttribute("<a/>", "b", "1"), "<a b=\"1\"/>");
  EXPECT_EQ(withAttribute("<a c='2' />", "b", "1"), "<a c='2' b=\"1\" />");
}

TEST(AnAttribute, IsNotTakenForAnotherThatLooksLikeIt) {
  EXPECT_EQ(withAttribute("<a x:b='1' bb='2' c='b=\"3\"' b='4'>", "b", "9"),
            "<a x:b='1' bb='2' c='b=\"3\"' b='9'>");
}

TEST(AnEditedText, IsItselfOutsideTheChanges) {
  EXPECT_EQ(edited("abcdef", {}), "abcdef");
  EXPECT_EQ(edited("abcdef", {{.begin = 6, .length = 0, .replacement = "!"},
                              {.begin = 1, .length = 2, .replacement = "X"},
                              {.begin = 3, .length = 0, .replacement = "1"},
                              {.begin = 3, .length = 1, .replacement = "2"}}),
            "aX12ef!");
}

}  // namespace
