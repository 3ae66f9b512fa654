// The program is stopped, or its disk or the sound server hangs, for longer than buffers last,
// while it records: what follows keeps its time, and what was lost is told.
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <iostream>

#include "acceptance/AccessibleFixture.h"
#include "support/programs/StalledFolder.h"

using namespace support;

namespace {

using std::chrono::seconds;

// The environment is only read.
bool takesMinutes() {
  return std::getenv("ORVO_TEST_LONG_FREEZES") != nullptr;  // NOLINT(concurrency-mt-unsafe)
}

class RecordingOfNoise : public AccessibleFixture {
 protected:
  /// Records noise from a microphone, which goes on for long, until it has two seconds of it.
  void beginRecordingOfNoise(const RunningOrvo::Options& options = {}) {
    ASSERT_TRUE(server_ && server_->plugMicrophone("mic", "USB Mic").has_value());
    ASSERT_NO_FATAL_FAILURE(startWithBus(options));
    ASSERT_NO_FATAL_FAILURE(beginRecording());
    ASSERT_TRUE(writeRaw(folder_.file("noise"), signal_));
    feed_ = server_->playIntoFeed(folder_.file("noise"));
    ASSERT_NE(feed_, nullptr);
    ASSERT_TRUE(eventually([&] { return framesWithoutGap() > 2 * kFramesPerSecond; }));
  }

  /// Frames of the noise from its first one to the first gap.
  std::size_t framesWithoutGap() const {
    const Samples recorded = orvo_->recorded();
    const auto start = findStart(signal_, recorded);
    return start ? equalFrames(signal_, recorded, *start) : 0;
  }

  static void wait(seconds time) {
    const auto begun = std::chrono::steady_clock::now();
    ASSERT_TRUE(eventually([&] { return std::chrono::steady_clock::now() - begun >= time; },
                           time + kPatience));
  }

  /// Frames of the longest silence after a frame. It may come a little later than the loss.
  static std::size_t longestSilence(const Samples& samples, std::size_t from) {
    std::size_t longest = 0;
    std::size_t run = 0;
    for (std::size_t i = from * kChannels; i < samples.size(); i += kChannels) {
      run = samples[i] == 0.0F ? run + 1 : 0;
      longest = std::max(longest, run);
    }
    return longest;
  }

  /// Waits until a second of sound follows the gap, and expects the noise there to stand where it
  /// would without one; returns the length of the gap in seconds.
  double expectNoiseInTimeAfterTheGap(std::size_t atLeast) {
    const std::size_t start = findStart(signal_, orvo_->recorded()).value_or(0);
    EXPECT_TRUE(
        orvo_->waitUntilRecorded(start + framesWithoutGap() + atLeast + 2 * kFramesPerSecond));
    const Samples recorded = orvo_->recorded();
    const std::size_t frames = recorded.size() / kChannels;
    const std::size_t last = frames - kFramesPerSecond;
    const Samples probe(recorded.begin() + static_cast<std::ptrdiff_t>(last * kChannels),
                        recorded.begin() + static_cast<std::ptrdiff_t>((last + 64) * kChannels));
    const auto place = findStart(probe, signal_);
    EXPECT_TRUE(place.has_value()) << "no noise after the gap";
    if (place) {
      EXPECT_LE(std::abs(secondsOf(last) - secondsOf(start + *place)), 0.1);
      std::cout << "moved by " << secondsOf(last) - secondsOf(start + *place) << " s\n";
    }
    return secondsOf(longestSilence(recorded, start));
  }

  /// The notice about lost frames, the mark over the waveform, and after the recording the sum.
  void expectToldAndMarked(const std::string& said, double gap) {
    EXPECT_NE(said.find(" s were lost at 00:"), std::string::npos) << said;
    EXPECT_NEAR(std::strtod(said.c_str(), nullptr), gap, 0.2) << said;
    readNodes();
    const std::string sum = named("Lost sound").description;
    EXPECT_EQ(sum.find("Lost in this recording: " + said.substr(0, said.find(' ')) + " s"), 0U)
        << sum;
    EXPECT_TRUE(alerts().empty());
    ASSERT_TRUE(screen_->pressKey("r"));
    expectNotice(sum);
    std::cout << said << "; gap of " << gap << " s\n";
  }

  /// Waits for a notice about lost frames, which is shown for some seconds.
  std::string awaitLossNotice() const {
    std::string said;
    EXPECT_TRUE(eventually([&] {
      said = notice();
      return said.find("were lost") != std::string::npos;
    })) << said;
    return said;
  }

  const Samples signal_ = signalOfSeconds(80.0, 91);
  std::unique_ptr<ChildProcess> feed_;

 private:
  static double secondsOf(std::size_t frames) {
    return static_cast<double>(frames) / kFramesPerSecond;
  }
};

class LongLosses : public RecordingOfNoise {
 protected:
  void SetUp() override {
    if (!takesMinutes()) {
      GTEST_SKIP() << "takes minutes: scripts/test --freezes runs it";
    }
  }
};

using StoppedServer = RecordingOfNoise;

TEST_F(LongLosses, ProgramThatIsStoppedFor20SecondsTellsWhatItLostAndKeepsTheTime) {
  ASSERT_NO_FATAL_FAILURE(beginRecordingOfNoise());
  orvo_->process().freeze();
  ASSERT_NO_FATAL_FAILURE(wait(seconds(20)));
  orvo_->process().thaw();
  const std::string said = awaitLossNotice();
  const double gap = expectNoiseInTimeAfterTheGap(20 * kFramesPerSecond);
  expectToldAndMarked(said, gap);
}

TEST_F(LongLosses, DiskThatHangsFor12SecondsTellsWhatWasLostAndTheTimeIsKept) {
  RunningOrvo::Options options;
  options.temporaryFolder = folder_.makeFolder("temporary");
  const StalledFolder disk(options.temporaryFolder);
  options.wrapper = disk.wrapper();
  ASSERT_NO_FATAL_FAILURE(beginRecordingOfNoise(options));
  disk.stall();
  ASSERT_NO_FATAL_FAILURE(wait(seconds(12)));
  const std::uint64_t during = orvo_->recordedFrames();
  EXPECT_FALSE(bus_->nodesFrom(named("Waveform")).empty()) << "the window does not answer";
  EXPECT_EQ(orvo_->recordedFrames(), during) << "the disk does not hang";
  disk.release();
  const std::string said = awaitLossNotice();
  const double gap = expectNoiseInTimeAfterTheGap(12 * kFramesPerSecond);
  expectToldAndMarked(said, gap);
}

TEST_F(StoppedServer, EndsTheRecordingWithEverythingKeptAndRecordWorksAfterwards) {
  ASSERT_NO_FATAL_FAILURE(beginRecordingOfNoise());
  const std::size_t before = framesWithoutGap();
  server_->freeze();
  ASSERT_NO_FATAL_FAILURE(wait(seconds(takesMinutes() ? 60 : 4)));
  server_->thaw();
  ASSERT_NO_FATAL_FAILURE(expectOneAlertThatSays(
      "Nothing more came from the sound input “USB Mic”: it stands still, or the sound system does "
      "not answer. Recording has ended. Check the input, then press Record. Everything recorded so "
      "far is kept."));
  const Samples recorded = orvo_->recorded();
  const std::size_t kept = recorded.size() / kChannels;
  const auto start = findStart(signal_, recorded);
  ASSERT_TRUE(start.has_value());
  EXPECT_EQ(equalFrames(signal_, recorded, *start), kept - *start) << "a gap in what was kept";
  EXPECT_GE(kept - *start, before);
  ASSERT_NO_FATAL_FAILURE(beginRecording());
  EXPECT_TRUE(orvo_->waitUntilRecorded(kept + kFramesPerSecond));
}

}  // namespace
