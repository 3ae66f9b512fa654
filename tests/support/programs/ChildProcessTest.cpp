#include "support/programs/ChildProcess.h"

#include <csignal>
#include <string>

#include <sys/wait.h>
#include <unistd.h>

#include <gmock/gmock.h>

#include "support/TemporaryFolder.h"

namespace support {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

std::unique_ptr<ChildProcess> startShell(const std::string& script,
                                         const Environment& environment = cleanEnvironment()) {
  std::string error;
  auto process = ChildProcess::start({"sh", "-c", script}, environment, error);
  EXPECT_THAT(error, IsEmpty());
  return process;
}

pid_t printedId(const ChildProcess& process) {
  EXPECT_TRUE(eventually([&] { return process.output().find('\n') != std::string::npos; }));
  return static_cast<pid_t>(std::stol("0" + process.output()));
}

/// A process that has ended, waited for or not.
bool isGone(pid_t pid) {
  const char state = processState(pid);
  return state == '\0' || state == 'Z';
}

TEST(ChildProcessTest, TellsTheExitCodeAndWhatWasPrinted) {
  const Finished finished =
      runToEnd({"sh", "-c", "echo out; echo err >&2; exit 7"}, cleanEnvironment());
  EXPECT_EQ(finished.status, (ExitStatus{7, 0}));
  EXPECT_EQ(finished.output, "out\n");
  EXPECT_EQ(finished.error, "err\n");
}

TEST(ChildProcessTest, KeepsMoreOutputThanAPipeHolds) {
  const Finished finished = runToEnd({"head", "-c", "1000000", "/dev/zero"}, cleanEnvironment());
  EXPECT_EQ(finished.output.size(), 1000000U);
}

TEST(ChildProcessTest, GetsTheGivenEnvironmentAlone) {
  const Finished finished = runToEnd({"env"}, {{"ONLY", "this"}});
  EXPECT_EQ(finished.output, "ONLY=this\n");
}

TEST(ChildProcessTest, CleanEnvironmentNamesNoScreenAndNoServer) {
  const Environment environment = cleanEnvironment();
  for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "PULSE_SERVER", "XDG_RUNTIME_DIR"}) {
    EXPECT_EQ(environment.count(name), 0U) << name;
  }
}

TEST(ChildProcessTest, WritesItsOutputToAGivenFile) {
  const TemporaryFolder folder;
  std::string error;
  const auto process =
      ChildProcess::start({"echo", "text"}, cleanEnvironment(), error, folder.file("output"));
  ASSERT_NE(process, nullptr) << error;
  EXPECT_EQ(process->waitForExit(), (ExitStatus{0, 0}));
  EXPECT_EQ(runToEnd({"cat", folder.file("output")}, cleanEnvironment()).output, "text\n");
  EXPECT_THAT(process->output(), IsEmpty());
}

TEST(ChildProcessTest, ProgramThatDoesNotExistIsToldByName) {
  std::string error;
  EXPECT_EQ(ChildProcess::start({"no-such-program"}, cleanEnvironment(), error), nullptr);
  EXPECT_THAT(error, HasSubstr("no-such-program"));
}

TEST(ChildProcessTest, FileThatIsNoProgramIsToldByName) {
  const TemporaryFolder folder;
  const std::string path = folder.file("damaged");
  ASSERT_TRUE(runToEnd({"sh", "-c", "printf '\\177ELF' > \"$0\" && chmod +x \"$0\"", path},
                       cleanEnvironment())
                  .status.succeeded());
  std::string error;
  EXPECT_EQ(ChildProcess::start({path}, cleanEnvironment(), error), nullptr);
  EXPECT_THAT(error, HasSubstr(path));
}

TEST(ChildProcessTest, WaitingEndsAtTheDeadline) {
  const auto process = startShell("exec sleep 1000");
  EXPECT_EQ(process->waitForExit(std::chrono::milliseconds(1)), std::nullopt);
  EXPECT_TRUE(process->isRunning());
}

TEST(ChildProcessTest, EndAsksFirstAndKillsWhoDoesNotListen) {
  const auto polite = startShell("trap 'exit 3' TERM; echo; while :; do sleep 0.01; done");
  printedId(*polite);
  EXPECT_EQ(polite->end(), (ExitStatus{3, 0}));
  const auto deaf = startShell("trap '' TERM; echo; while :; do sleep 0.01; done");
  printedId(*deaf);
  EXPECT_EQ(deaf->end(std::chrono::milliseconds(50)), (ExitStatus{0, SIGKILL}));
}

TEST(ChildProcessTest, FrozenProgramIsStoppedAndStillRunning) {
  const auto process = startShell("exec sleep 1000");
  process->freeze();
  EXPECT_EQ(processState(process->pid()), 'T');
  EXPECT_TRUE(process->isRunning());
  process->thaw();
  EXPECT_TRUE(eventually([&] { return processState(process->pid()) != 'T'; }));
}

TEST(ChildProcessTest, DestructionTakesTheWholeGroupAlong) {
  auto process = startShell("sleep 1000 & echo $!; wait");
  const pid_t grandchild = printedId(*process);
  const pid_t child = process->pid();
  EXPECT_FALSE(isGone(grandchild));
  process.reset();
  EXPECT_TRUE(isGone(child));
  EXPECT_TRUE(eventually([&] { return isGone(grandchild); }));
}

TEST(ChildProcessTest, ProgramThatEndedLeavesNothingInItsGroup) {
  const auto process = startShell("sleep 1000 & echo $!");
  const pid_t grandchild = printedId(*process);
  EXPECT_EQ(process->waitForExit(), (ExitStatus{0, 0}));
  EXPECT_TRUE(eventually([&] { return isGone(grandchild); }));
}

TEST(ChildProcessTest, DiesWithTheTestThatStartedIt) {
  int idPipe[2];
  ASSERT_EQ(::pipe(idPipe), 0);
  const pid_t test = ::fork();
  if (test == 0) {
    std::string error;
    const auto process = ChildProcess::start({"sleep", "1000"}, cleanEnvironment(), error);
    const pid_t child = process->pid();
    static_cast<void>(!::write(idPipe[1], &child, sizeof child));
    ::raise(SIGKILL);
  }
  pid_t child = 0;
  ASSERT_EQ(::read(idPipe[0], &child, sizeof child), static_cast<ssize_t>(sizeof child));
  EXPECT_TRUE(eventually([&] { return isGone(child); }));
  int status = 0;
  ::waitpid(test, &status, 0);
  ::close(idPipe[0]);
  ::close(idPipe[1]);
}

TEST(ChildProcessTest, FindsProgramsByNameAndByPath) {
  EXPECT_THAT(findProgram("sh"), HasSubstr("/sh"));
  EXPECT_EQ(findProgram("/bin/sh"), "/bin/sh");
  EXPECT_THAT(findProgram("no-such-program"), IsEmpty());
}

}  // namespace
}  // namespace support
