// Microphones that go, come back and are replaced, and servers that die, while the real program
// records, plays or waits: what is kept and what is said.
#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

#include "acceptance/AccessibleFixture.h"

using namespace support;

namespace {

constexpr std::size_t kChunk = 4096;  // frames that are recorded at a time

class LostMicrophone : public AccessibleFixture {
 protected:
  /// A microphone that hears the feed and is the default. The monitor that is left when it goes is
  /// that of what is heard, which is silent.
  void startWithMicrophone() {
    ASSERT_TRUE(server_ && server_->setDefaultSource(PrivateSoundServer::kHeardMonitor));
    ASSERT_NO_FATAL_FAILURE(plug());
    ASSERT_NO_FATAL_FAILURE(startWithBus());
  }
  void plug(const std::string& name = "mic", const std::string& description = "USB Mic") {
    plug_ = server_->plugMicrophone(name, description);
    ASSERT_TRUE(plug_.has_value());
  }
  void unplug() { ASSERT_TRUE(server_->unplugMicrophone(*std::exchange(plug_, std::nullopt))); }

  /// Plays noise into the feed, longer than any of these tests.
  void beginFeeding(std::uint32_t seed) {
    signal_ = signalOfSeconds(60.0, seed);
    const std::string path = folder_.file("endless" + std::to_string(seed));
    ASSERT_TRUE(writeRaw(path, signal_));
    feed_ = server_->playIntoFeed(path);
    ASSERT_NE(feed_, nullptr);
  }

  /// Frames of a recording from the signal's first one on, without a gap; `after`: those that
  /// follow.
  std::size_t framesOfSignal(const Samples& recorded, std::size_t* after = nullptr) const {
    const auto start = findStart(signal_, recorded);
    const std::size_t found = start ? equalFrames(signal_, recorded, *start) : 0;
    if (after != nullptr) {
      *after = start ? recorded.size() / kChannels - *start - found : 0;
    }
    return found;
  }
  bool awaitSignal(std::size_t frames) {
    return eventually([&] { return framesOfSignal(orvo_->recorded()) >= frames; });
  }

  /// Presses Record until the recording grows: right after a loss, Record is rolled back.
  void recordWhenItIsPossible() {
    ASSERT_TRUE(eventually([&] {
      const std::uint64_t before = orvo_->recordedFrames();
      return screen_->pressKey("r") &&
             eventually([&] { return orvo_->recordedFrames() > before + kChunk; },
                        std::chrono::seconds(1));
    })) << orvo_->process().errorOutput();
  }

  static std::string lost(const std::string& name, const std::string& consequence) {
    return "The sound input “" + name +
           "” has gone: it was unplugged, or the sound system stopped. " + consequence +
           " Everything recorded so far is kept.";
  }
  static std::string lostWhileRecording(const std::string& name = "USB Mic") {
    return lost(name, "Recording has ended. Connect the input again, then press Record.");
  }

  std::optional<std::string> plug_;
  Samples signal_;
  std::unique_ptr<ChildProcess> feed_;
};

TEST_F(LostMicrophone, OneThatIsUnpluggedIsToldByItsNameWithEverythingKeptAndItsReturnRecords) {
  ASSERT_NO_FATAL_FAILURE(startWithMicrophone());
  ASSERT_NO_FATAL_FAILURE(beginRecording());
  expectNotice("Recording from USB Mic");
  const auto witness = server_->capture("mic", folder_.file("witness"));  // another program
  ASSERT_NE(witness, nullptr);
  ASSERT_NO_FATAL_FAILURE(beginFeeding(81));
  ASSERT_TRUE(awaitSignal(kFramesPerSecond));
  const std::size_t before = framesOfSignal(orvo_->recorded());
  ASSERT_NO_FATAL_FAILURE(unplug());
  ASSERT_NO_FATAL_FAILURE(expectOneAlertThatSays(lostWhileRecording()));

  const Samples recorded = orvo_->recorded();
  std::size_t after = 0;
  const std::size_t kept = framesOfSignal(recorded, &after);
  EXPECT_GE(kept, before);
  // The witness asks for as much at a time, and the buffer that was being filled is dropped.
  EXPECT_GE(kept + 3 * kChunk, framesOfSignal(readRaw(folder_.file("witness"))));
  // From the monitor, where the server moves the stream, until that was noticed.
  EXPECT_LE(after, kFramesPerSecond);
  EXPECT_EQ(peak(Samples(recorded.end() - static_cast<std::ptrdiff_t>(after * kChannels),
                         recorded.end())),
            0.0F);
  EXPECT_EQ(orvo_->recordedFrames(), recorded.size() / kChannels) << "it goes on";

  feed_.reset();
  ASSERT_NO_FATAL_FAILURE(plug());
  ASSERT_NO_FATAL_FAILURE(recordWhenItIsPossible());
  expectNotice("Recording from USB Mic");
  ASSERT_NO_FATAL_FAILURE(beginFeeding(82));
  EXPECT_TRUE(awaitSignal(kFramesPerSecond / 2));
  EXPECT_TRUE(alerts().empty());
}

TEST_F(LostMicrophone, TenWindowsThatRecordFromItAreOneAlert) {
  ASSERT_NO_FATAL_FAILURE(startWithMicrophone());
  constexpr std::size_t kWindows = 10;
  ASSERT_NO_FATAL_FAILURE(beginRecording());
  for (std::size_t i = 1; i < kWindows; ++i) {
    const Window further = openFurtherWindow();
    ASSERT_FALSE(further.empty());
    ASSERT_TRUE(screen_->activate(further));
    ASSERT_TRUE(screen_->pressKey("r"));
    ASSERT_TRUE(orvo_->waitUntilRecorded(kChunk, i)) << i;
  }
  ASSERT_NO_FATAL_FAILURE(unplug());
  ASSERT_NO_FATAL_FAILURE(expectOneAlertThatSays(lostWhileRecording()));
  std::vector<std::uint64_t> kept;
  for (std::size_t i = 0; i < kWindows; ++i) {
    kept.push_back(orvo_->recordedFrames(i));
    EXPECT_GE(kept.back(), kChunk) << i;
  }
  // The window accepts a command, so no second alert covers it; and none of them records.
  ASSERT_FALSE(openFurtherWindow().empty());
  EXPECT_TRUE(alerts().empty());
  for (std::size_t i = 0; i < kWindows; ++i) {
    EXPECT_EQ(orvo_->recordedFrames(i), kept[i]) << i;
  }
}

TEST_F(LostMicrophone, AnotherDefaultIsRecordedFromWithoutAnAlertAndANoticeSaysSo) {
  ASSERT_NO_FATAL_FAILURE(startWithMicrophone());
  ASSERT_NO_FATAL_FAILURE(beginRecording());
  expectNotice("Recording from USB Mic");
  ASSERT_NO_FATAL_FAILURE(plug("headset", "Headset"));  // and the former one is still there
  expectNotice("Recording from Headset");
  const std::uint64_t then = orvo_->recordedFrames();
  ASSERT_NO_FATAL_FAILURE(beginFeeding(83));
  EXPECT_TRUE(awaitSignal(kFramesPerSecond / 2));
  EXPECT_GT(orvo_->recordedFrames(), then);
  EXPECT_TRUE(alerts().empty());
}

TEST_F(LostMicrophone, OneThatGoesWhileAnotherIsThereEndsTheRecordingAndTheOtherIsUsedNext) {
  ASSERT_TRUE(server_ && server_->plugMicrophone("headset", "Headset").has_value());
  ASSERT_NO_FATAL_FAILURE(plug());
  ASSERT_NO_FATAL_FAILURE(startWithBus());
  ASSERT_NO_FATAL_FAILURE(beginRecording());
  expectNotice("Recording from USB Mic");
  ASSERT_NO_FATAL_FAILURE(unplug());
  ASSERT_NO_FATAL_FAILURE(expectOneAlertThatSays(lostWhileRecording()));
  ASSERT_TRUE(server_->setDefaultSource("headset"));
  ASSERT_NO_FATAL_FAILURE(recordWhenItIsPossible());
  expectNotice("Recording from Headset");
  EXPECT_TRUE(alerts().empty());
}

TEST_F(LostMicrophone, ServerThatDiesWhileRecordingIsToldAsTheEndOfTheRecording) {
  ASSERT_NO_FATAL_FAILURE(startWithMicrophone());
  ASSERT_NO_FATAL_FAILURE(beginRecording());
  ASSERT_NO_FATAL_FAILURE(beginFeeding(84));
  ASSERT_TRUE(awaitSignal(kFramesPerSecond / 2));
  const std::size_t before = framesOfSignal(orvo_->recorded());
  server_->kill();
  ASSERT_NO_FATAL_FAILURE(expectOneAlertThatSays(lostWhileRecording()));
  EXPECT_GE(framesOfSignal(orvo_->recorded()), before);
}

TEST_F(LostMicrophone, ServerThatDiesWhilePlayingIsToldAsTheEndOfThePlayback) {
  ASSERT_NO_FATAL_FAILURE(startWithMicrophone());
  ASSERT_NO_FATAL_FAILURE(record(signalOfSeconds(3.0, 85)));
  ASSERT_TRUE(screen_->pressKey("Return"));
  ASSERT_NO_FATAL_FAILURE(listen());
  ASSERT_NO_FATAL_FAILURE(beginPlaying());
  ASSERT_TRUE(eventually([&] { return peak(heard()) > 0.1F; }));
  server_->kill();
  ASSERT_NO_FATAL_FAILURE(expectOneAlertThatSays(
      "The sound output has gone: it was unplugged, or the sound system stopped. Playback has "
      "ended. Connect the output again, then press Play. Everything recorded so far is kept."));
}

TEST_F(LostMicrophone, ServerThatDiesWhileNothingRunsIsToldAsTheLossOfTheInput) {
  ASSERT_NO_FATAL_FAILURE(startWithMicrophone());
  ASSERT_TRUE(eventually([&] { return server_->isCapturing(orvo_->pid()); }));
  server_->kill();
  ASSERT_NO_FATAL_FAILURE(
      expectOneAlertThatSays(lost("USB Mic", "Connect it again before you press Record.")));
}

}  // namespace
