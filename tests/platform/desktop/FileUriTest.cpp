#include "platform/desktop/FileUri.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace {

using platform::fileUriOf;
using platform::pathOfFileUri;

TEST(FileUriTest, EscapesEverythingButLettersDigitsAndSomeMarks) {
  EXPECT_EQ(fileUriOf("/AZaz09/!$&'()*+,-./:=@_~"), "file:///AZaz09/!$&'()*+,-./:=@_~");
  EXPECT_EQ(fileUriOf("/a b%c?d#e;f[g]\"<>\\^`{|}"),
            "file:///a%20b%25c%3Fd%23e%3Bf%5Bg%5D%22%3C%3E%5C%5E%60%7B%7C%7D");
  EXPECT_EQ(fileUriOf("/two\nlines\x7F"), "file:///two%0Alines%7F");
}

TEST(FileUriTest, EscapesOtherScriptsAndInvalidUtf8ByteForByte) {
  EXPECT_EQ(fileUriOf("/\xE5\xBD\x95\xE9\x9F\xB3.wav"), "file:///%E5%BD%95%E9%9F%B3.wav");
  EXPECT_EQ(fileUriOf("/caf\xE9.wav"), "file:///caf%E9.wav");
}

TEST(FileUriTest, KeepsEveryByteOfThePath) {
  std::string path = "/";
  for (int byte = 1; byte < 256; ++byte) {
    path += static_cast<char>(byte);
  }
  EXPECT_EQ(pathOfFileUri(fileUriOf(path)), path);
}

TEST(FileUriTest, IsReadInTheFormsThatOtherProgramsWrite) {
  EXPECT_EQ(pathOfFileUri("file://localhost/a.wav"), "/a.wav");
  EXPECT_EQ(pathOfFileUri("FILE:///a.wav"), "/a.wav");
  EXPECT_EQ(pathOfFileUri("file:/a.wav"), "/a.wav");
  EXPECT_EQ(pathOfFileUri("file:///%e5%BD%95.wav"), "/\xE5\xBD\x95.wav");
  EXPECT_EQ(pathOfFileUri("file:///\xE5\xBD\x95 (1).wav"), "/\xE5\xBD\x95 (1).wav");
}

TEST(FileUriTest, IsNoPathForOtherSchemesOtherMachinesAndBrokenEscapes) {
  for (const char* uri :
       {"", "file:", "file://", "file://server/a.wav", "file://localhostile/a.wav",
        "http://localhost/a.wav", "/a.wav", "a.wav", "file:///a%2", "file:///a%", "file:///a%zz",
        "file:///a%-1", "file:///a%00b", "file:///a%2Fb"}) {
    EXPECT_EQ(pathOfFileUri(uri), std::nullopt) << uri;
  }
}

TEST(FileUriTest, IsEmptyForAPathThatIsNotAbsolute) {
  EXPECT_EQ(fileUriOf("a.wav"), "");
  EXPECT_EQ(fileUriOf(""), "");
}

}  // namespace
