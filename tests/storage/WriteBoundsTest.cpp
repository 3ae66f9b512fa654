#include "storage/WriteBounds.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <limits>

#include "support/fakes/RecordingServices.h"

namespace {

constexpr auto kHighest = std::numeric_limits<std::uint64_t>::max();
constexpr auto kMaxWrite = std::numeric_limits<std::uint32_t>::max();

TEST(WriteBounds, AWriteMayEndAtTheHighestAddress) {
  const support::InstalledRecordingServices services;
  EXPECT_TRUE(refuseIfPastAddressSpace(0, 0));
  EXPECT_TRUE(refuseIfPastAddressSpace(kHighest, 0));
  EXPECT_TRUE(refuseIfPastAddressSpace(kHighest - 16, 16));
  EXPECT_TRUE(refuseIfPastAddressSpace(kHighest - kMaxWrite, kMaxWrite));
  EXPECT_THAT(services->consoleLines(), testing::IsEmpty());
}

TEST(WriteBounds, AWriteThatWouldPassItIsToldOnTheConsole) {
  const support::InstalledRecordingServices services;
  EXPECT_FALSE(refuseIfPastAddressSpace(kHighest - 15, 16));
  EXPECT_FALSE(refuseIfPastAddressSpace(kHighest, kMaxWrite));
  EXPECT_THAT(services->consoleLines(),
              testing::ElementsAre(
                  "refused to write 16 bytes at 18446744073709551600: past the highest address",
                  "refused to write 4294967295 bytes at 18446744073709551615: past the highest "
                  "address"));
}

}  // namespace
