// What the real program answers on the command line, without a screen.
#include <algorithm>

#include <gmock/gmock.h>

#include "support/programs/ChildProcess.h"

using namespace support;

namespace {

using testing::HasSubstr;

Finished orvo(const std::vector<std::string>& arguments, const Environment& more = {}) {
  std::vector<std::string> command{ORVO_PROGRAM};
  command.insert(command.end(), arguments.begin(), arguments.end());
  return runToEnd(command, with(cleanEnvironment(), more));
}

TEST(CommandLine, HelpIsPrintedAndNothingElse) {
  const Finished run = orvo({"--help", "/no/such/file.wav"});
  EXPECT_TRUE(run.status.succeeded());
  EXPECT_TRUE(run.output.starts_with("Usage: orvo ")) << run.output;
  EXPECT_EQ(run.error, "");
}

TEST(CommandLine, VersionIsPrinted) {
  const Finished run = orvo({"--version"});
  EXPECT_TRUE(run.status.succeeded());
  EXPECT_EQ(run.output, "Orvo " ORVO_VERSION "\n");
}

TEST(CommandLine, AnswersAreInTheUsersLanguage) {
  EXPECT_THAT(orvo({"--help"}, {{"LANGUAGE", "fr"}}).output, HasSubstr("Affiche la version."));
}

TEST(CommandLine, HelpFitsTheTerminal) {
  const auto onTerminal = [](const std::string& columns) {
    const Finished run =
        runToEnd({"script", "--quiet", "--return", "--command",
                  "stty cols " + columns + " && " ORVO_PROGRAM " --help", "/dev/null"},
                 with(cleanEnvironment(), {{"LANGUAGE", "ja"}}));
    EXPECT_TRUE(run.status.succeeded()) << run.output << run.error;
    return run.output;
  };
  const std::string narrow = onTerminal("40");
  const std::string wide = onTerminal("70");
  EXPECT_THAT(wide, HasSubstr("--version"));
  const auto lines = [](const std::string& text) {
    return std::count(text.begin(), text.end(), '\n');
  };
  EXPECT_GT(lines(narrow), lines(wide) + 5);
}

TEST(CommandLine, UnknownOptionIsToldOnStandardErrorWithStatusTwo) {
  const Finished run = orvo({"take.wav", "--loud"});
  EXPECT_EQ(run.status, (ExitStatus{.code = 2}));
  EXPECT_EQ(run.output, "");
  EXPECT_THAT(run.error, HasSubstr("--loud"));
}

TEST(CommandLine, HelpThatCannotBePrintedFails) {
  const Finished run =
      runToEnd({"sh", "-c", std::string(ORVO_PROGRAM) + " --help >/dev/full"}, cleanEnvironment());
  EXPECT_EQ(run.status, (ExitStatus{.code = 1}));
}

}  // namespace
