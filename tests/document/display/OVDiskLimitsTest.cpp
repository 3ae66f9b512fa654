#include "document/display/OVDiskLimits.h"

#include <vector>

#include <gtest/gtest.h>

namespace {

constexpr double kMinute = 60.0;

/// What is told as the time falls, or rises, through these minutes.
std::vector<int> told(OVDiskLimits& limits, const std::vector<double>& minutes) {
  std::vector<int> result;
  for (const double left : minutes) {
    result.push_back(limits.reached(left * kMinute).value_or(0));
  }
  return result;
}

TEST(OVDiskLimitsTest, EveryLimitIsToldOnceAsTheTimeFallsToIt) {
  OVDiskLimits limits;
  EXPECT_EQ(told(limits, {600, 31, 30, 29, 11, 10, 9, 5.1, 5, 4, 1.1, 1, 0.5, 0}),
            (std::vector<int>{0, 0, 30, 0, 0, 10, 0, 0, 5, 0, 0, 1, 0, 0}));
}

TEST(OVDiskLimitsTest, OnlyTheLowestOfSeveralIsTold) {
  OVDiskLimits limits;
  EXPECT_EQ(told(limits, {3, 2, 1}), (std::vector<int>{5, 0, 1}));
  OVDiskLimits atOnce;
  EXPECT_EQ(told(atOnce, {0.3, 0.2}), (std::vector<int>{1, 0}));
}

TEST(OVDiskLimitsTest, IsToldAgainWhenSpaceCameBackAndWent) {
  OVDiskLimits limits;
  EXPECT_EQ(told(limits, {9, 60, 31, 29, 9}), (std::vector<int>{10, 0, 0, 30, 10}));
}

TEST(OVDiskLimitsTest, SpaceThatVariesALittleRepeatsNothing) {
  OVDiskLimits limits;
  EXPECT_EQ(told(limits, {30, 32, 29.9, 31, 29.8}), (std::vector<int>{30, 0, 0, 0, 0}));
  EXPECT_EQ(told(limits, {1, 1.9, 0.9}), (std::vector<int>{1, 0, 0}));
}

TEST(OVDiskLimitsTest, TheLastMinuteLastsUntilSpaceIsClearlyThere) {
  OVDiskLimits limits;
  EXPECT_FALSE(limits.isLowest());
  static_cast<void>(told(limits, {4}));
  EXPECT_FALSE(limits.isLowest());
  static_cast<void>(told(limits, {0.9, 1.5}));
  EXPECT_TRUE(limits.isLowest());
  static_cast<void>(told(limits, {3}));
  EXPECT_FALSE(limits.isLowest());
}

}  // namespace
