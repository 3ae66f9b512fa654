#include "document/display/OVInputNotices.h"

#include <chrono>
#include <cstdint>
#include <string>

#include <gtest/gtest.h>

#include "support/fakes/RecordingServices.h"

namespace {

using Kind = platform::AudioInputSource::Kind;
using Place = OVRecordingLoss::Place;

constexpr std::uint64_t kSecond = platform::kWorkingRate;

class OVInputNoticesTest : public testing::Test {
 protected:
  void update() { inputNotices_.update(state_); }
  void record() {
    state_.isRecording = true;
    state_.hasRecorded = true;
    state_.losses.clear();
    update();
  }
  void pause() {
    state_.isRecording = false;
    state_.silentFrames = 0;
    update();
  }
  void capture(Kind kind, const std::string& id, const std::string& name) {
    state_.source = {.kind = kind, .isOpen = true, .id = id, .name = name};
  }
  void lose(std::uint64_t atFrame, std::uint64_t frames, Place place = Place::silence) {
    state_.losses.push_back({atFrame, frames, place, std::chrono::system_clock::now()});
  }
  /// Ends the notice that is shown.
  void fade() {
    now_ += OVNotices::kShownFor;
    notices_.tick();
  }
  std::string shown() const { return notices_.text().toStdString(); }

  support::InstalledRecordingServices services_;
  OVNotices::TimePoint now_{std::chrono::hours(1)};
  OVNotices notices_{[this] { return now_; }};
  OVInputNotices inputNotices_{notices_, [] { return QStringLiteral("Take <1>"); }};
  OVInputState state_;
};

TEST_F(OVInputNoticesTest, AtRestWithAMicrophoneNothingIsShown) {
  capture(Kind::kMicrophone, "mic", "USB Mic");
  update();
  EXPECT_EQ(shown(), "");
}

TEST_F(OVInputNoticesTest, ARecordingBeginsWithTheNameOfItsInputForSomeSeconds) {
  capture(Kind::kMicrophone, "mic", "Built-in Microphone");
  record();
  EXPECT_EQ(shown(), "Recording from Built-in Microphone");
  update();
  fade();
  update();
  EXPECT_EQ(shown(), "");
  pause();
  fade();
  record();
  EXPECT_EQ(shown(), "Recording from Built-in Microphone");
}

TEST_F(OVInputNoticesTest, AnInputThatIsKnownLateIsNamedThen) {
  record();
  EXPECT_EQ(shown(), "");
  capture(Kind::kMicrophone, "mic", "USB Mic");
  update();
  EXPECT_EQ(shown(), "Recording from USB Mic");
}

TEST_F(OVInputNoticesTest, AnInputThatOnlyWouldBeRecordedFromIsNotNamed) {
  capture(Kind::kMicrophone, "mic", "USB Mic");
  record();
  fade();
  state_.source = {.kind = Kind::kMonitor, .isOpen = false, .id = "spk.monitor", .name = "Monitor"};
  update();
  EXPECT_EQ(shown(), "");
}

TEST_F(OVInputNoticesTest, AMovedStreamSaysWhatItRecordsFromNow) {
  capture(Kind::kMicrophone, "mic", "USB Mic");
  record();
  capture(Kind::kMicrophone, "other", "Headset");
  update();
  EXPECT_EQ(shown(), "Recording from Headset");
}

TEST_F(OVInputNoticesTest, AnInputWithoutANameIsTheDefaultInput) {
  capture(Kind::kMicrophone, "mic", " \n ");
  record();
  EXPECT_EQ(shown(), "Recording from the default input");
}

TEST_F(OVInputNoticesTest, AnInputWithoutAnIdIsToldOfTooAndOnce) {
  capture(Kind::kUnknown, "", "");
  record();
  EXPECT_EQ(shown(), "Recording from the default input");
  fade();
  update();
  EXPECT_EQ(shown(), "");
}

TEST_F(OVInputNoticesTest, ANameIsShownInOneLineAndCut) {
  capture(Kind::kMicrophone, "mic", "<b>A</b>\nB" + std::string(300, 'x'));
  record();
  EXPECT_EQ(shown(), "Recording from <b>A</b> B" + std::string(49, 'x') + "…");
}

TEST_F(OVInputNoticesTest, AMachineWithoutAnyInputSaysSoUntilThereIsOne) {
  state_.source.kind = Kind::kNone;
  update();
  EXPECT_EQ(shown(), "No microphone");
  fade();
  update();
  EXPECT_EQ(shown(), "No microphone");
  capture(Kind::kMicrophone, "mic", "USB Mic");
  state_.source.isOpen = false;
  update();
  EXPECT_EQ(shown(), "");
}

TEST_F(OVInputNoticesTest, ARecordingFromAMonitorSaysSoAsLongAsItRuns) {
  capture(Kind::kMonitor, "spk.monitor", "Monitor of Loudspeaker");
  update();
  EXPECT_EQ(shown(), "");
  record();
  EXPECT_EQ(shown(), "No microphone: recording what this computer plays");
  fade();
  fade();
  EXPECT_EQ(shown(), "No microphone: recording what this computer plays");
  pause();
  EXPECT_EQ(shown(), "Recording has been paused.");
}

TEST_F(OVInputNoticesTest, FiveSecondsOfDigitalSilenceAreToldUntilSoundComes) {
  capture(Kind::kMicrophone, "mic", "USB Mic");
  record();
  fade();
  state_.silentFrames = 5 * kSecond - 1;
  update();
  EXPECT_EQ(shown(), "");
  state_.silentFrames = 5 * kSecond;
  update();
  EXPECT_EQ(shown(), "Nothing is coming in");
  fade();
  update();
  EXPECT_EQ(shown(), "Nothing is coming in");
  state_.silentFrames = 0;
  update();
  EXPECT_EQ(shown(), "");
  state_.silentFrames = 6 * kSecond;
  update();
  pause();
  EXPECT_EQ(shown(), "Recording has been paused.");
}

TEST_F(OVInputNoticesTest, LostFramesAreToldAtOnceWithLengthAndPlaceAndOnceOnTheConsole) {
  capture(Kind::kMicrophone, "mic", "USB Mic");
  record();
  lose((12 * 60 + 31) * kSecond + 5, kSecond * 3 / 10);
  update();
  update();
  EXPECT_EQ(shown(), "0.3 s were lost at 12:31");
  ASSERT_EQ(services_->consoleLines().size(), 1U);
  const std::string line = services_->consoleLines()[0];
  EXPECT_EQ(
      line.find("Recording \"Take <1>\": 13230 frames (0.300 s) were lost at 12:31, noticed "), 0U)
      << line;
  EXPECT_NE(line.find("silence stands in their place"), std::string::npos) << line;
  EXPECT_TRUE(services_->alerts().empty() && services_->postedAlerts().empty());
}

TEST_F(OVInputNoticesTest, PlacesBeyondAnHourAndShortAndLongGapsAreLegible) {
  record();
  lose((3600 + 2 * 60 + 3) * kSecond, 96);
  update();
  EXPECT_EQ(shown(), "0.002 s were lost at 1:02:03");
  lose(0, 70 * kSecond, Place::nothing);
  update();
  EXPECT_EQ(shown(), "70.0 s were lost at 00:00");
  EXPECT_EQ(services_->consoleLinesWith("nothing stands in their place"), 1U);
}

TEST_F(OVInputNoticesTest, AfterTheRecordingOneNoticeHasTheSum) {
  record();
  lose(4 * kSecond, kSecond / 2);
  lose(9 * kSecond, kSecond);
  update();
  lose(10 * kSecond, kSecond / 2, Place::nothing);  // found at the end
  pause();
  EXPECT_EQ(shown(), "Lost in this recording: 2.0 s, first at 00:04");
  EXPECT_EQ(services_->consoleLines().size(), 3U);
  fade();
  EXPECT_EQ(shown(), "Recording has been paused.");
  record();
  EXPECT_EQ(shown(), "");
  pause();
  EXPECT_EQ(shown(), "Recording has been paused.");
}

TEST_F(OVInputNoticesTest, ARecordingThatWasRolledBackSaysNothing) {
  capture(Kind::kMicrophone, "mic", "USB Mic");
  record();
  state_.hasRecorded = false;
  pause();
  EXPECT_EQ(shown(), "");
}

}  // namespace
