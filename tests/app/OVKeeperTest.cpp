#include "app/OVKeeper.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "support/TemporaryFolder.h"

namespace {

namespace fs = std::filesystem;

std::string pathFor(const std::string& folder) {
  return OVKeeper::programPath(QString::fromStdString(folder));
}

TEST(OVKeeperTest, PathIsAbsoluteEvenWhereThereIsNoKeeper) {
  const support::TemporaryFolder folder;
  const std::string path = pathFor(folder.makeFolder("bin"));
  EXPECT_TRUE(path.starts_with(folder.path() + "/lib")) << path;
  EXPECT_TRUE(path.ends_with("/orvo/orvo-keeper")) << path;
}

TEST(OVKeeperTest, KeeperOfTheBuildTreeIsFound) {
  const support::TemporaryFolder folder;
  fs::create_directories(folder.file("src/app"));
  fs::create_directories(folder.file("lib/orvo"));
  const std::string keeper = folder.file("lib/orvo/orvo-keeper");
  std::ofstream(keeper) << "#!/bin/sh\n";
  EXPECT_NE(pathFor(folder.file("src/app")), keeper) << "it is no program";
  fs::permissions(keeper, fs::perms::owner_all);
  EXPECT_EQ(pathFor(folder.file("src/app")), keeper);
}

}  // namespace
