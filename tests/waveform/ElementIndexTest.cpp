#include "waveform/ElementIndex.h"

#include <limits>

#include <gtest/gtest.h>

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

TEST(ElementIndexTest, AFractionIsCutOffToAnElement) {
  EXPECT_EQ(elementIndex(0.0, 10), 0U);
  EXPECT_EQ(elementIndex(0.0999, 10), 0U);
  EXPECT_EQ(elementIndex(0.5, 10), 5U);
  EXPECT_EQ(elementIndex(0.5, 11), 5U);
}

TEST(ElementIndexTest, TheEndIsTheLastElement) {
  EXPECT_EQ(elementIndex(1.0, 10), 9U);
  EXPECT_EQ(elementIndex(1.0, 1), 0U);
}

TEST(ElementIndexTest, AFractionBeyondTheEndsIsClamped) {
  EXPECT_EQ(elementIndex(-0.1, 10), 0U);
  EXPECT_EQ(elementIndex(-kInfinity, 10), 0U);
  EXPECT_EQ(elementIndex(1.1, 10), 9U);
  EXPECT_EQ(elementIndex(kInfinity, 10), 9U);
}

TEST(ElementIndexTest, WhatIsNoNumberIsTheFirstElement) {
  EXPECT_EQ(elementIndex(std::numeric_limits<double>::quiet_NaN(), 10), 0U);
}

}  // namespace
