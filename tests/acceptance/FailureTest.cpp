// Failures of the sound server or the disk: one alert, no loss, and the program continues.

#include <chrono>

#include "acceptance/AccessibleFixture.h"
#include "support/programs/LimitedDisk.h"

using namespace support;

namespace {

/// How long a window may take to react while a lower layer hangs. A hanging server would block a
/// caller for 30 s.
constexpr std::chrono::seconds kAtOnce{5};

/// How long to wait for the effect of a key before pressing it again. A running recording grows ten
/// times in this time.
constexpr std::chrono::seconds kOneTry{1};

class Failure : public AcceptanceTest {
 protected:
  // Shortly after a failure, the program assumes without trying that there is no sound system. A
  // key pressed too early must be pressed again.

  /// Presses R until the recording runs. Attempts rolled back meanwhile show no second alert.
  void beginRecordingWhenItIsPossible() {
    ASSERT_TRUE(eventually([&] {
      return screen_->pressKey("r") && growsWithin(kOneTry) && growsWithin(kOneTry);
    })) << orvo_->process().errorOutput();
    EXPECT_TRUE(alerts().empty());
  }

  /// Presses Space until the playback runs, and dismisses the alert of each attempt that was too
  /// early.
  void beginPlayingWhenItIsPossible() {
    ASSERT_TRUE(eventually([&] {
      const auto playing = [&] { return server_->isPlaying(orvo_->pid()); };
      if (!screen_->pressKey("space") ||
          !eventually([&] { return playing() || !alerts().empty(); }, kOneTry)) {
        return false;
      }
      if (!alerts().empty()) {
        expectOneAlertAndDismissIt();
      }
      return playing();
    }));
  }

  /// Restarts the server and expects the document to be played from its start.
  void expectPlayedByTheNextServer(const Samples& signal) {
    ASSERT_TRUE(server_->restart());
    ASSERT_NO_FATAL_FAILURE(listen());
    ASSERT_TRUE(screen_->pressKey("Return"));
    ASSERT_NO_FATAL_FAILURE(beginPlayingWhenItIsPossible());
    expectHeard(signal);
  }

  /// Expects the window to accept commands: no alert covers it, and nothing blocks the main thread.
  void expectUsable() {
    EXPECT_TRUE(alerts().empty());
    const Window further = openFurtherWindow(kAtOnce);
    ASSERT_FALSE(further.empty());
    ASSERT_TRUE(screen_->close(further));
    EXPECT_TRUE(eventually([&] { return !screen_->isVisible(further); }, kAtOnce));
    ASSERT_TRUE(screen_->activate(orvo_->window()));
    EXPECT_TRUE(alerts().empty());
  }

 private:
  bool growsWithin(std::chrono::milliseconds patience) const {
    const std::uint64_t before = orvo_->recordedFrames();
    return eventually([&] { return orvo_->recordedFrames() > before; }, patience);
  }
};

TEST_F(Failure, WithoutASoundServerTheFirstPressOfRecordShowsOneAlertAndTheWindowIsUsable) {
  server_->kill();
  ASSERT_NO_FATAL_FAILURE(startOrvo());
  ASSERT_NO_FATAL_FAILURE(expectUsable());
  ASSERT_TRUE(screen_->pressKey("r"));
  ASSERT_NO_FATAL_FAILURE(expectOneAlertAndDismissIt());
  ASSERT_NO_FATAL_FAILURE(expectUsable());
  ASSERT_TRUE(screen_->pressKey("r"));
  ASSERT_NO_FATAL_FAILURE(expectUsable());
  EXPECT_EQ(orvo_->recordedFrames(), 0U);
  EXPECT_TRUE(orvo_->process().isRunning());
}

TEST_F(Failure, RecordingIsPossibleOnceTheSoundServerIsThere) {
  const Samples signal = signalOfSeconds(1.0, 11);
  server_->kill();
  ASSERT_NO_FATAL_FAILURE(startOrvo());
  ASSERT_TRUE(screen_->pressKey("r"));
  ASSERT_NO_FATAL_FAILURE(expectOneAlertAndDismissIt());
  ASSERT_TRUE(server_->restart());
  ASSERT_NO_FATAL_FAILURE(beginRecordingWhenItIsPossible());
  ASSERT_NO_FATAL_FAILURE(feed(signal));
  expectRecorded(signal);
  EXPECT_TRUE(alerts().empty());
}

TEST_F(Failure, ServerThatDiesWhileRecordingIsToldOnceAndEverythingIsKept) {
  const Samples signal = signalOfSeconds(1.5, 12);
  ASSERT_NO_FATAL_FAILURE(startOrvo());
  ASSERT_NO_FATAL_FAILURE(beginRecording());
  ASSERT_NO_FATAL_FAILURE(feed(signal));
  ASSERT_NO_FATAL_FAILURE(expectRecorded(signal));
  server_->kill();
  ASSERT_NO_FATAL_FAILURE(expectOneAlertAndDismissIt());
  ASSERT_NO_FATAL_FAILURE(expectUsable());

  ASSERT_NO_FATAL_FAILURE(expectPlayedByTheNextServer(signal));
  ASSERT_NO_FATAL_FAILURE(waitUntilPlayed());
  const Samples more = signalOfSeconds(0.5, 13);
  ASSERT_NO_FATAL_FAILURE(record(more));
  expectRecorded(signal);
  EXPECT_TRUE(alerts().empty());
}

TEST_F(Failure, ServerThatDiesWhilePlayingIsToldOnceAndPlaysAgainWhenItIsBack) {
  const Samples signal = signalOfSeconds(3.0, 14);
  ASSERT_NO_FATAL_FAILURE(startOrvo());
  ASSERT_NO_FATAL_FAILURE(record(signal));
  ASSERT_NO_FATAL_FAILURE(listen());
  ASSERT_NO_FATAL_FAILURE(beginPlaying());
  ASSERT_TRUE(eventually([&] { return peak(heard()) > 0.1F; }));
  server_->kill();
  ASSERT_NO_FATAL_FAILURE(expectOneAlertAndDismissIt());
  ASSERT_NO_FATAL_FAILURE(expectUsable());

  ASSERT_NO_FATAL_FAILURE(expectPlayedByTheNextServer(signal));
  EXPECT_TRUE(alerts().empty());
}

TEST_F(Failure, WindowReactsAndClosesWhileTheServerHangsDuringARecording) {
  ASSERT_NO_FATAL_FAILURE(startOrvo());
  ASSERT_NO_FATAL_FAILURE(beginRecording());
  server_->freeze();
  ASSERT_NO_FATAL_FAILURE(expectOneAlertAndDismissIt());  // nothing comes any more
  ASSERT_NO_FATAL_FAILURE(expectUsable());
  ASSERT_TRUE(screen_->close(orvo_->window()));
  ASSERT_TRUE(eventually([&] { return !alerts().empty(); }, kAtOnce));
  ASSERT_NO_FATAL_FAILURE(answerSheet(Answer::dontSave));
  EXPECT_TRUE(eventually([&] { return !screen_->isVisible(orvo_->window()); }, kAtOnce));
  EXPECT_EQ(orvo_->process().waitForExit(kAtOnce), (ExitStatus{0, 0}));
}

TEST_F(Failure, QuittingWorksWhileTheServerHangsDuringPlayback) {
  ASSERT_NO_FATAL_FAILURE(startOrvo());
  ASSERT_NO_FATAL_FAILURE(record(signalOfSeconds(3.0, 15)));
  ASSERT_NO_FATAL_FAILURE(beginPlaying());
  server_->freeze();
  ASSERT_NO_FATAL_FAILURE(expectOneAlertAndDismissIt());  // the output stands still
  ASSERT_NO_FATAL_FAILURE(expectUsable());
  ASSERT_TRUE(screen_->pressKey("ctrl+q"));
  ASSERT_TRUE(eventually([&] { return !alerts().empty(); }, kAtOnce));
  ASSERT_NO_FATAL_FAILURE(answerSheet(Answer::dontSave));
  EXPECT_EQ(orvo_->process().waitForExit(kAtOnce), (ExitStatus{0, 0}));
}

TEST_F(Failure, ServerThatHangsAtStartUpHoldsNeitherTheWindowNorTheQuit) {
  server_->freeze();
  ASSERT_NO_FATAL_FAILURE(startOrvo());
  ASSERT_NO_FATAL_FAILURE(expectUsable());
  ASSERT_TRUE(screen_->pressKey("ctrl+q"));
  EXPECT_EQ(orvo_->process().waitForExit(kAtOnce), (ExitStatus{0, 0}));
}

TEST_F(Failure, FullDiskStopsTheRecordingAndKeepsWhatWasRecorded) {
  // A disk of one mebibyte, 131,072 frames, for this program alone.
  const std::string disk = folder_.makeFolder("disk");
  RunningOrvo::Options options;
  options.wrapper = LimitedDisk::ofSize(disk, 1 << 20).wrapper();
  options.temporaryFolder = disk;
  ASSERT_NO_FATAL_FAILURE(startOrvo(options));
  const Samples signal = signalOfSeconds(1.0, 16);
  ASSERT_NO_FATAL_FAILURE(beginRecording());
  ASSERT_NO_FATAL_FAILURE(feed(signal));
  ASSERT_NO_FATAL_FAILURE(expectOneAlertAndDismissIt());
  // The first buffer for which there was no space is present as silence, which needs none.
  EXPECT_EQ(orvo_->recordedFrames(), 131072U + 4096U);
  ASSERT_NO_FATAL_FAILURE(expectUsable());
  expectRecorded(signal);

  ASSERT_NO_FATAL_FAILURE(listen());
  ASSERT_TRUE(screen_->pressKey("Return"));
  ASSERT_NO_FATAL_FAILURE(beginPlaying());
  expectHeard(signal);
  ASSERT_NO_FATAL_FAILURE(waitUntilPlayed());
  EXPECT_TRUE(alerts().empty());
}

/// TMPDIR names a folder that is not there.
class FailureTemporaryFolder : public AccessibleFixture {
 protected:
  void startWithoutTemporaryFolder() {
    RunningOrvo::Options options;
    options.temporaryFolder = missing_;
    options.alertFirst = true;
    ASSERT_NO_FATAL_FAILURE(startWithBus(options));
  }
  [[nodiscard]] std::string sentences() const {
    return "The file " + missing_ +
           "/orvoXXXXXX couldn't be opened for writing. This shouldn't happen! Check your "
           "permissions.\n\nThe temporary directory “" +
           missing_ + "” cannot be used. There is no such folder.";
  }

  const std::string missing_ = folder_.file("missing");
};

TEST_F(FailureTemporaryFolder, IsToldAtTheStartAndAtEachPressOfRecordUntilItIsThere) {
  ASSERT_NO_FATAL_FAILURE(startWithoutTemporaryFolder());
  ASSERT_NO_FATAL_FAILURE(expectOneAlertThatSays(sentences()));
  for (int press = 1; press <= 2; ++press) {
    ASSERT_TRUE(screen_->pressKey("r"));
    ASSERT_NO_FATAL_FAILURE(expectOneAlertThatSays(sentences())) << press;
    EXPECT_TRUE(orvo_->recordingPaths().empty());
  }
  folder_.makeFolder("missing");
  ASSERT_NO_FATAL_FAILURE(beginRecording());
  EXPECT_TRUE(alerts().empty());
}

}  // namespace
