#include "app/OVCommandLine.h"

#include <gmock/gmock.h>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Request = OVCommandLine::Request;

/// A command line from words; the first is the program.
class Given {
 public:
  explicit Given(std::vector<std::string> words) : words_(std::move(words)) {
    for (std::string& word : words_) {
      arguments_.push_back(word.data());
    }
    arguments_.push_back(nullptr);
  }

  OVCommandLine read() { return {static_cast<int>(words_.size()), arguments_.data()}; }

 private:
  std::vector<std::string> words_;
  std::vector<char*> arguments_;
};

std::vector<std::string> forQt(OVCommandLine& line) {
  EXPECT_EQ(line.forQt().back(), nullptr);
  return {line.forQt().begin(), line.forQt().end() - 1};
}

TEST(OVCommandLineTest, FilesAreTakenByteForByteInTheirOrder) {
  OVCommandLine line = Given({"orvo", "b.wav", "a\xFF.caf", "file:///c", "", "-"}).read();
  EXPECT_EQ(line.request(), Request::openFiles);
  EXPECT_THAT(line.files(), ElementsAre("b.wav", "a\xFF.caf", "file:///c", "", "-"));
}

TEST(OVCommandLineTest, HelpAndVersionAreAskedForWhereverTheyStand) {
  EXPECT_EQ(Given({"orvo", "--help"}).read().request(), Request::printHelp);
  EXPECT_EQ(Given({"orvo", "a.wav", "--version", "--what"}).read().request(),
            Request::printVersion);
}

TEST(OVCommandLineTest, OptionThatIsNotKnownIsNamed) {
  for (const char* const option :
       {"--what", "-x", "-h", "--help=all", "--platformer", "-reversed"}) {
    const OVCommandLine line = Given({"orvo", "a.wav", option, "--help"}).read();
    EXPECT_EQ(line.request(), Request::refuseOption) << option;
    EXPECT_EQ(line.unknownOption(), option);
  }
}

TEST(OVCommandLineTest, EverythingAfterTwoDashesIsAFile) {
  Given given({"orvo", "-reverse", "--", "--help", "-platform", "--"});
  OVCommandLine line = given.read();
  EXPECT_EQ(line.request(), Request::openFiles);
  EXPECT_THAT(line.files(), ElementsAre("--help", "-platform", "--"));
  EXPECT_THAT(forQt(line), ElementsAre("orvo", "-reverse"));
}

TEST(OVCommandLineTest, OptionsOfQtAreSetApartWithTheirValues) {
  Given given({"orvo", "-platform", "offscreen", "a.wav", "--style", "fusion", "-style=windows",
               "-session", "1_2", "b.wav", "-title"});
  OVCommandLine line = given.read();
  EXPECT_THAT(line.files(), ElementsAre("a.wav", "b.wav"));
  EXPECT_THAT(forQt(line), ElementsAre("orvo", "-platform", "offscreen", "--style", "fusion",
                                       "-style=windows", "-session", "1_2", "-title"));
}

TEST(OVCommandLineTest, NoArgumentsAtAllAskForNothing) {
  Given given({});
  OVCommandLine line = given.read();
  EXPECT_EQ(line.request(), Request::openFiles);
  EXPECT_THAT(line.files(), IsEmpty());
  EXPECT_THAT(forQt(line), IsEmpty());
}

}  // namespace
