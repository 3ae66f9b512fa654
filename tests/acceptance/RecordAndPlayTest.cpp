// Recording and playing through the real window, compared sample for sample.

#include <algorithm>
#include <filesystem>

#include "acceptance/AcceptanceTest.h"

using namespace support;

namespace {

class RecordAndPlay : public AcceptanceTest {};

TEST_F(RecordAndPlay, WhatWasRecordedIsHeardSampleForSample) {
  const Samples signal = signalOfSeconds(3.0, 1);
  ASSERT_NO_FATAL_FAILURE(startOrvo());
  ASSERT_NO_FATAL_FAILURE(record(signal));
  // Other work on the machine can make the server itself skip, but not every time.
  bool whole = false;
  for (int i = 0; i < 5 && !whole; ++i) {
    ASSERT_NO_FATAL_FAILURE(listen());
    ASSERT_NO_FATAL_FAILURE(beginPlaying());
    ASSERT_NO_FATAL_FAILURE(expectHeard(signal));
    ASSERT_NO_FATAL_FAILURE(waitUntilPlayed());
    whole = wasHeardWithoutAGap(signal);
  }
  EXPECT_TRUE(whole);
  EXPECT_TRUE(alerts().empty());
}

TEST_F(RecordAndPlay, SecondPlaybackBeginsAtTheStartAgain) {
  const Samples signal = signalOfSeconds(0.5, 2);
  ASSERT_NO_FATAL_FAILURE(startOrvo());
  ASSERT_NO_FATAL_FAILURE(record(signal));
  for (int i = 0; i < 2; ++i) {
    ASSERT_NO_FATAL_FAILURE(listen());
    ASSERT_NO_FATAL_FAILURE(beginPlaying());
    expectHeard(signal);
    ASSERT_NO_FATAL_FAILURE(waitUntilPlayed());
  }
}

TEST_F(RecordAndPlay, RecordingGoesOnWhereItStopped) {
  const Samples first = signalOfSeconds(1.0, 3);
  const Samples second = signalOfSeconds(1.0, 4);
  ASSERT_NO_FATAL_FAILURE(startOrvo());
  ASSERT_NO_FATAL_FAILURE(record(first));
  ASSERT_NO_FATAL_FAILURE(record(second));
  ASSERT_NO_FATAL_FAILURE(listen());
  ASSERT_NO_FATAL_FAILURE(beginPlaying());
  expectHeard(first);
  expectHeard(second);
}

/// `take` after `over` was recorded over it from frame `at` on.
Samples recordedOver(const Samples& take, const Samples& over, std::size_t at) {
  Samples result = take;
  std::copy(over.begin(), over.end(), result.begin() + static_cast<std::ptrdiff_t>(at * kChannels));
  return result;
}

TEST_F(RecordAndPlay, RecordingOverTheMiddleLeavesBothEnds) {
  constexpr int kClickX = 320;  // the middle of the window's 640 points
  constexpr int kWidth = 640;
  ASSERT_NO_FATAL_FAILURE(startOrvo());
  ASSERT_NO_FATAL_FAILURE(record(signalOfSeconds(4.0, 5)));
  const std::uint64_t length = orvo_->recordedFrames();
  ASSERT_TRUE(orvo_->click(*screen_, kClickX, 120));
  const Samples above = signalOfSeconds(0.5, 6);
  ASSERT_NO_FATAL_FAILURE(record(above));
  ASSERT_TRUE(screen_->pressKey("Return"));
  ASSERT_NO_FATAL_FAILURE(listen());
  ASSERT_NO_FATAL_FAILURE(beginPlaying());
  expectHeard(above);
  ASSERT_NO_FATAL_FAILURE(waitUntilPlayed());

  // The temporary file is only appended to, so it holds both takes in succession.
  const Samples all = orvo_->recorded();
  ASSERT_GT(all.size(), length * kChannels);
  const auto border = all.begin() + static_cast<std::ptrdiff_t>(length * kChannels);
  const Samples take(all.begin(), border);
  const Samples over(border, all.end());
  const Samples sounding = withoutSilence(heard());
  bool found = false;
  for (int x = kClickX - 2; x <= kClickX + 2; ++x) {  // the click may be a point off
    const auto at = static_cast<std::size_t>(static_cast<double>(length) * x / kWidth);
    found = found || sounding == withoutSilence(recordedOver(take, over, at));
  }
  EXPECT_TRUE(found);
}

TEST_F(RecordAndPlay, CommandsAndMenusThatAreReachedWithSpaceLeaveARecordingRunning) {
  ASSERT_NO_FATAL_FAILURE(startOrvo());
  ASSERT_NO_FATAL_FAILURE(beginRecording());
  const auto stillGrows = [&] {
    return orvo_->waitUntilRecorded(orvo_->recordedFrames() + kFramesPerSecond / 2);
  };
  ASSERT_TRUE(screen_->pressKey("ctrl+space"));
  EXPECT_TRUE(stillGrows());
  // The item of the Transport menu that goes to the start.
  ASSERT_TRUE(screen_->pressKey("alt+t"));
  ASSERT_TRUE(screen_->pressKey("Up"));
  ASSERT_TRUE(screen_->pressKey("Up"));
  ASSERT_TRUE(screen_->pressKey("space"));
  EXPECT_TRUE(stillGrows());
  ASSERT_TRUE(screen_->pressKey("space"));
}

TEST_F(RecordAndPlay, UndoTakesTheLastRecordingAwayAndRedoBringsItBack) {
  const Samples first = signalOfSeconds(0.5, 7);
  const Samples second = signalOfSeconds(0.5, 17);
  ASSERT_NO_FATAL_FAILURE(startOrvo());
  ASSERT_NO_FATAL_FAILURE(record(first));
  ASSERT_NO_FATAL_FAILURE(record(second));
  for (const bool undone : {true, false}) {
    ASSERT_TRUE(screen_->pressKey(undone ? "ctrl+z" : "ctrl+shift+z"));
    ASSERT_TRUE(screen_->pressKey("Return"));
    ASSERT_NO_FATAL_FAILURE(listen());
    ASSERT_NO_FATAL_FAILURE(beginPlaying());
    expectHeard(first);
    ASSERT_NO_FATAL_FAILURE(waitUntilPlayed());
    EXPECT_EQ(findStart(second, heard()).has_value(), !undone);
  }
}

TEST_F(RecordAndPlay, SecondWindowRecordsTheSameMeanwhile) {
  const Samples signal = signalOfSeconds(2.0, 8);
  ASSERT_NO_FATAL_FAILURE(startOrvo());
  ASSERT_NO_FATAL_FAILURE(beginRecording());
  const Window second = openFurtherWindow();
  ASSERT_FALSE(second.empty());
  ASSERT_TRUE(screen_->activate(second));
  ASSERT_TRUE(screen_->pressKey("r"));
  ASSERT_TRUE(orvo_->waitUntilRecorded(1, 1));
  ASSERT_NO_FATAL_FAILURE(feed(signal));
  expectRecorded(signal, 0);
  expectRecorded(signal, 1);
}

TEST_F(RecordAndPlay, PauseOfOneWindowLosesNothingOfTheOther) {
  const Samples signal = signalOfSeconds(3.0, 9);
  ASSERT_NO_FATAL_FAILURE(startOrvo());
  ASSERT_NO_FATAL_FAILURE(beginRecording());
  const Window second = openFurtherWindow();
  ASSERT_FALSE(second.empty());
  ASSERT_TRUE(screen_->activate(second));
  const std::string path = folder_.file("signal");
  ASSERT_TRUE(writeRaw(path, signal));
  const auto player = server_->playIntoFeed(path);
  ASSERT_NE(player, nullptr);
  for (int i = 0; i < 4; ++i) {  // on, off, on, off: each replaces the recorder
    const std::uint64_t before = orvo_->recordedFrames(1);
    ASSERT_TRUE(screen_->pressKey("r"));
    ASSERT_TRUE(i % 2 == 1 || orvo_->waitUntilRecorded(before + 1, 1));
  }
  expectRecorded(signal, 0);
}

/// Takes pictures for people to look at; the test checks only that they differ.
class Pictures : public AcceptanceTest, public testing::WithParamInterface<int> {
 protected:
  [[nodiscard]] std::string path(const std::string& name) const {
    return ORVO_PICTURES "/" + name + "-" + std::to_string(GetParam()) + "x.png";
  }
};

TEST_P(Pictures, RecordingPlayingAndStoppedLookDifferent) {
  std::filesystem::create_directories(ORVO_PICTURES);
  const Samples signal = tune(4.0);
  RunningOrvo::Options options;
  options.scale = GetParam();
  ASSERT_NO_FATAL_FAILURE(startOrvo(options));
  ASSERT_TRUE(screen_->screenshotAtRest(orvo_->window(), path("empty")));
  ASSERT_NO_FATAL_FAILURE(beginRecording());
  ASSERT_NO_FATAL_FAILURE(feed(signal));
  ASSERT_TRUE(screen_->screenshot(orvo_->window(), path("recording")));
  ASSERT_TRUE(screen_->pressKey("r"));
  ASSERT_TRUE(screen_->screenshotAtRest(orvo_->window(), path("stopped")));
  ASSERT_NO_FATAL_FAILURE(listen());
  ASSERT_NO_FATAL_FAILURE(beginPlaying());
  ASSERT_TRUE(eventually([&] { return peak(heard()) > 0.2F; }));
  ASSERT_TRUE(screen_->screenshot(orvo_->window(), path("playing")));
  const std::vector<std::string> names{"empty", "recording", "stopped", "playing"};
  for (const std::string& one : names) {
    for (const std::string& other : names) {
      EXPECT_EQ(screen_->looksLike(path(one), path(other)), one == other) << one << ' ' << other;
    }
  }
  const std::string size =
      runToEnd({"identify", "-format", "%w", path("empty")}, cleanEnvironment()).output;
  EXPECT_EQ(size, std::to_string(640 * GetParam()));
}

INSTANTIATE_TEST_SUITE_P(AtScale, Pictures, testing::Values(1, 2));

}  // namespace
