#include "platform/desktop/XbelBookmarks.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using platform::readXbel;
using platform::XbelBookmark;
using testing::ElementsAre;
using testing::IsEmpty;

const std::string kNamespaces =
    " xmlns:bookmark='http://www.freedesktop.org/standards/desktop-bookmarks'"
    " xmlns:mime='http://www.freedesktop.org/standards/shared-mime-info'";
const std::string kMetadata = "<metadata owner='http://freedesktop.org'>";

std::string list(const std::string& content, const std::string& attributes = kNamespaces) {
  return "<xbel version='1.0'" + attributes + ">" + content + "</xbel>";
}

std::vector<XbelBookmark> bookmarksOf(const std::string& text) {
  std::vector<XbelBookmark> bookmarks;
  const auto root = readXbel(
      text, "Orvo", [&bookmarks](const XbelBookmark& bookmark) { bookmarks.push_back(bookmark); });
  EXPECT_TRUE(root.has_value()) << text;
  return bookmarks;
}

std::vector<std::string> addressesOf(const std::string& text) {
  std::vector<std::string> addresses;
  for (const auto& bookmark : bookmarksOf(text)) {
    addresses.push_back(bookmark.address);
  }
  return addresses;
}

bool canBeRead(const std::string& text) {
  return readXbel(text, "Orvo", [](const XbelBookmark&) {}).has_value();
}

TEST(AListOfBookmarks, ShowsItsEntriesInOrderThoseInFoldersToo) {
  EXPECT_THAT(addressesOf(list("<title>t</title><bookmark href='file:///a'/>"
                               "<folder><title>f</title><bookmark href='file:///b'></bookmark>"
                               "<folder><bookmark href='file:///c&amp;&#x20;d'/></folder></folder>"
                               "<bookmark href='http://e'/>")),
              ElementsAre("file:///a", "file:///b", "file:///c& d", "http://e"));
  EXPECT_THAT(addressesOf(list("")), IsEmpty());
  EXPECT_THAT(addressesOf("<xbel/>"), IsEmpty());
}

TEST(AListOfBookmarks, HasEntriesOnlyWhereEntriesBelong) {
  EXPECT_THAT(addressesOf(list("<!--<bookmark href='a'/>--><other><bookmark href='b'/></other>"
                               "<info><metadata><bookmark href='c'/></metadata></info>"
                               "<bookmark:bookmark href='d'/>")),
              IsEmpty());
}

TEST(AListOfBookmarks, ShowsWhatWeRegistered) {
  const auto bookmarks = bookmarksOf(
      list("<bookmark href='a'><info>" + kMetadata +
           "<bookmark:applications><bookmark:application name='Other' count='7' modified='x'/>"
           "<bookmark:application name='Orvo' exec='e' modified='m' timestamp='12' count='3'/>"
           "<bookmark:application name='Orvo' count='9'/>"
           "</bookmark:applications></metadata></info></bookmark><bookmark href='b'/>"));
  ASSERT_EQ(bookmarks.size(), 2U);
  EXPECT_TRUE(bookmarks[0].application.has_value());
  EXPECT_EQ(bookmarks[0].modified, "m");
  EXPECT_EQ(bookmarks[0].timestamp, "12");
  EXPECT_EQ(bookmarks[0].count, "3");
  EXPECT_FALSE(bookmarks[1].application.has_value());
  EXPECT_FALSE(bookmarks[1].info.has_value());
  EXPECT_EQ(bookmarks[1].count, "");
}

TEST(AListOfBookmarks, KnowsRegistrationsByNamespaceWhateverThePrefix) {
  const std::string registration = "<x:applications><x:application name='Orvo'/></x:applications>";
  const std::string entry =
      "<bookmark href='a'><info>" + kMetadata + registration + "</metadata></info></bookmark>";
  const auto ours =
      bookmarksOf(list(entry, " xmlns:x='http://www.freedesktop.org/standards/desktop-bookmarks'"));
  EXPECT_TRUE(ours.at(0).application.has_value());
  EXPECT_FALSE(ours.at(0).bookmark.declaresBookmark);
  const auto others = bookmarksOf(list(entry, " xmlns:x='http://elsewhere'"));
  EXPECT_FALSE(others.at(0).applications.has_value());
}

TEST(AListOfBookmarks, LeavesTheMetadataOfOtherOwnersToThem) {
  const auto bookmarks = bookmarksOf(list(
      "<bookmark href='a'><info><metadata owner='http://elsewhere'><bookmark:applications>"
      "<bookmark:application name='Orvo'/></bookmark:applications></metadata></info></bookmark>"));
  EXPECT_TRUE(bookmarks.at(0).info.has_value());
  EXPECT_FALSE(bookmarks.at(0).metadata.has_value());
  EXPECT_FALSE(bookmarks.at(0).application.has_value());
}

TEST(AListOfBookmarks, TellsWhereItsElementsStand) {
  const std::string text = list("<bookmark href='a'><info>x</info></bookmark>");
  const auto bookmark = bookmarksOf(text).at(0);
  const auto contentOf = [&text](const platform::XbelElement& element) {
    return text.substr(element.tag.end, element.contentEnd - element.tag.end);
  };
  EXPECT_EQ(contentOf(bookmark.bookmark), "<info>x</info>");
  EXPECT_EQ(contentOf(*bookmark.info), "x");
  const auto root = readXbel(text, "Orvo", [](const XbelBookmark&) {});
  EXPECT_EQ(contentOf(*root), "<bookmark href='a'><info>x</info></bookmark>");
}

TEST(AListOfBookmarks, TellsWhichPrefixesHoldInside) {
  const auto bookmarks =
      bookmarksOf(list("<bookmark href='a'/><bookmark href='b' xmlns:bookmark='http://elsewhere'/>"
                       "<bookmark href='c'/>"));
  EXPECT_TRUE(bookmarks[0].bookmark.declaresBookmark);
  EXPECT_TRUE(bookmarks[0].bookmark.declaresMime);
  EXPECT_FALSE(bookmarks[1].bookmark.declaresBookmark);
  EXPECT_TRUE(bookmarks[2].bookmark.declaresBookmark);
  EXPECT_FALSE(bookmarksOf(list("<bookmark href='a'/>", "")).at(0).bookmark.declaresMime);
}

TEST(AListOfBookmarks, MayHaveADeclarationABomCommentsAndWindowsLines) {
  EXPECT_THAT(addressesOf("\xEF\xBB\xBF<?xml version='1.0' encoding='UTF-8'?>\r\n"
                          "<!DOCTYPE xbel PUBLIC '+//IDN python.org//DTD XML Bookmark Exchange "
                          "Language 1.0//EN//XML' 'http://www.python.org/topics/xml/dtds/"
                          "xbel-1.0.dtd'>\r\n<!-- <xbel> -->\r\n" +
                          list("\r\n<bookmark\r\n href='a'\r\n/>\r\n") + "\r\n<!-- end -->"),
              ElementsAre("a"));
}

TEST(AListOfBookmarks, IsRefusedWhenItIsNotOneOrNotWhole) {
  const std::string whole = list("<bookmark href='a'/>");
  ASSERT_TRUE(canBeRead(whole));
  for (const std::string& text :
       {std::string(), std::string(" "), std::string("text"), std::string("<html/>"),
        std::string("{\"xbel\": 1}"), whole.substr(0, whole.size() - 1),
        whole.substr(0, whole.size() - 7), whole + whole, whole + "x",
        whole + std::string(100, '\0'), std::string(100, '\0'), list("<bookmark href='a'>"),
        list("<a></b>"), list("<a b='1' b='2'/>"), list("&nothing;"), list("<a b='<'/>"),
        list("<undeclared:a/>"), list("\xFF\xFE"), list("\x01")}) {
    EXPECT_FALSE(canBeRead(text)) << text;
  }
}

TEST(AListOfBookmarks, IsRefusedAtEveryPlaceWhereItMayBeCutOff) {
  const std::string whole = list("<!-- c --><bookmark href='a'><info>" + kMetadata +
                                 "<![CDATA[<]]></metadata></info></bookmark>");
  ASSERT_TRUE(canBeRead(whole));
  for (std::size_t length = 0; length < whole.size(); ++length) {
    EXPECT_FALSE(canBeRead(whole.substr(0, length))) << length;
  }
}

TEST(AListOfBookmarks, IsRefusedWhenItIsMadeToTakeAllMemory) {
  std::string nested;
  for (int i = 0; i < 1'000'000; ++i) {
    nested += "<a>";
  }
  EXPECT_FALSE(canBeRead("<xbel>" + nested));
  EXPECT_FALSE(canBeRead(
      "<!DOCTYPE xbel [<!ENTITY a 'aaaaaaaaaa'><!ENTITY b '&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;'>]>" +
      list("&b;")));
}

}  // namespace
