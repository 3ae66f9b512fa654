#include <algorithm>
#include <atomic>
#include <cstdint>
#include <memory>
#include <thread>
#include <vector>

#include <gmock/gmock.h>

#include "audio/OVAQRecorder.h"
#include "platform/mainloop/MainQueue.h"
#include "platform/sound/DeviceAudioQueues.h"
#include "support/Gate.h"
#include "support/MainLoop.h"
#include "support/TestAudio.h"
#include "support/ThreadCount.h"
#include "support/fakes/ManualAudioClock.h"
#include "support/fakes/MemoryTestBuffer.h"
#include "support/fakes/RecordingServices.h"
#include "support/fakes/ScriptedAudioDevice.h"

// The recorder over the real audio queues on a scripted device; its callback runs on the queue's
// thread.
namespace {

using platform::AudioStatus;
using support::Gate;
using support::ramp;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using Transfer = MemoryTestBuffer::Transfer;

constexpr std::uint64_t kFrameBytes = MemoryTestBuffer::kFrameBytes;

constexpr std::uint64_t kBlock = 4096;
constexpr std::uint64_t kBlockBytes = kBlock * kFrameBytes;

class OVAQRecorderThreadsTest : public testing::Test {
 protected:
  void SetUp() override {
    recorder_ = OVAQRecorder::initWithBuffer(buffer_);
    ASSERT_NE(recorder_, nullptr);
    ASSERT_TRUE(device_->awaitInputOpen());
  }
  void TearDown() override {
    if (recorder_) {
      recorder_->prepareForDestruction();
    }
  }

  /// Captures the next `frames` frames of the ramp, in chunks that do not divide a block.
  void feed(std::uint64_t frames) {
    while (frames > 0) {
      const auto chunk = std::min<std::uint64_t>(frames, 1102);
      ASSERT_TRUE(device_->feed(ramp(fed_, chunk)));
      fed_ += chunk;
      frames -= chunk;
    }
  }

  support::InstalledRecordingServices services_;
  std::shared_ptr<platform::ScriptedAudioDevice> device_ =
      std::make_shared<platform::ScriptedAudioDevice>();
  platform::Installed<platform::AudioQueues>::Scope installation_{
      std::make_shared<platform::DeviceAudioQueues>(
          device_, std::make_shared<platform::ManualAudioClock>())};
  std::shared_ptr<MemoryTestBuffer> buffer_ = std::make_shared<MemoryTestBuffer>();
  std::shared_ptr<OVAQRecorder> recorder_;
  std::atomic<std::uint64_t> fed_{0};  // only one thread feeds
};

TEST_F(OVAQRecorderThreadsTest, EveryWholeBufferOfARecordingIsWrittenInOrder) {
  recorder_->record();
  feed(10 * kBlock + 100);
  recorder_->pause();
  EXPECT_EQ(buffer_->samples(), ramp(0, 10 * kBlock));
  EXPECT_EQ(recorder_->writingPosition(), 10 * kBlockBytes);
  EXPECT_EQ(recorder_->queue()->lostFrames(), 0U);
}

TEST_F(OVAQRecorderThreadsTest, PauseWritesWhatWasCapturedThoughTheQueuesThreadIsHeldBack) {
  Gate gate;
  buffer_->beforeWrite = [&](const auto&) {
    gate.pass();
    EXPECT_TRUE(recorder_->isRecording());  // pause() has not returned
  };
  recorder_->record();
  feed(5 * kBlock + kBlock / 2);
  ASSERT_TRUE(gate.awaitArrival());
  std::thread helper([&] { gate.open(); });
  recorder_->pause();
  helper.join();
  EXPECT_EQ(buffer_->samples(), ramp(0, 5 * kBlock));
  EXPECT_EQ(recorder_->writingPosition(), 5 * kBlockBytes);
  feed(kBlock);  // completes the buffer being filled when pause() was called
  recorder_->queue()->waitUntilDelivered(6 * kBlock);
  EXPECT_THAT(buffer_->writes(), SizeIs(5));
}

TEST_F(OVAQRecorderThreadsTest, RecordBeginsWithTheBufferThatIsBeingFilled) {
  feed(2 * kBlock + 100);
  recorder_->record();
  feed(2 * kBlock);
  recorder_->pause();
  EXPECT_EQ(buffer_->samples(), ramp(2 * kBlock, 2 * kBlock));
}

TEST_F(OVAQRecorderThreadsTest, PauseThenRecordGoesOnWithoutAGapInTheBuffer) {
  recorder_->record();
  feed(2 * kBlock);
  recorder_->pause();
  feed(3 * kBlock);
  recorder_->record();
  feed(2 * kBlock);
  recorder_->pause();
  auto expected = ramp(0, 2 * kBlock);
  const auto second = ramp(5 * kBlock, 2 * kBlock);
  expected.insert(expected.end(), second.begin(), second.end());
  EXPECT_EQ(buffer_->samples(), expected);
}

TEST_F(OVAQRecorderThreadsTest, AClickDuringAWriteDecidesWhereTheNextBufferGoes) {
  Gate gate;
  buffer_->beforeWrite = [&](const auto&) { gate.pass(); };
  recorder_->record();
  feed(2 * kBlock);
  ASSERT_TRUE(gate.awaitArrival());
  recorder_->setWritingPosition(800);
  gate.open();
  recorder_->pause();
  EXPECT_THAT(buffer_->writes(), ElementsAre(Transfer{0, kBlockBytes}, Transfer{800, kBlockBytes}));
  EXPECT_EQ(recorder_->writingPosition(), 800 + kBlockBytes);
}

TEST_F(OVAQRecorderThreadsTest, PrepareForDestructionWaitsForTheWriteThatRunsAndAllowsNoOther) {
  Gate gate;
  std::atomic<bool> written{false};
  buffer_->beforeWrite = [&](const auto&) {
    gate.pass();
    written = true;
  };
  recorder_->record();
  feed(3 * kBlock);
  ASSERT_TRUE(gate.awaitArrival());
  std::thread helper([&] { gate.open(); });
  recorder_->prepareForDestruction();
  EXPECT_TRUE(written);
  const auto writes = buffer_->writes();
  helper.join();
  recorder_.reset();
  EXPECT_EQ(buffer_.use_count(), 1);
  EXPECT_EQ(buffer_->writes(), writes);
}

TEST_F(OVAQRecorderThreadsTest, LevelsAreLiveWhileNothingIsRecorded) {
  ASSERT_TRUE(device_->feedConstant(kBlock, 0.25F, -0.5F));
  recorder_->queue()->waitUntilDelivered(kBlock);
  EXPECT_THAT(recorder_->powerLevels(), testing::Optional(ElementsAre(0.5F, 0.25F)));
  EXPECT_THAT(buffer_->writes(), IsEmpty());
}

TEST_F(OVAQRecorderThreadsTest, AnInputLostWhileRecordingKeepsEverythingAndIsToldOnce) {
  std::atomic<AudioStatus> told{0};
  std::atomic<bool> onMainThread{true};
  recorder_->setFailureHandler([&](AudioStatus status) {
    onMainThread = platform::isMainThread();
    told = status;
  });
  recorder_->record();
  feed(3 * kBlock + 1000);
  testing::internal::CaptureStderr();
  device_->failInput(platform::kDeviceLostStatus);
  ASSERT_TRUE(runMainLoopUntil([&] { return told != 0; }));
  EXPECT_EQ(told, platform::kDeviceLostStatus);
  EXPECT_FALSE(onMainThread);
  EXPECT_EQ(recorder_->powerLevels(), std::nullopt);
  recorder_->pause();
  EXPECT_FALSE(recorder_->isRecording());
  EXPECT_EQ(buffer_->samples(), ramp(0, 3 * kBlock + 1000));
  EXPECT_EQ(recorder_->writingPosition(), (3 * kBlock + 1000) * kFrameBytes);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "Error: AudioQueueStart failed ('gone')\n");
  EXPECT_TRUE(runMainLoopUntil([&] { return !services_->postedAlerts().empty(); }));
  EXPECT_THAT(services_->postedAlerts(), SizeIs(1));
  EXPECT_THAT(services_->alerts(), IsEmpty());
  EXPECT_THAT(services_->postedAlerts()[0].message,
              testing::HasSubstr("The sound input “Microphone” has gone"));
}

TEST_F(OVAQRecorderThreadsTest, OneLostInputIsAlertedOnceForAllRecordersAndTheNext) {
  const auto second = OVAQRecorder::initWithBuffer(std::make_shared<MemoryTestBuffer>());
  ASSERT_NE(second, nullptr);
  recorder_->record();
  second->record();
  std::atomic<int> told{0};
  for (const auto& recorder : {recorder_, second}) {
    recorder->setFailureHandler([&](AudioStatus) { ++told; });
  }
  testing::internal::CaptureStderr();
  device_->failOpeningInput(platform::kDeviceUnavailableStatus);
  device_->failInput(platform::kDeviceLostStatus);
  ASSERT_TRUE(runMainLoopUntil([&] { return told == 2; }));
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(OVAQRecorder::initWithBuffer(buffer_), nullptr);
  }
  EXPECT_TRUE(runMainLoopUntil([&] { return !services_->postedAlerts().empty(); }));
  EXPECT_EQ(services_->alerts().size() + services_->postedAlerts().size(), 1U);
  second->prepareForDestruction();
  testing::internal::GetCapturedStderr();
}

TEST_F(OVAQRecorderThreadsTest, ARecorderMadeWithoutADeviceLeavesNothingBehind) {
  recorder_->prepareForDestruction();
  recorder_.reset();
  device_->failOpeningInput(platform::kDeviceUnavailableStatus);
  device_->failInput(platform::kDeviceLostStatus);
  ASSERT_TRUE(device_->awaitInputClosed());
  testing::internal::CaptureStderr();
  EXPECT_EQ(OVAQRecorder::initWithBuffer(buffer_), nullptr);
  const auto threads = support::threadCount();
  EXPECT_EQ(OVAQRecorder::initWithBuffer(buffer_), nullptr);
  EXPECT_EQ(support::threadCount(), threads);
  EXPECT_EQ(buffer_.use_count(), 1);
  testing::internal::GetCapturedStderr();
}

TEST_F(OVAQRecorderThreadsTest, ALastReferenceThatGoesOnTheQueuesThreadDoesNotDeadlock) {
  std::weak_ptr<OVAQRecorder> watched = recorder_;
  buffer_->beforeWrite = [&](const auto&) {
    recorder_->prepareForDestruction();
    recorder_.reset();
  };
  recorder_->record();
  const auto threads = support::threadCount();
  feed(kBlock);
  EXPECT_TRUE(
      runMainLoopUntil([&] { return watched.expired() && support::threadCount() < threads; }));
  EXPECT_TRUE(drainMainQueue());  // destroys the queue
  EXPECT_EQ(buffer_.use_count(), 1);
}

TEST_F(OVAQRecorderThreadsTest, TwoHundredRecordersInARowLeaveNothingBehind) {
  recorder_->prepareForDestruction();
  recorder_.reset();
  const auto threads = support::threadCount();
  std::uint64_t written = 0;
  for (int i = 0; i < 200; ++i) {
    auto recorder = OVAQRecorder::initWithBuffer(buffer_);
    ASSERT_NE(recorder, nullptr);
    recorder->setWritingPosition(written * kFrameBytes);
    recorder->record();
    feed(2 * kBlock);
    recorder->pause();
    EXPECT_EQ(recorder->writingPosition(), (written + 2 * kBlock) * kFrameBytes);
    written += 2 * kBlock;
    const std::weak_ptr<OVAQRecorder> watched = recorder;
    recorder->prepareForDestruction();
    recorder.reset();
    ASSERT_TRUE(watched.expired());
  }
  EXPECT_EQ(buffer_->samples(), ramp(0, 400 * kBlock));
  EXPECT_EQ(buffer_.use_count(), 1);
  EXPECT_EQ(support::threadCount(), threads);
  // If the machine hangs for seconds, the device only seems late.
  EXPECT_THAT(services_->consoleLines(), Each(HasSubstr("lost inside the sound system")));
}

TEST_F(OVAQRecorderThreadsTest, PressesAtAnyMomentRecordWholeBuffersWithoutAGap) {
  // Frames that the microphone may feed, also those that nobody captures after a pause: a few
  // buffers more than were written, so that the ring never fills, yet record() and pause() come at
  // any moment.
  std::atomic<std::uint64_t> allowed{0};
  std::atomic<bool> ended{false};
  std::thread microphone([&] {
    while (!ended) {
      if (fed_ < allowed) {
        feed(500);
      } else {
        std::this_thread::yield();
      }
    }
  });
  for (int press = 0; press < 40; ++press) {
    recorder_->setWritingPosition(0);
    const auto before = buffer_->writes().size();
    auto seen = before;
    allowed = fed_ + 4 * kBlock;
    recorder_->record();
    allowed = fed_ + 4 * kBlock;  // all of those may have come before the press
    const bool hasRecorded = runMainLoopUntil([&] {
      const auto now = buffer_->writes().size();
      allowed += (now - seen) * kBlock;
      seen = now;
      return recorder_->powerLevels().has_value() && now >= before + 2;
    });
    recorder_->pause();
    EXPECT_TRUE(hasRecorded) << press;
    if (!hasRecorded) {
      break;
    }
    const auto written = (buffer_->writes().size() - before) * kBlock;
    EXPECT_EQ(recorder_->writingPosition(), written * kFrameBytes);
    const auto samples = buffer_->samples();
    const auto expected = ramp(static_cast<std::uint64_t>(samples.at(0)), written);
    EXPECT_TRUE(std::equal(expected.begin(), expected.end(), samples.begin())) << press;
  }
  ended = true;
  microphone.join();
  EXPECT_EQ(recorder_->queue()->lostFrames(), 0U);
}

}  // namespace
