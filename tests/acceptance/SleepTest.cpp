// While the real program records, and only then, the login manager is asked to keep the machine
// from sleeping.
#include <csignal>
#include <filesystem>
#include <fstream>

#include "acceptance/AcceptanceTest.h"

using namespace support;

namespace {

class Sleep : public AcceptanceTest {
 protected:
  /// Starts the program with a bus of its own as the desktop's and the machine's, on which there is
  /// a login manager and no portal.
  void startWithLoginManager() {
    ASSERT_NO_FATAL_FAILURE(startBus());
    std::string error;
    manager_ = ChildProcess::start({ORVO_LOGIN_MANAGER, address_}, cleanEnvironment(), error);
    ASSERT_NE(manager_, nullptr) << error;
    ASSERT_TRUE(eventually([&] { return has("ready"); })) << manager_->errorOutput();
    RunningOrvo::Options options;
    options.wrapper = {"env", "DBUS_SESSION_BUS_ADDRESS=" + address_,
                       "DBUS_SYSTEM_BUS_ADDRESS=" + address_};
    ASSERT_NO_FATAL_FAILURE(startOrvo(options));
  }

  /// Whether the login manager has written this line.
  bool has(const std::string& line) const {
    return ("\n" + manager_->output()).find("\n" + line + "\n") != std::string::npos;
  }
  /// Waits until the machine is kept awake, or is not, for the `time`th time.
  bool awaitHeld(bool held, int time = 1) const {
    const std::string line = held ? "held: 1\n" : "held: 0\n";
    return eventually([&] {
      const std::string all = manager_->output();
      int found = 0;
      for (std::size_t at = all.find(line); at != std::string::npos; at = all.find(line, at + 1)) {
        ++found;
      }
      return found == time && all.ends_with(line);
    });
  }

 private:
  // Without folders of services, so that it starts none of the machine.
  void startBus() {
    const std::string socket = folder_.file("bus");
    address_ = "unix:path=" + socket;
    const std::string configuration = folder_.file("bus.conf");
    std::ofstream(configuration)
        << "<busconfig><type>session</type><listen>" << address_ << "</listen>"
        << "<policy context=\"default\"><allow send_destination=\"*\" eavesdrop=\"true\"/>"
           "<allow eavesdrop=\"true\"/><allow own=\"*\"/></policy></busconfig>\n";
    std::string error;
    bus_ = ChildProcess::start(
        {"dbus-daemon", "--config-file=" + configuration, "--nofork", "--nopidfile"},
        cleanEnvironment(), error);
    ASSERT_NE(bus_, nullptr) << error;
    ASSERT_TRUE(eventually([&] { return std::filesystem::exists(socket); })) << bus_->errorOutput();
  }

  std::string address_;
  std::unique_ptr<ChildProcess> bus_;
  std::unique_ptr<ChildProcess> manager_;
};

TEST_F(Sleep, IsPreventedWhileItRecordsAndNotBeforeOrAfter) {
  ASSERT_NO_FATAL_FAILURE(startWithLoginManager());
  ASSERT_TRUE(screen_->screenshotAtRest(orvo_->window(), folder_.file("idle.png")));
  EXPECT_FALSE(has("held: 1"));
  ASSERT_NO_FATAL_FAILURE(beginRecording());
  ASSERT_TRUE(awaitHeld(true));
  EXPECT_TRUE(has("asked: sleep, Orvo, Orvo is recording, block"));
  ASSERT_TRUE(screen_->pressKey("r"));
  EXPECT_TRUE(awaitHeld(false));
  ASSERT_NO_FATAL_FAILURE(beginRecording());
  ASSERT_TRUE(awaitHeld(true, 2));
  ASSERT_TRUE(screen_->pressKey("space"));
  EXPECT_TRUE(awaitHeld(false, 2));
}

TEST_F(Sleep, IsPossibleAgainAfterQuit) {
  ASSERT_NO_FATAL_FAILURE(startWithLoginManager());
  ASSERT_NO_FATAL_FAILURE(beginRecording());
  ASSERT_TRUE(awaitHeld(true));
  ASSERT_TRUE(screen_->pressKey("ctrl+q"));
  ASSERT_NO_FATAL_FAILURE(answerSheet(Answer::dontSave));
  EXPECT_EQ(orvo_->process().waitForExit(), (ExitStatus{0, 0}));
  EXPECT_TRUE(awaitHeld(false));
}

TEST_F(Sleep, IsPossibleAgainAfterTheProgramWasKilled) {
  ASSERT_NO_FATAL_FAILURE(startWithLoginManager());
  ASSERT_NO_FATAL_FAILURE(beginRecording());
  ASSERT_TRUE(awaitHeld(true));
  orvo_->process().signal(SIGKILL);
  EXPECT_TRUE(awaitHeld(false));
  EXPECT_EQ(orvo_->process().waitForExit(), (ExitStatus{0, SIGKILL}));
}

}  // namespace
