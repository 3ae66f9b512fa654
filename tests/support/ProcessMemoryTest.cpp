#include "support/ProcessMemory.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>

namespace support {
namespace {

constexpr std::uint64_t kMegabyte = std::uint64_t{1} << 20;
constexpr std::uint64_t kMuch = 64 * kMegabyte;

void touchMuch() {
  const auto bytes = std::make_unique<char[]>(kMuch);
  char* volatile const touched = bytes.get();  // keeps the compiler from removing the writes
  std::memset(touched, 1, kMuch);
}

TEST(ProcessMemoryTest, CountsWhatWasGivenBackMeanwhile) {
  const MemoryGrowth growth;
  if (!growth.knowsHighest()) {
    GTEST_SKIP() << "this system does not let the highest be forgotten";
  }
  touchMuch();
  EXPECT_GE(growth.atMost(), kMuch - kMegabyte);
}

TEST(ProcessMemoryTest, ForgetsWhatCameBeforeIt) {
  touchMuch();
  const MemoryGrowth growth;
  EXPECT_LT(growth.atMost(), kMegabyte);
}

TEST(ProcessMemoryTest, CountsWhatIsStillHeld) {
  const MemoryGrowth growth;
  const std::string held(kMuch, 'x');
  EXPECT_GE(growth.atMost(), held.size() - kMegabyte);
}

}  // namespace
}  // namespace support
