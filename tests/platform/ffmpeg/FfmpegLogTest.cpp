#include "platform/ffmpeg/FfmpegLog.h"

#include <string>
#include <thread>

#include <gmock/gmock.h>

#include "support/fakes/RecordingServices.h"

#include "platform/base/ApplicationServices.h"
#include "platform/ffmpeg/Ffmpeg.h"

namespace platform {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class FfmpegLogTest : public testing::Test {
 protected:
  void SetUp() override { FfmpegLog::install(ConsoleLog); }

  support::InstalledRecordingServices services_;
  FfmpegLog::Budget budget_;
};

TEST_F(FfmpegLogTest, LinesThatComeInPiecesAreOneLineEach) {
  const FfmpegLog::Scope scope(budget_);
  av_log(nullptr, AV_LOG_ERROR, "first ");
  av_log(nullptr, AV_LOG_WARNING, "line\nsecond\nthi");
  EXPECT_THAT(services_->consoleLines(), ElementsAre("first line", "second"));
  av_log(nullptr, AV_LOG_ERROR, "rd\n");
  EXPECT_THAT(services_->consoleLines(), ElementsAre("first line", "second", "third"));
}

TEST_F(FfmpegLogTest, WhatIsNoWarningIsLeftOut) {
  const FfmpegLog::Scope scope(budget_);
  av_log(nullptr, AV_LOG_INFO, "by the way\n");
  av_log(nullptr, AV_LOG_DEBUG, "details\n");
  EXPECT_THAT(services_->consoleLines(), IsEmpty());
}

TEST_F(FfmpegLogTest, WhatIsLoggedOutsideOfAScopeGoesNowhere) {
  { const FfmpegLog::Scope scope(budget_); }
  av_log(nullptr, AV_LOG_ERROR, "lost\n");
  EXPECT_THAT(services_->consoleLines(), IsEmpty());
}

TEST_F(FfmpegLogTest, AFloodIsCutOffWithALineThatSaysSo) {
  for (int round = 0; round < 3; ++round) {
    const FfmpegLog::Scope scope(budget_);
    for (int i = 0; i < 1000; ++i) {
      av_log(nullptr, AV_LOG_ERROR, "broken at %d\n", i + 1000 * round);
    }
  }
  const auto lines = services_->consoleLines();
  ASSERT_THAT(lines, SizeIs(FfmpegLog::Budget::kLines + 1));
  EXPECT_EQ(lines.front(), "broken at 0");
  EXPECT_EQ(lines.back(), "further messages about this file are left out");
}

TEST_F(FfmpegLogTest, ARepeatedLineComesOnce) {
  const FfmpegLog::Scope scope(budget_);
  for (int i = 0; i < 1000; ++i) {
    av_log(nullptr, AV_LOG_ERROR, "the same\n");
  }
  av_log(nullptr, AV_LOG_ERROR, "another\n");
  EXPECT_THAT(services_->consoleLines(), ElementsAre("the same", "another"));
}

TEST_F(FfmpegLogTest, ALineWithoutAnEndIsBroken) {
  const FfmpegLog::Scope scope(budget_);
  for (int i = 0; i < 5000; ++i) {
    FfmpegLog::append("x" + std::to_string(i));
  }
  EXPECT_GT(services_->consoleLines().size(), 3U);
  EXPECT_LE(services_->consoleLines().size(), 21U);
}

TEST_F(FfmpegLogTest, APercentSignInALineIsNoFormat) {
  const FfmpegLog::Scope scope(budget_);
  av_log(nullptr, AV_LOG_ERROR, "%s\n", "100%s%n");
  EXPECT_THAT(services_->consoleLines(), ElementsAre("100%s%n"));
}

TEST_F(FfmpegLogTest, AScopeHoldsForItsThreadAlone) {
  const FfmpegLog::Scope scope(budget_);
  std::thread([] { av_log(nullptr, AV_LOG_ERROR, "of another file\n"); }).join();
  EXPECT_THAT(services_->consoleLines(), IsEmpty());
}

TEST_F(FfmpegLogTest, AnInnerScopeHasItsOwnBudget) {
  FfmpegLog::Budget inner;
  const FfmpegLog::Scope scope(budget_);
  av_log(nullptr, AV_LOG_ERROR, "unfinished ");
  {
    const FfmpegLog::Scope innerScope(inner);
    av_log(nullptr, AV_LOG_ERROR, "inner\n");
  }
  av_log(nullptr, AV_LOG_ERROR, "outer\n");
  EXPECT_THAT(services_->consoleLines(), ElementsAre("inner", "unfinished outer"));
}

}  // namespace
}  // namespace platform
