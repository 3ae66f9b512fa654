#include "storage/BufferTransfer.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <limits>
#include <memory>
#include <optional>
#include <string>

#include "support/TemporaryFolder.h"
#include "support/fakes/FailingTemporaryFiles.h"
#include "support/fakes/RecordingServices.h"

namespace {

constexpr auto kHighest = std::numeric_limits<std::uint64_t>::max();
constexpr auto kMaxWrite = std::numeric_limits<std::uint32_t>::max();

class ATemporaryFileOfABuffer : public testing::Test {
 protected:
  std::string read(std::uint64_t count, std::uint64_t offset, int& error) {
    std::string bytes(count, ' ');
    const auto whole = readWhole(*file_, bytes.data(), count, offset);
    error = whole.error;
    bytes.resize(whole.byteCount);
    return bytes;
  }

  support::FailingTemporaryFiles files_;
  std::unique_ptr<platform::File> file_ =
      std::move(files_.createUnlinked("/nowhere/aXXXXXX")->file);
};

TEST_F(ATemporaryFileOfABuffer, IsReadWholeInShortSteps) {
  ASSERT_EQ(file_->writeAt("0123456789", 10, 0).byteCount, 10U);
  files_.shortenReads(3);
  int error = 0;
  EXPECT_EQ(read(8, 1, error), "12345678");
  EXPECT_EQ(error, 0);
  EXPECT_EQ(files_.reads(), 3U);
}

TEST_F(ATemporaryFileOfABuffer, IsReadToItsEndAndNoFurther) {
  ASSERT_EQ(file_->writeAt("0123456789", 10, 0).byteCount, 10U);
  int error = 0;
  EXPECT_EQ(read(8, 6, error), "6789");
  EXPECT_EQ(read(8, 10, error), "");
  EXPECT_EQ(error, 0);
}

TEST_F(ATemporaryFileOfABuffer, TellsWhyAReadFailed) {
  ASSERT_EQ(file_->writeAt("0123456789", 10, 0).byteCount, 10U);
  files_.failReads(EIO);
  int error = 0;
  EXPECT_EQ(read(8, 0, error), "");
  EXPECT_EQ(error, EIO);
}

TEST(AnErrorOfATransfer, IsNoneWhereAllBytesWereMoved) {
  EXPECT_EQ(errorOfTransfer({.byteCount = 8, .error = 0}, 8), 0);
  EXPECT_EQ(errorOfTransfer({.byteCount = 8, .error = EINTR}, 8), 0);
  EXPECT_EQ(errorOfTransfer({.byteCount = 0, .error = 0}, 0), 0);
}

TEST(AnErrorOfATransfer, IsTheReasonOrAFailureOfTheMedium) {
  EXPECT_EQ(errorOfTransfer({.byteCount = 7, .error = ENOSPC}, 8), ENOSPC);
  EXPECT_EQ(errorOfTransfer({.byteCount = 7, .error = 0}, 8), EIO);
}

TEST(ATemporaryFileThatCannotBeMade, IsToldWithItsPath) {
  const support::InstalledRecordingServices services;
  alertThatNoTemporaryFileOpens("/nowhere/a");
  EXPECT_THAT(services->alerts(),
              testing::ElementsAre(support::RecordedAlert{
                  "couldn't open temp file for writing!",
                  "The file /nowhere/a couldn't be opened for writing. This shouldn't happen! "
                  "Check your permissions."}));
}

TEST(ATemporaryFileOnADisk, IsDeletedByItsPathAndNoneIsIgnored) {
  const support::TemporaryFolder folder;
  const std::string path = folder.file("take");
  std::ofstream(path) << "x";
  deleteTemporaryFile(path);
  EXPECT_FALSE(std::filesystem::exists(path));
  deleteTemporaryFile(path);
  deleteTemporaryFile(std::nullopt);
}

TEST(AWrite, MayEndAtTheHighestAddress) {
  const support::InstalledRecordingServices services;
  EXPECT_FALSE(refuseIfPastAddressSpace(0, 0));
  EXPECT_FALSE(refuseIfPastAddressSpace(kHighest, 0));
  EXPECT_FALSE(refuseIfPastAddressSpace(kHighest - 16, 16));
  EXPECT_FALSE(refuseIfPastAddressSpace(kHighest - kMaxWrite, kMaxWrite));
  EXPECT_THAT(services->consoleLines(), testing::IsEmpty());
}

TEST(AWrite, ThatWouldPassTheHighestAddressIsRefusedOnTheConsole) {
  const support::InstalledRecordingServices services;
  EXPECT_TRUE(refuseIfPastAddressSpace(kHighest - 15, 16));
  EXPECT_TRUE(refuseIfPastAddressSpace(kHighest, kMaxWrite));
  EXPECT_THAT(services->consoleLines(),
              testing::ElementsAre(
                  "refused to write 16 bytes at 18446744073709551600: past the highest address",
                  "refused to write 4294967295 bytes at 18446744073709551615: past the highest "
                  "address"));
}

}  // namespace
