#include "platform/files/PosixFile.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstddef>
#include <limits>
#include <numeric>
#include <vector>

#include "platform/files/TemporaryFiles.h"

namespace {

using platform::PosixFile;

std::vector<unsigned char> counting(std::size_t count) {
  std::vector<unsigned char> bytes(count);
  std::iota(bytes.begin(), bytes.end(), static_cast<unsigned char>(1));
  return bytes;
}

class PosixFileTest : public testing::Test {
 protected:
  void SetUp() override {
    const auto files = platform::TemporaryFiles::whenNoneIsInstalled();
    auto created = files->createUnlinked(files->directory() + "orvoXXXXXX");
    ASSERT_TRUE(created);
    file_ = std::move(created->file);
  }

  platform::File& file() { return *file_; }

  std::unique_ptr<platform::File> file_;
};

TEST_F(PosixFileTest, GivesBackWhatWasWrittenAtEachPosition) {
  const auto bytes = counting(1000);
  EXPECT_EQ(file().writeAt(bytes.data(), 600, 400).byteCount, 600U);
  EXPECT_EQ(file().writeAt(bytes.data(), 400, 0).byteCount, 400U);

  std::vector<unsigned char> read(1000);
  const auto result = file().readAt(read.data(), 1000, 0);
  EXPECT_EQ(result.byteCount, 1000U);
  EXPECT_EQ(result.error, 0);
  EXPECT_TRUE(std::equal(read.begin(), read.begin() + 400, bytes.begin()));
  EXPECT_TRUE(std::equal(read.begin() + 400, read.end(), bytes.begin()));
}

TEST_F(PosixFileTest, ReadsShortAtItsEndWithoutAnError) {
  const auto bytes = counting(100);
  ASSERT_EQ(file().writeAt(bytes.data(), 100, 0).byteCount, 100U);
  std::vector<unsigned char> read(100);
  const auto result = file().readAt(read.data(), 100, 60);
  EXPECT_EQ(result.byteCount, 40U);
  EXPECT_EQ(result.error, 0);
  EXPECT_EQ(file().readAt(read.data(), 100, 100).byteCount, 0U);
  EXPECT_EQ(file().readAt(read.data(), 100, 5000).byteCount, 0U);
}

TEST_F(PosixFileTest, HoldsZerosWhereNothingWasWritten) {
  const auto bytes = counting(10);
  ASSERT_EQ(file().writeAt(bytes.data(), 10, 50).byteCount, 10U);
  std::vector<unsigned char> read(50, 0xff);
  EXPECT_EQ(file().readAt(read.data(), 50, 0).byteCount, 50U);
  EXPECT_EQ(read, std::vector<unsigned char>(50, 0));
}

TEST_F(PosixFileTest, ReadsOffsetsThatTheSystemCannotExpressAsItsEnd) {
  unsigned char byte = 7;
  for (const std::uint64_t offset :
       {std::uint64_t{1} << 63, std::numeric_limits<std::uint64_t>::max()}) {
    const auto result = file().readAt(&byte, 1, offset);
    EXPECT_EQ(result.byteCount, 0U);
    EXPECT_EQ(result.error, 0);
  }
  EXPECT_EQ(byte, 7);
}

TEST_F(PosixFileTest, RefusesToWriteAtOffsetsThatTheSystemCannotExpress) {
  const unsigned char byte = 7;
  EXPECT_EQ(file().writeAt(&byte, 1, std::uint64_t{1} << 63).error, EFBIG);
  EXPECT_EQ(file().writeAt(&byte, 2, (std::uint64_t{1} << 63) - 2).error, EFBIG);
  EXPECT_EQ(file().readAt(nullptr, 0, 0).byteCount, 0U);
}

TEST_F(PosixFileTest, IsAsLongAsTheHighestEndWritten) {
  EXPECT_EQ(file().size(), 0U);
  const auto bytes = counting(100);
  ASSERT_EQ(file().writeAt(bytes.data(), 100, 900).byteCount, 100U);
  ASSERT_EQ(file().writeAt(bytes.data(), 100, 0).byteCount, 100U);
  EXPECT_EQ(file().size(), 1000U);
}

TEST_F(PosixFileTest, CutsWhatLiesBehindItsNewEnd) {
  const auto bytes = counting(100);
  ASSERT_EQ(file().writeAt(bytes.data(), 100, 0).byteCount, 100U);
  EXPECT_EQ(file().setSize(40), 0);
  EXPECT_EQ(file().size(), 40U);
  EXPECT_EQ(file().setSize(60), 0);
  std::vector<unsigned char> read(100, 0xff);
  EXPECT_EQ(file().readAt(read.data(), 100, 0).byteCount, 60U);
  EXPECT_TRUE(std::equal(read.begin(), read.begin() + 40, bytes.begin()));
  EXPECT_EQ(std::vector(read.begin() + 40, read.begin() + 60), std::vector<unsigned char>(20, 0))
      << "what was cut does not come back";
}

TEST_F(PosixFileTest, CannotEndWhereTheSystemCannotExpressIt) {
  const unsigned char byte = 7;
  ASSERT_EQ(file().writeAt(&byte, 1, 0).byteCount, 1U);
  EXPECT_EQ(file().setSize(std::uint64_t{1} << 63), EFBIG);
  EXPECT_EQ(file().size(), 1U);
}

// A limit on file sizes simulates a disk that fills up during a write.
TEST_F(PosixFileTest, TellsHowMuchOfAWriteWasTakenAndWhyNotMore) {
  struct rlimit before = {};
  ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
  auto* const handler = std::signal(SIGXFSZ, SIG_IGN);
  struct rlimit limited = before;
  limited.rlim_cur = 4096;
  ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &limited), 0);

  const auto bytes = counting(10000);
  const auto result = file().writeAt(bytes.data(), bytes.size(), 0);
  const auto beyond = file().writeAt(bytes.data(), 1, 5000);

  ::setrlimit(RLIMIT_FSIZE, &before);
  std::signal(SIGXFSZ, handler);
  EXPECT_EQ(result.byteCount, 4096U);
  EXPECT_EQ(result.error, EFBIG);
  EXPECT_EQ(beyond.byteCount, 0U);
  EXPECT_EQ(beyond.error, EFBIG);
}

TEST(PosixFileBrokenTest, ReportsTheSystemsError) {
  PosixFile file(::open("/dev/null", O_RDONLY | O_CLOEXEC));
  const unsigned char byte = 1;
  const auto result = file.writeAt(&byte, 1, 0);
  EXPECT_EQ(result.byteCount, 0U);
  EXPECT_EQ(result.error, EBADF);
}

TEST(PosixFileBrokenTest, ReportsThatItsSizeCannotBeSet) {
  PosixFile file(::open("/dev/null", O_RDONLY | O_CLOEXEC));
  EXPECT_EQ(file.setSize(10), EINVAL);
  EXPECT_EQ(file.size(), 0U);
}

TEST(PosixFileBrokenTest, ReportsAFailedRead) {
  PosixFile directory(::open("/", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  unsigned char byte = 1;
  EXPECT_EQ(directory.readAt(&byte, 1, 0).error, EISDIR);
}

}  // namespace
