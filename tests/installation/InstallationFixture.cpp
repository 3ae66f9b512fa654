#include "installation/InstallationFixture.h"

#include <filesystem>

namespace fs = std::filesystem;

void InstallationFixture::SetUpTestSuite() {
  folder_ = new support::TemporaryFolder;
  const support::Finished installed =
      run({ORVO_CMAKE, "--install", ORVO_BUILD, "--prefix", folder_->file("first")});
  EXPECT_TRUE(installed.status.succeeded()) << installed.error;
  if (fs::exists(folder_->file("first"))) {
    fs::rename(folder_->file("first"), folder_->file("moved here"));
  }
}

void InstallationFixture::TearDownTestSuite() {
  delete folder_;
  folder_ = nullptr;
}

void InstallationFixture::SetUp() {
  ASSERT_TRUE(fs::exists(program())) << "nothing was installed";
}

std::string InstallationFixture::at(const std::string& relative) {
  return folder_->file("moved here/" + relative);
}

support::Finished InstallationFixture::run(const std::vector<std::string>& command,
                                           const support::Environment& more) {
  return support::runToEnd(command, support::with(support::cleanEnvironment(), more));
}

std::string InstallationFixture::complaintsOf(const std::vector<std::string>& command) {
  const support::Finished result = run(command);
  EXPECT_TRUE(result.status.succeeded()) << command.front() << " refuses it";
  return result.output + result.error;
}
