#include "platform/files/ContinuedTransfer.h"

#include <gtest/gtest.h>

#include <deque>
#include <utility>
#include <vector>

namespace {

using platform::continuedTransfer;
using platform::NothingMoved;

struct Answer {
  long moved;
  int error = 0;
};

// Scripted results of the steps, with a record of the requests.
struct ScriptedSteps {
  std::deque<Answer> answers;
  std::vector<std::pair<std::uint64_t, std::uint64_t>> asked;

  auto step() {
    return [this](std::uint64_t done, std::uint64_t wanted) {
      asked.emplace_back(done, wanted);
      const Answer answer = answers.front();
      answers.pop_front();
      errno = answer.error;
      return answer.moved;
    };
  }
};

using Asked = std::vector<std::pair<std::uint64_t, std::uint64_t>>;

TEST(ContinuedTransferTest, NoBytesTakeNoStep) {
  ScriptedSteps steps;
  const auto result = continuedTransfer(0, NothingMoved::failure, steps.step());
  EXPECT_EQ(result.byteCount, 0U);
  EXPECT_EQ(result.error, 0);
  EXPECT_TRUE(steps.asked.empty());
}

TEST(ContinuedTransferTest, ShortStepsAreContinuedWhereTheyEnded) {
  ScriptedSteps steps{{{40}, {1}, {59}}, {}};
  const auto result = continuedTransfer(100, NothingMoved::failure, steps.step());
  EXPECT_EQ(result.byteCount, 100U);
  EXPECT_EQ(result.error, 0);
  EXPECT_EQ(steps.asked, (Asked{{0, 100}, {40, 60}, {41, 59}}));
}

TEST(ContinuedTransferTest, InterruptedStepsAreRepeated) {
  ScriptedSteps steps{{{-1, EINTR}, {10}, {-1, EINTR}, {-1, EINTR}, {20}}, {}};
  const auto result = continuedTransfer(30, NothingMoved::failure, steps.step());
  EXPECT_EQ(result.byteCount, 30U);
  EXPECT_EQ(result.error, 0);
  EXPECT_EQ(steps.asked, (Asked{{0, 30}, {0, 30}, {10, 20}, {10, 20}, {10, 20}}));
}

TEST(ContinuedTransferTest, AFailureEndsItAndKeepsWhatWasMoved) {
  ScriptedSteps steps{{{12}, {-1, ENOSPC}}, {}};
  const auto result = continuedTransfer(30, NothingMoved::failure, steps.step());
  EXPECT_EQ(result.byteCount, 12U);
  EXPECT_EQ(result.error, ENOSPC);
}

TEST(ContinuedTransferTest, AReadThatMovesNothingHasMetTheEnd) {
  ScriptedSteps steps{{{12}, {0, EIO}}, {}};
  const auto result = continuedTransfer(30, NothingMoved::endOfFile, steps.step());
  EXPECT_EQ(result.byteCount, 12U);
  EXPECT_EQ(result.error, 0);
}

TEST(ContinuedTransferTest, AWriteThatMovesNothingFailsInsteadOfLooping) {
  ScriptedSteps steps{{{0}}, {}};
  const auto result = continuedTransfer(30, NothingMoved::failure, steps.step());
  EXPECT_EQ(result.byteCount, 0U);
  EXPECT_EQ(result.error, EIO);
}

TEST(ContinuedTransferTest, NoStepIsAskedForMoreThanSystemsMoveAtOnce) {
  constexpr auto kStep = platform::kMaxTransferStep;
  ScriptedSteps steps{{{static_cast<long>(kStep)}, {5}}, {}};
  const auto result = continuedTransfer(kStep + 5, NothingMoved::failure, steps.step());
  EXPECT_EQ(result.byteCount, kStep + 5);
  EXPECT_EQ(steps.asked, (Asked{{0, kStep}, {kStep, 5}}));
}

}  // namespace
