// The installed program on a screen, from a folder that nothing was built for.
#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include <gmock/gmock.h>

#include "installation/InstallationFixture.h"
#include "support/RawAudio.h"
#include "support/programs/PrivateSoundServer.h"
#include "support/programs/RunningOrvo.h"
#include "support/programs/VirtualScreen.h"

using namespace support;

namespace {

class InstalledProgram : public InstallationFixture {
 protected:
  void SetUp() override {
    ASSERT_NO_FATAL_FAILURE(InstallationFixture::SetUp());
    std::string error;
    screen_ = VirtualScreen::start(error);
    ASSERT_NE(screen_, nullptr) << error;
    server_ = PrivateSoundServer::start(error);
    ASSERT_NE(server_, nullptr) << error;
  }

  void startProgram(const RunningOrvo::Options& options) {
    std::string error;
    orvo_ = RunningOrvo::start(program(), *screen_, server_->environment(), options, error);
    ASSERT_NE(orvo_, nullptr) << error;
  }

  TemporaryFolder folder_;
  std::unique_ptr<VirtualScreen> screen_;
  std::unique_ptr<PrivateSoundServer> server_;
  std::unique_ptr<RunningOrvo> orvo_;
};

TEST_F(InstalledProgram, RecordsWithItsModulesAndItsKeeper) {
  ASSERT_NO_FATAL_FAILURE(startProgram({}));
  ASSERT_TRUE(screen_->pressKey("r"));
  EXPECT_TRUE(orvo_->waitUntilRecorded(4096));
  EXPECT_TRUE(eventually([&] { return orvo_->keeperPid() != 0; }));
  const auto keeper =
      std::filesystem::read_symlink("/proc/" + std::to_string(orvo_->keeperPid()) + "/exe");
  EXPECT_EQ(keeper.string(), at(ORVO_INSTALLED_LIBRARIES "/orvo/orvo-keeper"));
}

TEST_F(InstalledProgram, WithoutItsKeeperItRecordsAndQuitsAllTheSame) {
  const std::string keeper = at(ORVO_INSTALLED_LIBRARIES "/orvo/orvo-keeper");
  std::filesystem::rename(keeper, keeper + " elsewhere");  // the installation is the suite's
  ASSERT_NO_FATAL_FAILURE(startProgram({}));
  ASSERT_TRUE(screen_->pressKey("r"));
  EXPECT_TRUE(orvo_->waitUntilRecorded(4096));
  EXPECT_EQ(orvo_->keeperPid(), 0);
  const std::string data = orvo_->dataFolder();
  EXPECT_FALSE(std::filesystem::exists(data + "/orvo"));
  ASSERT_TRUE(screen_->pressKey("ctrl+q"));
  std::vector<VirtualScreen::Window> question;
  ASSERT_TRUE(eventually([&] {
    question = screen_->windowsOf(orvo_->pid(), "Orvo");
    std::erase_if(question, [&](const auto& each) { return screen_->titleOf(each) != "Orvo"; });
    return question.size() == 1;
  }));
  ASSERT_TRUE(screen_->activate(question.front()));
  ASSERT_TRUE(screen_->pressKey("Tab") && screen_->pressKey("space"));  // Don't Save
  EXPECT_EQ(orvo_->process().waitForExit(), (ExitStatus{0, 0}));
  EXPECT_FALSE(std::filesystem::exists(data + "/orvo"));
  std::filesystem::rename(keeper + " elsewhere", keeper);
}

// The desktop opens pages with xdg-open; one of the test's own writes down what it should open.
TEST_F(InstalledProgram, HelpKeyOpensThePageOfTheLanguage) {
  const std::string opener = folder_.file("xdg-open");
  std::ofstream(opener) << "#!/bin/sh\necho \"$1\" >" << folder_.file("new") << "\nmv "
                        << folder_.file("new") << " " << folder_.file("opened") << "\n";
  ASSERT_EQ(chmod(opener.c_str(), 0755), 0);
  RunningOrvo::Options options;
  options.wrapper = {"env", "LANGUAGE=ja", "PATH=" + folder_.path() + ":/usr/bin:/bin"};
  ASSERT_NO_FATAL_FAILURE(startProgram(options));
  ASSERT_TRUE(screen_->pressKey("F1"));
  ASSERT_TRUE(eventually([&] { return std::filesystem::exists(folder_.file("opened")); }));
  std::string address;
  std::getline(std::ifstream(folder_.file("opened")), address);
  EXPECT_THAT(address, testing::StartsWith("file://"));
  EXPECT_THAT(address, testing::EndsWith("/moved%20here/share/orvo/help/ja/index.html"));
}

}  // namespace
