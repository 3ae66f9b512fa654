#include "platform/desktop/XbelRegistration.h"

#include <gtest/gtest.h>

#include <chrono>
#include <random>
#include <string>

namespace {

using platform::readXbel;
using platform::registrationTimeOf;
using platform::withRegistration;
using platform::XbelBookmark;
using platform::XbelRegistration;
using platform::XbelTime;

// 2024-02-29T12:34:56.000789Z
constexpr XbelTime kNow{std::chrono::microseconds(1709210096000789)};
const std::string kNowText = "2024-02-29T12:34:56.000789Z";
const std::string kHead =
    "<xbel version=\"1.0\"\n"
    "      xmlns:bookmark=\"http://www.freedesktop.org/standards/desktop-bookmarks\"\n"
    "      xmlns:mime=\"http://www.freedesktop.org/standards/shared-mime-info\"\n>\n";
const std::string kOurs =
    "<bookmark:application name=\"Orvo\" exec=\"&apos;orvo %u&apos;\""
    " modified=\"" +
    kNowText + "\" count=\"1\"/>";

std::string registered(const std::string& text, const std::string& path = "/a.wav") {
  return withRegistration(text, {.path = path,
                                 .mimeType = "audio/x-wav",
                                 .application = "Orvo",
                                 .command = "'orvo %u'",
                                 .time = kNow})
      .value_or("refused");
}

std::string entryOf(const std::string& address) {
  return "  <bookmark href=\"" + address + "\" added=\"" + kNowText + "\" modified=\"" + kNowText +
         "\" visited=\"" + kNowText +
         "\">\n"
         "    <info>\n"
         "      <metadata owner=\"http://freedesktop.org\">\n"
         "        <mime:mime-type type=\"audio/x-wav\"/>\n"
         "        <bookmark:applications>\n"
         "          " +
         kOurs +
         "\n"
         "        </bookmark:applications>\n"
         "      </metadata>\n"
         "    </info>\n"
         "  </bookmark>\n";
}

// An entry of another program; `content` stands in its metadata.
std::string others(const std::string& content, const std::string& time = "2020-01-02T03:04:05Z") {
  return "  <bookmark href='file:///a.wav' added='2019-01-01T00:00:00Z' modified='" + time +
         "' visited='" + time +
         "' x='&lt;'>\n    <title>A &amp; B</title><desc/>\n    <info>\n"
         "<metadata owner='http://elsewhere'><y/></metadata>\n"
         "      <metadata owner='http://freedesktop.org'>\n        " +
         content + "\n      </metadata>\n    </info>\n  </bookmark><!-- behind -->\n";
}

std::string theirs(const std::string& more = "") {
  return "<bookmark:applications>\n          <bookmark:application name='Other' exec='o %u' "
         "modified='2020-01-02T03:04:05Z' count='4'/>\n        " +
         more + "</bookmark:applications><bookmark:private/><z:own xmlns:z='urn:z'/>";
}

TEST(ARegistration, MakesAListOfNothing) {
  EXPECT_EQ(registered(""), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n" + kHead +
                                entryOf("file:///a.wav") + "</xbel>\n");
}

TEST(ARegistration, AppendsAnEntryAndLeavesTheRestToTheByte) {
  const std::string before = "<?xml version='1.0'?>\r\n<!-- by hand -->\n" + kHead +
                             "  <bookmark href='http://a'   />\t<unknown>&#65;</unknown>\n";
  EXPECT_EQ(registered(before + "</xbel >\n<!-- end -->"),
            before + entryOf("file:///a.wav") + "</xbel >\n<!-- end -->");
}

TEST(ARegistration, EscapesWhatXmlWouldTakeForItsOwn) {
  EXPECT_EQ(
      registered(kHead + "</xbel>", "/a&b 'c'\n\"<\xE5\xBD\x95>%.wav"),
      kHead + entryOf("file:///a&amp;b%20&apos;c&apos;%0A%22%3C%E5%BD%95%3E%25.wav") + "</xbel>");
}

TEST(ARegistration, JoinsThoseOfOtherPrograms) {
  EXPECT_EQ(registered(kHead + others(theirs()) + "</xbel>"),
            kHead + others(theirs("  " + kOurs + "\n        "), kNowText) + "</xbel>");
}

TEST(ARegistration, CountsUpOursAndKeepsWhatItDoesNotKnow) {
  const auto ours = [](const std::string& command, const std::string& time,
                       const std::string& seconds, const std::string& count) {
    return "<bookmark:application own='1' timestamp='" + seconds + "' count='" + count +
           "' modified='" + time + "' exec='" + command +
           "' name='Orvo'><w/></bookmark:application>";
  };
  EXPECT_EQ(
      registered(kHead + others(theirs(ours("old", "2020-01-01T00:00:00Z", "1577836800", "41"))) +
                 "</xbel>"),
      kHead + others(theirs(ours("&apos;orvo %u&apos;", kNowText, "1709210096", "42")), kNowText) +
          "</xbel>");
}

TEST(ARegistration, BeginsToCountAnewWhereTheCountIsNone) {
  for (const std::string count : {"", "x", "-3", "0", "2147483647", "99999999999"}) {
    const auto ours = [](const std::string& number, const std::string& time) {
      return theirs("<bookmark:application name='Orvo' exec='&apos;orvo %u&apos;' modified='" +
                    time + "' count='" + number + "'/>");
    };
    EXPECT_EQ(registered(kHead + others(ours(count, "")) + "</xbel>"),
              kHead + others(ours("1", kNowText), kNowText) + "</xbel>")
        << count;
  }
}

TEST(ARegistration, AddsWhatAnEntryLacks) {
  const std::string entry = "<bookmark href='file:///a.wav' visited='' modified=''";
  const std::string now =
      "<bookmark href='file:///a.wav' visited='" + kNowText + "' modified='" + kNowText + "'";
  for (const std::string content :
       {"/>", "></bookmark>", "><info/></bookmark>", "><info></info></bookmark>",
        "><info><metadata owner='http://freedesktop.org'/></info></bookmark>",
        "><info><metadata owner='http://freedesktop.org'></metadata></info></bookmark>",
        "><info><metadata owner='http://freedesktop.org'><bookmark:applications/></metadata>"
        "</info></bookmark>"}) {
    const std::string text = registered(kHead + entry + content + "</xbel>");
    EXPECT_TRUE(text.starts_with(kHead + now)) << text;
    int found = 0;
    EXPECT_TRUE(readXbel(text, "Orvo", [&found](const XbelBookmark& bookmark) {
      found += bookmark.application ? 1 : 0;
      EXPECT_EQ(registrationTimeOf(bookmark), kNow);
      EXPECT_EQ(bookmark.count, "1");
    })) << text;
    EXPECT_EQ(found, 1) << text;
  }
}

TEST(ARegistration, DeclaresItsPrefixesWhereNobodyDid) {
  for (const std::string text :
       {"<xbel/>", "<xbel version='1.0'></xbel>",
        "<xbel xmlns:bookmark='http://elsewhere' xmlns:mime='http://elsewhere'></xbel>",
        "<xbel><bookmark href='file:///a.wav'/></xbel>",
        "<xbel><bookmark href='file:///a.wav'><info><metadata owner='http://freedesktop.org'>"
        "<b:applications xmlns:b='http://www.freedesktop.org/standards/desktop-bookmarks'/>"
        "</metadata></info></bookmark></xbel>"}) {
    int found = 0;
    EXPECT_TRUE(readXbel(registered(text), "Orvo", [&found](const XbelBookmark& bookmark) {
      found += bookmark.application ? 1 : 0;
    })) << registered(text);
    EXPECT_EQ(found, 1) << registered(text);
  }
}

TEST(ARegistration, KnowsTheFileByItsPathHoweverItsAddressIsWritten) {
  const std::string entry = "<bookmark href='file://localhost/%61%28&#x62;).wav'/>";
  const std::string text = registered(kHead + entry + "</xbel>", "/a(b).wav");
  int entries = 0;
  EXPECT_TRUE(readXbel(text, "Orvo", [&entries](const XbelBookmark&) { ++entries; }));
  EXPECT_EQ(entries, 1) << text;
}

TEST(ARegistration, UpdatesOneOfTwoEntriesOfAFile) {
  const std::string second = "<bookmark href='file:///a.wav' visited='2'/></xbel>";
  const std::string text =
      registered(kHead + "<bookmark href='file:///a.wav' visited='1'/>" + second);
  EXPECT_TRUE(text.ends_with(second)) << text;
  EXPECT_NE(text.find(kOurs), std::string::npos);
}

TEST(ARegistration, RefusesATextThatIsNoList) {
  EXPECT_EQ(registered("<html/>"), "refused");
  EXPECT_EQ(registered(kHead), "refused");
  EXPECT_EQ(registered(" "), "refused");
}

TEST(ARegistration, InADamagedListIsEitherRefusedOrFoundAgain) {
  const std::string whole = "<?xml version='1.0'?><!-- c -->" + kHead + others(theirs(kOurs)) +
                            "<folder><bookmark href='file:///b'/></folder></xbel>";
  const std::string marks = "<>/!-'\"[]=& :?abx\n\x80";
  std::mt19937 random(1);
  const auto below = [&random](std::size_t limit) { return random() % limit; };
  int accepted = 0;
  for (int round = 0; round < 20'000; ++round) {
    std::string text = whole;
    for (std::size_t damage = below(3) + 1; damage > 0; --damage) {
      const std::size_t begin = below(text.size());
      switch (below(3)) {
        case 0:
          text[begin] = marks[below(marks.size())];
          break;
        case 1:
          text.erase(begin, below(20));
          break;
        default:
          text.insert(begin, whole, below(whole.size()), below(60));
          break;
      }
    }
    const std::string result = registered(text);
    if (result == "refused") {
      continue;
    }
    ++accepted;
    bool found = false;
    EXPECT_TRUE(readXbel(result, "Orvo",
                         [&found](const XbelBookmark& bookmark) {
                           found = found ||
                                   (bookmark.address.ends_with("/a.wav") && bookmark.application &&
                                    registrationTimeOf(bookmark) == kNow);
                         }))
        << text << "\n----\n"
        << result;
    EXPECT_TRUE(found) << text << "\n----\n" << result;
  }
  EXPECT_GT(accepted, 1000);
}

XbelTime timeOf(const std::string& modified, const std::string& timestamp = "") {
  XbelBookmark bookmark;
  bookmark.modified = modified;
  bookmark.timestamp = timestamp;
  return registrationTimeOf(bookmark);
}

TEST(TheTimeOfARegistration, IsReadToTheMicrosecondInEveryFormThatProgramsWrite) {
  const auto second = std::chrono::time_point_cast<std::chrono::seconds>(kNow);
  EXPECT_EQ(timeOf(kNowText), kNow);
  EXPECT_EQ(timeOf("2024-02-29T12:34:56Z"), second);
  EXPECT_EQ(timeOf("2024-02-29T12:34:56.5Z"), second + std::chrono::milliseconds(500));
  EXPECT_EQ(timeOf("2024-02-29T12:34:56.123456789Z"), second + std::chrono::microseconds(123456));
  EXPECT_EQ(timeOf("2024-02-29T13:34:56+01:00"), second);
  EXPECT_EQ(timeOf("", "1709210096"), second);
  EXPECT_EQ(timeOf("yesterday", "1709210096"), second);
}

TEST(TheTimeOfARegistration, IsTheBeginningWhereItCannotBeRead) {
  for (const std::string text : {"", "yesterday", "2024-13-01T00:00:00Z", ".", "-5"}) {
    EXPECT_EQ(timeOf(text, text), XbelTime()) << text;
  }
  EXPECT_GT(timeOf("", "9223372036854775807"), kNow);
}

}  // namespace
