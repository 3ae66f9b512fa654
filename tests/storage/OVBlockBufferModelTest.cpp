#include <gtest/gtest.h>

#include "storage/BlockBufferPair.h"
#include "storage/RandomBlockSteps.h"

namespace {

using support::BlockBufferPair;
using support::BlockSteps;

class OVBlockBufferModelTest : public testing::TestWithParam<BlockSteps> {};

TEST_P(OVBlockBufferModelTest, DoesTheSameThroughEverySequence) {
  const BlockSteps& steps = GetParam();
  const auto draw = [&steps](std::mt19937_64& random, const BlockBufferPair& pair) {
    return support::drawStep(steps, random, pair.model());
  };
  EXPECT_TRUE(modeltest::holds<BlockBufferPair>(steps.sequences, steps.operations, draw));
}

INSTANTIATE_TEST_SUITE_P(Shapes, OVBlockBufferModelTest, support::allBlockSteps(),
                         [](const auto& steps) { return support::nameOfSteps(steps); });

}  // namespace
