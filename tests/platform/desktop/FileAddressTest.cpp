#include "platform/desktop/FileAddress.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace {

using platform::fileAddressOf;
using platform::pathOfFileAddress;

TEST(AFileAddress, EncodesEverythingButLettersDigitsAndTheMarksThatGlibKeeps) {
  EXPECT_EQ(fileAddressOf("/AZaz09/!$&'()*+,-./:=@_~"), "file:///AZaz09/!$&'()*+,-./:=@_~");
  EXPECT_EQ(fileAddressOf("/a b%c?d#e;f[g]\"<>\\^`{|}"),
            "file:///a%20b%25c%3Fd%23e%3Bf%5Bg%5D%22%3C%3E%5C%5E%60%7B%7C%7D");
  EXPECT_EQ(fileAddressOf("/two\nlines\x7F"), "file:///two%0Alines%7F");
}

TEST(AFileAddress, EncodesOtherScriptsAndBytesOfNoScriptByteForByte) {
  EXPECT_EQ(fileAddressOf("/\xE5\xBD\x95\xE9\x9F\xB3.wav"), "file:///%E5%BD%95%E9%9F%B3.wav");
  EXPECT_EQ(fileAddressOf("/caf\xE9.wav"), "file:///caf%E9.wav");
}

TEST(AFileAddress, GivesBackEveryByteOfThePath) {
  std::string path = "/";
  for (int byte = 1; byte < 256; ++byte) {
    path += static_cast<char>(byte);
  }
  EXPECT_EQ(pathOfFileAddress(fileAddressOf(path)), path);
}

TEST(AFileAddress, IsReadInTheFormsThatOtherProgramsWrite) {
  EXPECT_EQ(pathOfFileAddress("file://localhost/a.wav"), "/a.wav");
  EXPECT_EQ(pathOfFileAddress("FILE:///a.wav"), "/a.wav");
  EXPECT_EQ(pathOfFileAddress("file:/a.wav"), "/a.wav");
  EXPECT_EQ(pathOfFileAddress("file:///%e5%BD%95.wav"), "/\xE5\xBD\x95.wav");
  EXPECT_EQ(pathOfFileAddress("file:///\xE5\xBD\x95 (1).wav"), "/\xE5\xBD\x95 (1).wav");
}

TEST(AFileAddress, IsNoPathForOtherSchemesMachinesAndBrokenEscapes) {
  for (const char* address :
       {"", "file:", "file://", "file://server/a.wav", "file://localhostile/a.wav",
        "http://localhost/a.wav", "/a.wav", "a.wav", "file:///a%2", "file:///a%", "file:///a%zz",
        "file:///a%-1", "file:///a%00b", "file:///a%2Fb", "file:///a.wav#part",
        "file:///a.wav?query"}) {
    EXPECT_EQ(pathOfFileAddress(address), std::nullopt) << address;
  }
}

}  // namespace
