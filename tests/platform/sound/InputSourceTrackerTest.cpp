#include "platform/sound/InputSourceTracker.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace platform::test {
namespace {

using Change = InputSourceTracker::Change;
using Kind = AudioInputSource::Kind;

AudioInputDevice input(const std::string& id, bool isDefault = false) {
  return {
      .id = id, .name = "The " + id, .isMonitor = id.ends_with(".monitor"), .isDefault = isDefault};
}

/// A sound system whose answers the test sets.
class FakeSystem final : public AudioDevice, public AudioInputStream {
 public:
  Input openInput(AudioInputClient&) override { return kDeviceUnavailableStatus; }
  Output openOutput(AudioOutputClient&) override { return kDeviceUnavailableStatus; }
  std::optional<std::vector<AudioInputDevice>> inputs() override {
    ++looks;
    return listed;
  }
  std::string currentInput() override { return current; }

  std::optional<std::vector<AudioInputDevice>> listed;
  std::string current;
  int looks = 0;
};

class InputSourceTrackerTest : public testing::Test {
 protected:
  Change look(bool inputsChanged = false) { return tracker_.look(system_, system_, inputsChanged); }
  void open() { tracker_.opened(system_, system_); }

  FakeSystem system_;
  InputSourceTracker tracker_;
};

TEST_F(InputSourceTrackerTest, NothingIsKnownAtFirst) {
  EXPECT_EQ(tracker_.source(), AudioInputSource{});
}

TEST_F(InputSourceTrackerTest, AnOpenStreamsSourceIsItsInputWithItsName) {
  system_.listed = {{input("spk.monitor"), input("mic", true)}};
  system_.current = "mic";
  open();
  EXPECT_EQ(tracker_.source(),
            (AudioInputSource{
                .kind = Kind::kMicrophone, .isOpen = true, .id = "mic", .name = "The mic"}));
  EXPECT_EQ(look(), Change::kNone);
  EXPECT_EQ(look(true), Change::kNone);
}

TEST_F(InputSourceTrackerTest, AMonitorIsNamedAsOne) {
  system_.listed = {{input("spk.monitor", true)}};
  system_.current = "spk.monitor";
  open();
  EXPECT_EQ(tracker_.source().kind, Kind::kMonitor);
}

TEST_F(InputSourceTrackerTest, AStreamThatWasMovedFromAVanishedInputIsLost) {
  system_.listed = {{input("mic", true), input("spk.monitor")}};
  system_.current = "mic";
  open();
  system_.listed = {{input("spk.monitor", true)}};
  system_.current = "spk.monitor";
  EXPECT_EQ(look(), Change::kLost);
  EXPECT_EQ(tracker_.lost().name, "The mic");
  EXPECT_EQ(tracker_.source().kind, Kind::kMonitor);
  EXPECT_FALSE(tracker_.source().isOpen);
  tracker_.closed(system_);
  EXPECT_EQ(tracker_.source().kind, Kind::kMonitor);
  EXPECT_FALSE(tracker_.source().isOpen);
  EXPECT_EQ(tracker_.lost().name, "The mic");
}

TEST_F(InputSourceTrackerTest, AnInputThatVanishedIsLostBeforeTheStreamWasMoved) {
  system_.listed = {{input("mic", true), input("other")}};
  system_.current = "mic";
  open();
  system_.listed = {{input("other", true)}};
  EXPECT_EQ(look(true), Change::kLost);
}

TEST_F(InputSourceTrackerTest, AStreamThatWasMovedWhileItsInputExistsFollows) {
  system_.listed = {{input("mic", true), input("spk.monitor")}};
  system_.current = "mic";
  open();
  system_.current = "spk.monitor";
  EXPECT_EQ(look(), Change::kMoved);
  EXPECT_EQ(tracker_.source().kind, Kind::kMonitor);
  EXPECT_EQ(look(), Change::kNone);
  // From now on that input is the one that can be lost.
  system_.listed = {{input("mic", true)}};
  EXPECT_EQ(look(true), Change::kLost);
  EXPECT_EQ(tracker_.lost().id, "spk.monitor");
}

TEST_F(InputSourceTrackerTest, OtherInputsThatComeAndGoChangeNothing) {
  system_.listed = {{input("mic", true)}};
  system_.current = "mic";
  open();
  system_.listed = {{input("mic"), input("better", true)}};
  EXPECT_EQ(look(true), Change::kNone);
  system_.listed = {{input("mic", true)}};
  EXPECT_EQ(look(true), Change::kNone);
  EXPECT_EQ(tracker_.source().id, "mic");
}

TEST_F(InputSourceTrackerTest, TheSoundSystemIsAskedOnlyWhenSomethingHasChanged) {
  system_.listed = {{input("mic", true)}};
  system_.current = "mic";
  open();
  const int looks = system_.looks;
  EXPECT_EQ(look(), Change::kNone);
  EXPECT_EQ(system_.looks, looks);
  EXPECT_EQ(look(true), Change::kNone);
  EXPECT_EQ(system_.looks, looks + 1);
}

TEST_F(InputSourceTrackerTest, AStreamOnAnInputThatIsNotListedIsNotLookedUpAgainAndAgain) {
  system_.listed = {{input("hw:0", true)}};
  system_.current = "default";
  open();
  const int looks = system_.looks;
  for (int i = 0; i < 5; ++i) {
    EXPECT_EQ(look(), Change::kNone);
  }
  EXPECT_EQ(system_.looks, looks);
}

TEST_F(InputSourceTrackerTest, EveryChangeOfTheSourceIsARevisionAndNothingElse) {
  system_.listed = {{input("mic", true), input("spk.monitor")}};
  system_.current = "mic";
  std::uint64_t revision = tracker_.revision();
  const auto changed = [&] { return std::exchange(revision, tracker_.revision()) != revision; };
  open();
  EXPECT_TRUE(changed());
  static_cast<void>(look());
  static_cast<void>(look(true));
  EXPECT_FALSE(changed());
  system_.current = "spk.monitor";
  static_cast<void>(look());
  EXPECT_TRUE(changed());
  system_.listed = {{input("mic", true)}};
  static_cast<void>(look(true));
  EXPECT_TRUE(changed());
  tracker_.closed(system_);
  EXPECT_FALSE(changed()) << "the same as after the loss";
  tracker_.setLost();
  EXPECT_TRUE(changed());
  tracker_.setLost();
  EXPECT_FALSE(changed());
}

TEST_F(InputSourceTrackerTest, ASoundSystemThatDoesNotAnswerLosesNothing) {
  system_.listed = {{input("mic", true)}};
  system_.current = "mic";
  open();
  system_.listed.reset();
  system_.current = "spk.monitor";
  EXPECT_EQ(look(true), Change::kNone);
  EXPECT_EQ(tracker_.source().id, "mic");
}

TEST_F(InputSourceTrackerTest, AStreamWhoseInputTheListNeverHadIsNeverLost) {
  system_.listed = {{input("hw:0", true)}};
  system_.current = "default";
  open();
  EXPECT_EQ(tracker_.source().kind, Kind::kUnknown);
  EXPECT_TRUE(tracker_.source().isOpen);
  EXPECT_EQ(look(true), Change::kNone);
  system_.current = "other";
  EXPECT_EQ(look(), Change::kMoved);
}

TEST_F(InputSourceTrackerTest, ASoundSystemThatDoesNotSayWhereAStreamIsLosesNothing) {
  system_.listed = {{input("mic", true)}};
  system_.current = "mic";
  open();
  system_.current.clear();
  EXPECT_EQ(look(), Change::kNone);
  EXPECT_EQ(look(true), Change::kNone);
}

TEST_F(InputSourceTrackerTest, WithoutAStreamTheSourceIsTheDefaultOrTheFirstOrNone) {
  system_.listed = {{input("spk.monitor"), input("mic", true)}};
  tracker_.closed(system_);
  EXPECT_EQ(tracker_.source().id, "mic");
  system_.listed = {{input("spk.monitor"), input("mic")}};
  tracker_.closed(system_);
  EXPECT_EQ(tracker_.source().id, "spk.monitor");
  system_.listed->clear();
  tracker_.closed(system_);
  EXPECT_EQ(tracker_.source().kind, Kind::kNone);
  system_.listed.reset();
  tracker_.closed(system_);
  EXPECT_EQ(tracker_.source().kind, Kind::kNone);
}

}  // namespace
}  // namespace platform::test
