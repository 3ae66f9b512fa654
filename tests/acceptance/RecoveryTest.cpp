// The program is killed: its keeper writes the recordings that were not saved.

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <iostream>

#include "acceptance/KilledProgramTest.h"
#include "support/programs/MemoryGroup.h"

using namespace support;

namespace {

namespace fs = std::filesystem;

class Recovery : public KilledProgramTest {
 protected:
  void SetUp() override { ASSERT_NO_FATAL_FAILURE(startWithKeeper()); }
};

TEST_F(Recovery, KilledWhileRecordingLosesNothingThatWasWritten) {
  ASSERT_NO_FATAL_FAILURE(beginRecording());
  ASSERT_NO_FATAL_FAILURE(feed(signalOfSeconds(1.0, 91)));
  ASSERT_NO_FATAL_FAILURE(endBy(SIGKILL));
  ASSERT_EQ(recovered().size(), 1U);
  EXPECT_TRUE(recovered()[0].starts_with("Orvo recording 20")) << recovered()[0];
  EXPECT_TRUE(recovered()[0].ends_with(".caf")) << recovered()[0];
  EXPECT_GT(written().size(), kFramesPerSecond);
  expectAllOf(written(), recoveredAudio());
}

TEST_F(Recovery, OnlyTheUserReadsWhatWasRecovered) {
  ASSERT_NO_FATAL_FAILURE(record(signalOfSeconds(0.3, 92)));
  ASSERT_NO_FATAL_FAILURE(endBy(SIGABRT));
  ASSERT_EQ(recovered().size(), 1U);
  EXPECT_EQ(fs::status(recoveredFolder()).permissions(), fs::perms::owner_all);
  EXPECT_EQ(fs::status(recoveredFolder() + "/" + recovered()[0]).permissions(),
            fs::perms::owner_read | fs::perms::owner_write);
}

TEST_F(Recovery, KilledWhileRecordingOverTheMiddleKeepsWhatIsAroundIt) {
  ASSERT_NO_FATAL_FAILURE(record(signalOfSeconds(2.0, 93)));
  const Samples before = orvo_->recorded();
  ASSERT_TRUE(screen_->pressKey("Return"));  // to the start
  ASSERT_NO_FATAL_FAILURE(beginRecording());
  ASSERT_NO_FATAL_FAILURE(feed(signalOfSeconds(0.3, 94)));
  ASSERT_NO_FATAL_FAILURE(endBy(SIGSEGV));
  const Samples all = written();
  const Samples found = recoveredAudio();
  ASSERT_EQ(found.size(), before.size());
  const auto over = static_cast<std::ptrdiff_t>(all.size() - before.size());
  ASSERT_GT(over, 0);
  // The chunk that was just being written may be missing.
  const auto parted =
      std::mismatch(found.begin(), found.end(),
                    all.begin() + static_cast<std::ptrdiff_t>(before.size()), all.end());
  const auto mapped = parted.first - found.begin();
  EXPECT_GE(mapped, over - static_cast<std::ptrdiff_t>(kChunk));
  EXPECT_TRUE(std::equal(found.begin() + mapped, found.end(), before.begin() + mapped));
}

TEST_F(Recovery, EditsAreRecoveredAsTheyStand) {
  ASSERT_NO_FATAL_FAILURE(record(signalOfSeconds(1.0, 95)));
  const Samples first = orvo_->recorded();
  ASSERT_NO_FATAL_FAILURE(record(signalOfSeconds(0.3, 96)));
  ASSERT_TRUE(screen_->pressKey("ctrl+z"));  // the second recording
  ASSERT_TRUE(screen_->screenshotAtRest(orvo_->window(), folder_.file("undone.png")));
  ASSERT_NO_FATAL_FAILURE(endBy(SIGKILL));
  EXPECT_TRUE(recoveredAudio() == first);
}

TEST_F(Recovery, EveryWindowIsRecovered) {
  ASSERT_NO_FATAL_FAILURE(record(signalOfSeconds(0.3, 97)));
  for (std::uint32_t window = 1; window < 3; ++window) {
    const Window opened = openFurtherWindow();
    ASSERT_FALSE(opened.empty());
    ASSERT_TRUE(screen_->activate(opened));
    ASSERT_TRUE(screen_->pressKey("r"));
    ASSERT_TRUE(orvo_->waitUntilRecorded(1, window));
  }
  ASSERT_NO_FATAL_FAILURE(feed(signalOfSeconds(0.5, 98)));
  ASSERT_NO_FATAL_FAILURE(endBy(SIGKILL));
  ASSERT_EQ(recovered().size(), 3U);
  // The names are those of the times, which may be equal.
  for (std::size_t file = 0; file < 3; ++file) {
    const Samples found = recoveredAudio(file);
    const auto isOf = [&](std::size_t window) {
      const Samples all = written(window);
      return found.size() <= all.size() && all.size() - found.size() <= kChunk &&
             std::equal(found.begin(), found.end(), all.begin());
    };
    EXPECT_EQ(isOf(0) + isOf(1) + isOf(2), 1) << recovered()[file];
  }
}

TEST_F(Recovery, NothingIsRecoveredThatWasSavedOrDiscardedOrNeverChanged) {
  ASSERT_NO_FATAL_FAILURE(record(signalOfSeconds(0.3, 99)));
  ASSERT_NO_FATAL_FAILURE(saveAs(document("saved.wav"), Kind::wav));
  const Window further = openFurtherWindow();
  ASSERT_FALSE(further.empty());
  ASSERT_TRUE(screen_->activate(further));
  ASSERT_TRUE(screen_->pressKey("r"));
  ASSERT_TRUE(orvo_->waitUntilRecorded(1, 1));
  ASSERT_TRUE(screen_->pressKey("r"));
  ASSERT_TRUE(screen_->close(further));
  ASSERT_NO_FATAL_FAILURE(answerSheet(Answer::dontSave));
  ASSERT_TRUE(screen_->waitUntilGone(further));
  ASSERT_FALSE(openFurtherWindow().empty());
  ASSERT_NO_FATAL_FAILURE(endBy(SIGKILL));
  EXPECT_EQ(recovered(), std::vector<std::string>());
}

TEST_F(Recovery, QuitLeavesNoKeeperAndNoFile) {
  const pid_t keeper = orvo_->keeperPid();
  ASSERT_TRUE(screen_->pressKey("ctrl+q"));
  ASSERT_TRUE(orvo_->process().waitForExit());
  EXPECT_TRUE(eventually([&] { return hasEnded(keeper); }));
  EXPECT_FALSE(fs::exists(data_ + "/orvo"));
}

TEST_F(Recovery, KeeperThatIsKilledIsReplacedAndKnowsTheRecording) {
  ASSERT_NO_FATAL_FAILURE(beginRecording());
  const pid_t first = orvo_->keeperPid();
  ASSERT_EQ(::kill(first, SIGKILL), 0);
  ASSERT_TRUE(eventually([&] {
    const pid_t present = orvo_->keeperPid();
    return present != 0 && present != first;
  }));
  ASSERT_NO_FATAL_FAILURE(feed(signalOfSeconds(0.3, 100)));
  ASSERT_NO_FATAL_FAILURE(endBy(SIGKILL));
  expectAllOf(written(), recoveredAudio());
}

TEST_F(Recovery, StoppedKeeperStopsNothing) {
  const pid_t keeper = orvo_->keeperPid();
  ASSERT_EQ(::kill(keeper, SIGSTOP), 0);
  ASSERT_NO_FATAL_FAILURE(record(signalOfSeconds(0.3, 101)));
  hold();
  orvo_->process().signal(SIGKILL);
  ASSERT_TRUE(orvo_->process().waitForExit());
  EXPECT_EQ(recovered(), std::vector<std::string>());
  ASSERT_EQ(::kill(keeper, SIGCONT), 0);
  ASSERT_TRUE(eventually([&] { return hasEnded(keeper); }));
  expectAllOf(written(), recoveredAudio());
}

// By a killer that takes a whole group of processes, say. The keeper has not begun.
TEST_F(Recovery, KilledTogetherWithItsKeeperLeavesNothing) {
  const pid_t keeper = orvo_->keeperPid();
  ASSERT_NO_FATAL_FAILURE(record(signalOfSeconds(0.3, 107)));
  ASSERT_EQ(::kill(keeper, SIGSTOP), 0);
  orvo_->process().signal(SIGKILL);
  ASSERT_TRUE(orvo_->process().waitForExit());
  ASSERT_EQ(::kill(keeper, SIGKILL), 0);
  ASSERT_TRUE(eventually([&] { return hasEnded(keeper); }));
  EXPECT_FALSE(fs::exists(data_ + "/orvo"));
  expectNothingElseIsLeft(0);
}

TEST_F(Recovery, LossOfTheScreenLosesNothingElse) {
  ASSERT_NO_FATAL_FAILURE(record(signalOfSeconds(0.3, 102)));
  hold();
  const pid_t keeper = orvo_->keeperPid();
  screen_.reset();
  ASSERT_TRUE(orvo_->process().waitForExit());
  ASSERT_TRUE(eventually([&] { return hasEnded(keeper); }));
  expectAllOf(written(), recoveredAudio());
  expectNothingElseIsLeft(1);
}

// As the end of a session does it to a program that asks for too long.
TEST_F(Recovery, EndOfTheSessionKeepsWhatTheQuestionIsAbout) {
  ASSERT_NO_FATAL_FAILURE(record(signalOfSeconds(0.3, 103)));
  hold();
  const pid_t keeper = orvo_->keeperPid();
  orvo_->process().signal(SIGTERM);
  ASSERT_TRUE(eventually([&] { return alerts().size() == 1; }));
  screen_.reset();
  ASSERT_TRUE(orvo_->process().waitForExit());
  ASSERT_TRUE(eventually([&] { return hasEnded(keeper); }));
  expectAllOf(written(), recoveredAudio());
}

TEST_F(Recovery, ThirdSignalKeepsWhatTheQuestionIsAbout) {
  ASSERT_NO_FATAL_FAILURE(record(signalOfSeconds(0.3, 104)));
  hold();
  const pid_t keeper = orvo_->keeperPid();
  orvo_->process().signal(SIGTERM);
  ASSERT_TRUE(eventually([&] { return alerts().size() == 1; }));
  // Three within two seconds, each once the one before was taken.
  ASSERT_TRUE(eventually([&] {
    orvo_->process().signal(SIGTERM);
    return !orvo_->process().isRunning();
  }));
  EXPECT_EQ(orvo_->process().waitForExit(), (ExitStatus{0, SIGTERM}));
  ASSERT_TRUE(eventually([&] { return hasEnded(keeper); }));
  expectAllOf(written(), recoveredAudio());
}

TEST_F(Recovery, TwoProgramsKeepEachItsOwn) {
  ASSERT_NO_FATAL_FAILURE(record(signalOfSeconds(0.3, 105)));
  hold();
  const auto first = std::move(orvo_);
  ASSERT_NO_FATAL_FAILURE(startWithKeeper());
  ASSERT_NE(orvo_->keeperPid(), first->keeperPid());
  ASSERT_NO_FATAL_FAILURE(beginRecording());
  const pid_t keeper = first->keeperPid();
  first->process().kill();
  ASSERT_TRUE(eventually([&] { return hasEnded(keeper); }));
  ASSERT_EQ(recovered().size(), 1U);
  expectAllOf(written(), recoveredAudio());
  const std::string one = recovered()[0];
  const std::uint64_t before = orvo_->recordedFrames();
  EXPECT_TRUE(orvo_->waitUntilRecorded(before + 1)) << "the other one goes on";
  ASSERT_NO_FATAL_FAILURE(endBy(SIGKILL));
  ASSERT_EQ(recovered().size(), 2U);
  expectAllOf(written(), recoveredAudio(recovered()[0] == one ? 1 : 0));
}

/// The program in a group of its own whose memory is limited.
class RecoveryWithoutMemory : public KilledProgramTest {};

TEST_F(RecoveryWithoutMemory, SystemThatKillsForWantOfMemoryLosesNothing) {
  const auto group = MemoryGroup::create();
  RunningOrvo::Options options;
  options.wrapper = group ? group->wrapper() : options.wrapper;
  ASSERT_NO_FATAL_FAILURE(startWithKeeper(options));
  ASSERT_NO_FATAL_FAILURE(record(signalOfSeconds(0.3, 106)));
  hold();
  const pid_t keeper = orvo_->keeperPid();
  if (group) {
    constexpr std::uint64_t kFurther = std::uint64_t{1} << 20;
    ASSERT_TRUE(group->limitTo(kFurther));
    ASSERT_TRUE(eventually([&] {  // each window takes some
      return !orvo_->process().isRunning() || !screen_->pressKey("ctrl+n");
    }));
  } else {
    std::cout << "No control group can be made here: the system's killer is simulated.\n";
    orvo_->process().signal(SIGKILL);
  }
  EXPECT_EQ(orvo_->process().waitForExit(), (ExitStatus{0, SIGKILL}));
  ASSERT_TRUE(eventually([&] { return hasEnded(keeper); }));
  expectAllOf(written(), recoveredAudio());
  orvo_.reset();
}

}  // namespace
