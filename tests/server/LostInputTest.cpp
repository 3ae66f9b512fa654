#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <iostream>
#include <memory>
#include <optional>
#include <string>

#include <gmock/gmock.h>

#include "audio/OVAQPlayer.h"
#include "audio/OVAQRecorder.h"
#include "server/LostInputFixture.h"
#include "support/MainLoop.h"

// Microphones that are unplugged, replaced and plugged in again, and servers that stand still,
// while something is recorded or played.
namespace {

using platform::AudioInputSource;
using platform::kDeviceLostStatus;
using platform::kDeviceStalledStatus;
using support::equalFrames;
using support::findStart;
using support::noise;
using support::Samples;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testserver::contents;
using testserver::kSecond;

using LostInputTest = testserver::LostInputFixture;

TEST_F(LostInputTest, AMicrophoneIsLosslessAndNamed) {
  ASSERT_NO_FATAL_FAILURE(plug("mic", "USB Mic"));
  const Samples signal = noise(3 * kSecond, 21);
  ASSERT_NO_FATAL_FAILURE(recordSome(signal));
  EXPECT_EQ(queues_->inputSource(), (AudioInputSource{.kind = AudioInputSource::Kind::kMicrophone,
                                                      .isOpen = true,
                                                      .id = "mic",
                                                      .name = "USB Mic"}));
  std::size_t after = 0;
  EXPECT_TRUE(support::eventually([&] { return framesOf(signal, after) == 3 * kSecond; }));
}

TEST_F(LostInputTest,
       AMicrophoneThatIsUnpluggedEndsTheRecordingToldOnceAndItsReturnIsRecordedFrom) {
  ASSERT_TRUE(server_->setDefaultSource(support::PrivateSoundServer::kHeardMonitor));
  ASSERT_NO_FATAL_FAILURE(playAloud());
  ASSERT_NO_FATAL_FAILURE(plug("mic", "USB Mic"));
  const Samples signal = noise(20 * kSecond, 22);
  ASSERT_NO_FATAL_FAILURE(recordSome(signal));
  ASSERT_NO_FATAL_FAILURE(unplug());
  ASSERT_TRUE(awaitFailure(kDeviceLostStatus));
  recorder_->pause();
  std::size_t after = 0;
  EXPECT_GT(framesOf(signal, after), kSecond);
  EXPECT_LE(after, mostForeignFrames());
  EXPECT_LE(failedAt_.load() - unpluggedAt_, std::chrono::seconds(1));
  ASSERT_NO_FATAL_FAILURE(expectOneAlertThatSays(
      "The sound input “USB Mic” has gone: it was unplugged, or the sound system stopped. "
      "Recording has ended."));
  recorder_->prepareForDestruction();
  ASSERT_TRUE(awaitSource(AudioInputSource::Kind::kMonitor));
  EXPECT_FALSE(queues_->inputSource().isOpen);

  ASSERT_NO_FATAL_FAILURE(plug("mic", "USB Mic"));
  ASSERT_TRUE(awaitSource(AudioInputSource::Kind::kMicrophone));
  player_.reset();
  buffer_ = OVBlockBuffer::init();
  const Samples more = noise(20 * kSecond, 23);
  ASSERT_NO_FATAL_FAILURE(recordSome(more));
  EXPECT_GT(framesOf(more, after), kSecond / 2);
  EXPECT_THAT(services_->postedAlerts(), SizeIs(1));
}

TEST_F(LostInputTest, AnotherDefaultWhileTheFormerIsThereIsFollowedWithoutAnAlert) {
  ASSERT_NO_FATAL_FAILURE(plug("mic", "USB Mic"));
  const auto first = plug_;
  ASSERT_NO_FATAL_FAILURE(makeRecorder());
  recorder_->record();
  ASSERT_TRUE(awaitSource(AudioInputSource::Kind::kMicrophone, "mic"));
  ASSERT_NO_FATAL_FAILURE(plug("headset", "Headset"));
  ASSERT_TRUE(awaitSource(AudioInputSource::Kind::kMicrophone, "headset"));
  EXPECT_TRUE(queues_->inputSource().isOpen);
  const auto before = buffer_->bufferSizeInFrames();
  ASSERT_TRUE(support::eventually([&] { return buffer_->bufferSizeInFrames() > before + 20'000; }));
  EXPECT_EQ(failure_, 0);
  // The former one may go now.
  EXPECT_TRUE(server_->unplugMicrophone(*first));
  const auto then = buffer_->bufferSizeInFrames();
  ASSERT_TRUE(support::eventually([&] { return buffer_->bufferSizeInFrames() > then + 60'000; }));
  EXPECT_EQ(failure_, 0);
  EXPECT_THAT(services_->postedAlerts(), IsEmpty());
}

TEST_F(LostInputTest, AMonitorThatIsTheDefaultIsRecordedFromAndKnownAsOne) {
  ASSERT_NO_FATAL_FAILURE(makeRecorder());
  EXPECT_TRUE(awaitSource(AudioInputSource::Kind::kMonitor));
  EXPECT_EQ(queues_->inputSource().id, support::PrivateSoundServer::kFeedMonitor);
}

TEST_F(LostInputTest, TenRecordingsFromOneMicrophoneAreOneAlertWhenItGoes) {
  ASSERT_NO_FATAL_FAILURE(plug("mic", "USB Mic"));
  std::vector<std::shared_ptr<OVAQRecorder>> recorders;
  std::atomic<int> ended{0};
  for (int i = 0; i < 10; ++i) {
    recorders.push_back(OVAQRecorder::initWithBuffer(OVBlockBuffer::init()));
    ASSERT_NE(recorders.back(), nullptr);
    recorders.back()->setFailureHandler([&](platform::AudioStatus) { ++ended; });
    recorders.back()->record();
  }
  ASSERT_TRUE(awaitSource(AudioInputSource::Kind::kMicrophone));
  ASSERT_NO_FATAL_FAILURE(unplug());
  ASSERT_TRUE(support::eventually([&] { return ended == 10; }));
  expectOneAlertThatSays("“USB Mic”");
  for (const auto& recorder : recorders) {
    recorder->pause();
    recorder->prepareForDestruction();
  }
  EXPECT_THAT(services_->postedAlerts(), SizeIs(1));
}

TEST_F(LostInputTest, AServerThatStandsStillForLongEndsTheRecordingWithEverythingKept) {
  ASSERT_NO_FATAL_FAILURE(plug("mic", "USB Mic"));
  const Samples signal = noise(20 * kSecond, 25);
  ASSERT_NO_FATAL_FAILURE(recordSome(signal));
  const auto frozen = std::chrono::steady_clock::now();
  server_->freeze();
  ASSERT_TRUE(awaitFailure(kDeviceStalledStatus));
  const auto noticed = std::chrono::steady_clock::now() - frozen;
  EXPECT_GE(noticed, std::chrono::milliseconds(1900));
  recorder_->pause();
  std::size_t after = 0;
  EXPECT_GT(framesOf(signal, after), kSecond);
  EXPECT_EQ(after, 0U);
  ASSERT_NO_FATAL_FAILURE(expectOneAlertThatSays(
      "Nothing more came from the sound input “USB Mic”: it stands still, or the sound system does "
      "not answer. Recording has ended."));
  recorder_->prepareForDestruction();
  const auto kept = buffer_->bufferSizeInFrames();
  server_->thaw();
  ASSERT_TRUE(support::eventually([&] {
    recorder_ = OVAQRecorder::initWithBuffer(buffer_);
    return recorder_ != nullptr;
  }));
  recorder_->setWritingPosition(kept * testserver::kFrameBytes);
  recorder_->record();
  EXPECT_TRUE(support::eventually([&] { return buffer_->bufferSizeInFrames() > kept + kSecond; }));
}

class StoppedDelegate : public OVAQPlayerDelegate {
 public:
  void playerAdvancedToFrame(std::uint64_t) override {}
  void playerStoppedPlayback(OVAQPlayer*) override { ++stopped; }
  int stopped = 0;  // main thread
};

TEST_F(LostInputTest, AServerThatStandsStillEndsThePlaybackWhereItIs) {
  const auto delegate = std::make_shared<StoppedDelegate>();
  const auto player =
      OVAQPlayer::initWithBuffer(testserver::blockBufferWith(noise(20 * kSecond, 26)), 0);
  ASSERT_NE(player, nullptr);
  player->setDelegate(delegate);
  player->play();
  ASSERT_TRUE(runMainLoopUntil([&] { return player->readingPosition() > 400'000; }));
  server_->freeze();
  ASSERT_TRUE(runMainLoopUntil([&] { return delegate->stopped > 0; }));
  EXPECT_EQ(player->failure(), kDeviceStalledStatus);
  EXPECT_FALSE(player->isPlaying());
  const auto place = player->readingPosition();
  EXPECT_LT(place, 20 * kSecond * testserver::kFrameBytes);
  ASSERT_NO_FATAL_FAILURE(expectOneAlertThatSays("Playback has ended."));
  server_->thaw();
  player->stop();
  EXPECT_EQ(player->readingPosition(), place);
}

TEST_F(LostInputTest, AServerThatDiesIsToldInTheSameWordsEveryTimeForEachOfThreeStates) {
  struct Case {
    bool records;
    bool plays;
    const char* words;
    const char* notWords;
  };
  for (const Case& each : {Case{false, false, "before you press Record.", "ended"},
                           Case{false, true, "Playback has ended.", "Recording has ended"},
                           Case{true, true, "Recording has ended.", "Playback has ended"},
                           Case{true, false, "Recording has ended.", "Playback has ended"}}) {
    for (int round = 0; round < 2; ++round) {
      SCOPED_TRACE(std::string(each.words) + " " + std::to_string(round));
      services_->clear();
      ASSERT_NO_FATAL_FAILURE(makeRecorder());
      std::shared_ptr<OVAQPlayer> player;
      if (each.records) {
        recorder_->record();
      }
      if (each.plays) {
        player =
            OVAQPlayer::initWithBuffer(testserver::blockBufferWith(noise(20 * kSecond, 27)), 0);
        ASSERT_NE(player, nullptr);
        player->play();
        ASSERT_TRUE(support::eventually([&] { return player->readingPosition() > 100'000; }));
      }
      server_->kill();
      ASSERT_TRUE(awaitFailure(kDeviceLostStatus));
      recorder_->pause();
      ASSERT_NO_FATAL_FAILURE(expectOneAlertThatSays(each.words));
      EXPECT_THAT(services_->postedAlerts()[0].message, testing::Not(HasSubstr(each.notWords)));
      recorder_->prepareForDestruction();
      recorder_.reset();
      player.reset();
      installation_.reset();
      queues_ = std::make_shared<platform::DeviceAudioQueues>(platform::lateAudioDevice());
      installation_.emplace(queues_);
      ASSERT_TRUE(server_->restart());
    }
  }
}

TEST_F(LostInputTest, AServerThatIsRestartedThreeTimesInASecondIsRecordedFromAfterwards) {
  ASSERT_NO_FATAL_FAILURE(makeRecorder());
  recorder_->record();
  ASSERT_TRUE(server_->restart());
  ASSERT_TRUE(server_->restart());
  ASSERT_TRUE(server_->restart());
  ASSERT_TRUE(awaitFailure(kDeviceLostStatus));
  recorder_->pause();
  ASSERT_NO_FATAL_FAILURE(expectOneAlertThatSays("Recording has ended."));
  recorder_->prepareForDestruction();
  ASSERT_TRUE(support::eventually([&] {
    recorder_ = OVAQRecorder::initWithBuffer(buffer_, OVAQRecorder::DeviceAlerts::heldBack);
    return recorder_ != nullptr;
  }));
  recorder_->record();
  const auto before = buffer_->bufferSizeInFrames();
  EXPECT_TRUE(support::eventually([&] { return buffer_->bufferSizeInFrames() > before; }));
  EXPECT_THAT(services_->postedAlerts(), SizeIs(1));
}

TEST_F(LostInputTest, AMicrophoneWithoutAReasonableNameIsToldSafely) {
  ASSERT_NO_FATAL_FAILURE(plug("mic", "<b>" + std::string(300, 'x') + "</b>"));
  ASSERT_NO_FATAL_FAILURE(makeRecorder());
  recorder_->record();
  ASSERT_TRUE(awaitSource(AudioInputSource::Kind::kMicrophone));
  ASSERT_NO_FATAL_FAILURE(unplug());
  ASSERT_TRUE(awaitFailure(kDeviceLostStatus));
  recorder_->pause();
  expectOneAlertThatSays("“<b>" + std::string(56, 'x') + "…” has gone");
}

// A server that is stopped for some seconds, while one document records and another plays. Says in
// one line what was seen.
class FrozenServerTest : public LostInputTest, public testing::WithParamInterface<int> {
 protected:
  void TearDown() override {
    if (playing_) {
      playing_->stop();
    }
    LostInputTest::TearDown();
  }

  void recordAndPlay() {
    playing_ = OVAQPlayer::initWithBuffer(testserver::blockBufferWith(noise(100 * kSecond, 28)), 0);
    ASSERT_NE(playing_, nullptr);
    playing_->setDelegate(delegate_);
    ASSERT_NO_FATAL_FAILURE(recordSome(signal_));
    playing_->play();
    ASSERT_TRUE(runMainLoopUntil([&] { return playing_->readingPosition() > 100'000; }));
  }

  void freezeFor(std::chrono::seconds time) {
    server_->freeze();
    frozenAt_ = Clock::now();
    framesAtFreeze_ = buffer_->bufferSizeInFrames();
    ASSERT_TRUE(runMainLoopUntil(
        [&] {
          if (delegate_->stopped > 0 && !placeOfEnd_) {
            placeOfEnd_ = playing_->readingPosition();
          }
          return Clock::now() - frozenAt_ >= time;
        },
        time + support::kPatience));
    server_->thaw();
    frozenFor_ = Clock::now() - frozenAt_;
  }

  /// The recording goes on: either the server had kept everything and delivers it after a silence,
  /// or it dropped what came meanwhile, and silence of the same length stands for that.
  void expectBothGoOn() {
    const auto frames = buffer_->bufferSizeInFrames();
    ASSERT_TRUE(
        runMainLoopUntil([&] { return buffer_->bufferSizeInFrames() > frames + 3 * kSecond; }));
    const auto heard = playing_->readingPosition();
    ASSERT_TRUE(runMainLoopUntil([&] { return playing_->readingPosition() > heard + kSecond; }));
    EXPECT_EQ(failure_, 0);
    EXPECT_EQ(delegate_->stopped, 0);
    recorder_->pause();
    EXPECT_THAT(services_->postedAlerts(), IsEmpty());

    std::size_t after = 0;
    const std::size_t before = framesOf(signal_, after);
    const Samples all = contents(*buffer_);
    const std::size_t size = all.size() / support::kChannels;
    const std::size_t last = size - kSecond;
    const Samples probe(
        all.begin() + static_cast<std::ptrdiff_t>(last * support::kChannels),
        all.begin() + static_cast<std::ptrdiff_t>((last + 64) * support::kChannels));
    const auto place = findStart(probe, signal_);
    ASSERT_TRUE(place.has_value()) << "the signal does not go on";
    EXPECT_EQ(equalFrames(Samples(signal_.begin() +
                                      static_cast<std::ptrdiff_t>(*place * support::kChannels),
                                  signal_.end()),
                          all, last),
              kSecond);
    const std::size_t start = size - after - before;
    const double moved =
        (static_cast<double>(last - start) - static_cast<double>(*place)) / kSecond;
    const double lost = toldLost();
    EXPECT_NEAR(moved, lost > 0.0 ? 0.0 : frozenFor_.count(), 0.2);
    std::cout << "stopped for " << frozenFor_.count() << " s: both went on, what followed came "
              << moved << " s later, " << lost << " s were told as lost\n";
  }

  /// Seconds.
  double toldLost() const {
    double frames = 0.0;
    for (const auto& loss : recorder_->losses()) {
      frames += static_cast<double>(loss.frames);
    }
    return frames / kSecond;
  }

  void expectBothEnded() {
    EXPECT_EQ(failure_, kDeviceStalledStatus);
    EXPECT_EQ(playing_->failure(), kDeviceStalledStatus);
    EXPECT_EQ(delegate_->stopped, 1);
    EXPECT_EQ(placeOfEnd_, playing_->readingPosition());
    recorder_->pause();
    expectOneAlertThatSays("Recording has ended.");
    // A look of the stall watch comes twice a second.
    const Seconds told = failedAt_.load() - frozenAt_;
    EXPECT_GE(told.count(), 1.9);
    EXPECT_LE(told.count(), 3.5);
    std::size_t after = 0;
    EXPECT_GT(framesOf(signal_, after), kSecond);
    EXPECT_EQ(after, 0U);
    // What had been captured but not written: whole buffers, and the one that was being filled.
    const std::size_t kept = buffer_->bufferSizeInFrames();
    EXPECT_GE(kept, framesAtFreeze_);
    EXPECT_LE(kept, framesAtFreeze_ + 2 * platform::kRecordingChunkFrames);
    std::cout << "stopped for " << frozenFor_.count() << " s: both ended, told after "
              << told.count() << " s; " << framesAtFreeze_ << " frames were written before, "
              << kept << " are kept; playback stands at frame "
              << *placeOfEnd_ / testserver::kFrameBytes << "\n";
  }

  using Seconds = std::chrono::duration<double>;

  const Samples signal_ = noise(100 * kSecond, 24);
  const std::shared_ptr<StoppedDelegate> delegate_ = std::make_shared<StoppedDelegate>();
  std::shared_ptr<OVAQPlayer> playing_;
  Clock::time_point frozenAt_;
  Seconds frozenFor_{};
  std::size_t framesAtFreeze_ = 0;           // that had been written
  std::optional<std::uint64_t> placeOfEnd_;  // of the playback, when it ended
};

TEST_P(FrozenServerTest, BothGoOnAfterASecondAndEndWithEverythingKeptAfterMore) {
  const std::chrono::seconds time(GetParam());
  if (time > std::chrono::seconds(30) && std::getenv("ORVO_TEST_LONG_FREEZES") == nullptr) {
    GTEST_SKIP() << "takes a minute: scripts/test --freezes";
  }
  ASSERT_NO_FATAL_FAILURE(recordAndPlay());
  ASSERT_NO_FATAL_FAILURE(freezeFor(time));
  if (time <= std::chrono::seconds(1)) {
    expectBothGoOn();
  } else {
    expectBothEnded();
  }
}

INSTANTIATE_TEST_SUITE_P(Seconds, FrozenServerTest, testing::Values(1, 5, 60));

}  // namespace
