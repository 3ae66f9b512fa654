#include "audio/DeviceLossAlert.h"

#include <algorithm>
#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>

#include "platform/mainloop/Timer.h"
#include "support/MainLoop.h"
#include "support/fakes/RecordingServices.h"
#include "support/fakes/SteppedAudioQueues.h"

namespace {

using platform::kDeviceLostStatus;
using platform::kDeviceStalledStatus;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

class DeviceLossAlertTest : public testing::Test {
 protected:
  DeviceLossAlertTest() { testing::internal::CaptureStderr(); }
  ~DeviceLossAlertTest() override { testing::internal::GetCapturedStderr(); }

  static void report(OVInterrupted interrupted, platform::AudioStatus status = kDeviceLostStatus) {
    reportDeviceLoss(interrupted, status, "AudioQueueStart failed");
  }

  bool awaitAlert() {
    return runMainLoopUntil([this] { return !services_->postedAlerts().empty(); });
  }

  /// Runs the main loop until an alert that is due by now would have been shown.
  static void passGathering() {
    bool passed = false;
    const platform::Timer timer(kDeviceLossGathered + 0.1, [&] { passed = true; });
    EXPECT_TRUE(runMainLoopUntil([&] { return passed; }));
  }

  support::InstalledRecordingServices services_;
  support::InstalledSteppedQueues queues_;
};

TEST_F(DeviceLossAlertTest, OneServersLossesAreOneAlertInTheSameWordsWhateverTheirOrder) {
  std::vector<OVInterrupted> order{OVInterrupted::nothing, OVInterrupted::playback,
                                   OVInterrupted::recording};
  do {
    const support::InstalledRecordingServices services;
    const support::InstalledSteppedQueues queues;
    for (const OVInterrupted interrupted : order) {
      report(interrupted);
    }
    ASSERT_TRUE(runMainLoopUntil([&] { return !services->postedAlerts().empty(); }));
    EXPECT_THAT(services->postedAlerts(), SizeIs(1));
    EXPECT_THAT(services->postedAlerts()[0].message, HasSubstr("Recording has ended."));
  } while (std::next_permutation(order.begin(), order.end()));
}

TEST_F(DeviceLossAlertTest, APlaybackAndAnIdleInputAreToldAsPlayback) {
  report(OVInterrupted::nothing);
  report(OVInterrupted::playback);
  report(OVInterrupted::nothing);
  ASSERT_TRUE(awaitAlert());
  EXPECT_THAT(services_->postedAlerts()[0].message, HasSubstr("Playback has ended."));
}

TEST_F(DeviceLossAlertTest, AnIdleInputIsToldWithoutAWordOfARecording) {
  queues_->lostInput.name = "USB Mic";
  report(OVInterrupted::nothing);
  ASSERT_TRUE(awaitAlert());
  EXPECT_THAT(services_->postedAlerts()[0].title, "Core Audio Error");
  EXPECT_THAT(services_->postedAlerts()[0].message,
              testing::StartsWith("Core Audio returned the error: AudioQueueStart failed ('gone')"
                                  "\n\nThe sound input “USB Mic” has gone"));
  EXPECT_THAT(services_->postedAlerts()[0].message, testing::Not(HasSubstr("ended")));
}

TEST_F(DeviceLossAlertTest, TenRecordingsAreOneAlert) {
  std::vector<std::thread> threads;
  for (int i = 0; i < 10; ++i) {
    threads.emplace_back([] { report(OVInterrupted::recording); });
  }
  for (auto& thread : threads) {
    thread.join();
  }
  ASSERT_TRUE(awaitAlert());
  passGathering();
  EXPECT_THAT(services_->postedAlerts(), SizeIs(1));
}

TEST_F(DeviceLossAlertTest, ALossSoonAfterTheAlertIsNotToldAgainAndALaterOneIs) {
  DeviceLossAlert::Clock::time_point now{std::chrono::hours(1)};
  DeviceLossAlert alert([&now] { return now; });
  const auto lose = [&alert] {
    alert.add(platform::audioQueues(),
              {OVInterrupted::recording, kDeviceLostStatus, "AudioQueueStart failed", "Mic"});
  };
  lose();
  ASSERT_TRUE(awaitAlert());
  now += DeviceLossAlert::kRemembered - std::chrono::milliseconds(1);
  lose();
  passGathering();
  EXPECT_THAT(services_->postedAlerts(), SizeIs(1));
  now += std::chrono::milliseconds(1);
  lose();
  EXPECT_TRUE(runMainLoopUntil([this] { return services_->postedAlerts().size() == 2; }));
}

TEST_F(DeviceLossAlertTest, AMoreImportantLossThatComesLaterIsStillTold) {
  report(OVInterrupted::playback);
  ASSERT_TRUE(awaitAlert());
  report(OVInterrupted::recording);
  ASSERT_TRUE(runMainLoopUntil([this] { return services_->postedAlerts().size() == 2; }));
  EXPECT_THAT(services_->postedAlerts()[1].message, HasSubstr("Recording has ended."));
}

TEST_F(DeviceLossAlertTest, AnIdleInputThatAnotherMicrophoneReplacesOrThatStandsStillIsNoAlert) {
  report(OVInterrupted::nothing, kDeviceStalledStatus);
  passGathering();
  queues_->inputSource.kind = platform::AudioInputSource::Kind::kMicrophone;
  report(OVInterrupted::nothing);
  passGathering();
  EXPECT_THAT(services_->postedAlerts(), IsEmpty());
  queues_->inputSource.kind = platform::AudioInputSource::Kind::kMonitor;
  report(OVInterrupted::nothing);
  EXPECT_TRUE(awaitAlert());
}

TEST_F(DeviceLossAlertTest, ALossOfASoundSystemThatIsNotUsedAnyMoreIsNotTold) {
  {
    const support::InstalledSteppedQueues former;
    report(OVInterrupted::recording);
    EXPECT_TRUE(drainMainQueue());
  }
  passGathering();
  EXPECT_THAT(services_->postedAlerts(), IsEmpty());
}

}  // namespace
