#include "platform/base/MemoryReserve.h"

#include <new>

#include <gtest/gtest.h>

#include "support/Sanitizers.h"

using platform::MemoryReserve;

namespace {

// What an allocation does that fails.
void runOut() {
  std::get_new_handler()();
}

TEST(MemoryReserveTest, AnAllocationThatFailsGetsAPieceAndMayBeTriedAgain) {
  const MemoryReserve reserve;
  const unsigned before = MemoryReserve::shortages();
  EXPECT_NO_THROW(runOut());
  EXPECT_EQ(MemoryReserve::shortages(), before + 1);
}

TEST(MemoryReserveTest, WhenAllIsGivenAwayTheNextOneFailsAsUsual) {
  const MemoryReserve reserve;
  for (std::size_t piece = 0; piece < MemoryReserve::kPieces; ++piece) {
    EXPECT_NO_THROW(runOut());
  }
  const unsigned before = MemoryReserve::shortages();
  EXPECT_THROW(runOut(), std::bad_alloc);
  EXPECT_EQ(MemoryReserve::shortages(), before);
  EXPECT_NO_THROW(runOut()) << "of another thread: there is memory again";
}

TEST(MemoryReserveTest, MoreThanThereCanBeFailsAndLeavesTheReserveToTheOthers) {
  if (support::kAnySanitizer) {
    GTEST_SKIP() << "the sanitizer's own operator ends the program";
  }
  const MemoryReserve reserve;
  volatile std::size_t tooMuch = std::size_t{1} << 60;  // unknown to the compiler
  EXPECT_THROW(::operator delete(::operator new(tooMuch)), std::bad_alloc);
  for (std::size_t piece = 0; piece < MemoryReserve::kPieces; ++piece) {
    EXPECT_NO_THROW(runOut());
  }
}

TEST(MemoryReserveTest, WhatIsRestoredIsGivenAwayAgain) {
  const MemoryReserve reserve;
  for (int round = 0; round < 3; ++round) {
    for (std::size_t piece = 0; piece < MemoryReserve::kPieces; ++piece) {
      EXPECT_NO_THROW(runOut());
    }
    EXPECT_TRUE(MemoryReserve::restore());
  }
}

TEST(MemoryReserveTest, WithoutOneAllocationsFailAsBefore) {
  const std::new_handler before = std::get_new_handler();
  { const MemoryReserve reserve; }
  EXPECT_EQ(std::get_new_handler(), before);
  EXPECT_TRUE(MemoryReserve::restore());
}

}  // namespace
