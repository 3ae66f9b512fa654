#include "platform/files/SharedMemory.h"

#include <gtest/gtest.h>

#include <cstring>

#include <sys/stat.h>
#include <unistd.h>

#include "platform/files/PosixFile.h"

namespace platform {
namespace {

constexpr std::size_t kSize = std::size_t{1} << 20;

std::unique_ptr<SharedMemory> made() {
  auto memory = SharedMemory::create("test", kSize);
  return memory ? *std::move(memory) : nullptr;
}

std::uint64_t bytesInUse(const SharedMemory& memory) {
  struct stat information = {};
  return ::fstat(memory.descriptor(), &information) == 0
             ? static_cast<std::uint64_t>(information.st_blocks) * 512
             : 0;
}

TEST(SharedMemoryTest, WhatIsStoredIsReadThroughTheDescriptor) {
  const auto memory = made();
  ASSERT_NE(memory, nullptr);
  ASSERT_EQ(memory->reserve(4096, 4096), 0);
  std::memcpy(memory->bytes() + 4096, "text", 5);
  PosixFile other(::dup(memory->descriptor()));
  char text[5] = {};
  EXPECT_EQ(other.readAt(text, sizeof text, 4096).byteCount, 5U);
  EXPECT_STREQ(text, "text");
  EXPECT_EQ(other.size(), kSize);
}

TEST(SharedMemoryTest, PagesTakeSpaceFromTheirReservationToTheirRelease) {
  const auto memory = made();
  ASSERT_NE(memory, nullptr);
  EXPECT_EQ(bytesInUse(*memory), 0U);
  ASSERT_EQ(memory->reserve(0, kSize / 2), 0);
  EXPECT_EQ(bytesInUse(*memory), kSize / 2);
  memory->bytes()[5] = std::byte{7};
  memory->release(0, kSize / 4);
  EXPECT_EQ(bytesInUse(*memory), kSize / 4);
  EXPECT_EQ(memory->bytes()[5], std::byte{0});
}

TEST(SharedMemoryTest, ReservingAgainKeepsWhatIsThere) {
  const auto memory = made();
  ASSERT_NE(memory, nullptr);
  ASSERT_EQ(memory->reserve(0, 4096), 0);
  memory->bytes()[5] = std::byte{7};
  ASSERT_EQ(memory->reserve(0, 8192), 0);
  EXPECT_EQ(memory->bytes()[5], std::byte{7});
}

TEST(SharedMemoryTest, NobodyChangesItsSize) {
  const auto memory = made();
  ASSERT_NE(memory, nullptr);
  EXPECT_NE(::ftruncate(memory->descriptor(), 0), 0);
  EXPECT_NE(memory->reserve(kSize, 4096), 0);
}

}  // namespace
}  // namespace platform
