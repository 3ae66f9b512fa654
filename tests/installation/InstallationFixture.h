#pragma once

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/TemporaryFolder.h"
#include "support/programs/ChildProcess.h"

/// Orvo installed to a prefix and moved to another one, once for all tests of the suite.
///
/// Threads: the test's own.
class InstallationFixture : public testing::Test {
 protected:
  static void SetUpTestSuite();
  static void TearDownTestSuite();

  void SetUp() override;

  /// The path of an installed file.
  [[nodiscard]] static std::string at(const std::string& relative);
  /// Of a file in the data directory.
  [[nodiscard]] static std::string share(const std::string& relative) {
    return at("share/" + relative);
  }
  [[nodiscard]] static std::string program() { return at(ORVO_INSTALLED_BINARIES "/orvo"); }

  /// Runs a program, with further variables of the environment.
  [[nodiscard]] static support::Finished run(const std::vector<std::string>& command,
                                             const support::Environment& more = {});
  /// Output and errors of a checking program; a failure of the test if it is missing or refuses.
  [[nodiscard]] static std::string complaintsOf(const std::vector<std::string>& command);

 private:
  static inline support::TemporaryFolder* folder_ = nullptr;
};
