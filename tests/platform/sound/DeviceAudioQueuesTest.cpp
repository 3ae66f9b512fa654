#include "platform/sound/DeviceAudioQueues.h"

#include "platform/sound/AudioQueueFixture.h"

namespace platform::test {
namespace {

using DeviceAudioQueuesTest = AudioQueueFixture;

TEST_F(DeviceAudioQueuesTest, OtherFormatsAreRefusedWithoutTouchingTheDevice) {
  const AudioStreamBasicDescription zero;
  EXPECT_EQ(queues->newInput(zero, {}, {}).error(), kInvalidParameterStatus);
  EXPECT_EQ(queues->newOutput(zero, {}).error(), kInvalidParameterStatus);
  EXPECT_EQ(device->inputsOpened(), 0U);
  EXPECT_EQ(device->outputsOpened(), 0U);
  auto format = kWorkingFormat;
  EXPECT_EQ(queues->completeFormat(format), kAudioStatusOk);
}

TEST_F(DeviceAudioQueuesTest, PreparingReturnsAtOnceAndReachesTheDevice) {
  device->hang();
  queues->prepareInput();
  ASSERT_TRUE(device->awaitHanging());
  device->release();
  EXPECT_TRUE(device->awaitInputOpen());
  EXPECT_TRUE(support::eventually([&] { return device->preparations() == 1; }));
}

TEST_F(DeviceAudioQueuesTest, DestructionClosesWhatIsOpenAndReleasesTheDevice) {
  Recording recording;
  Playback playback;
  ASSERT_EQ(recording.begin(*queues), kAudioStatusOk);
  ASSERT_EQ(playback.begin(*queues), kAudioStatusOk);
  recording.queue.reset();
  playback.queue.reset();
  queues.reset();
  EXPECT_EQ(device->inputsClosed(), 1U);
  EXPECT_EQ(device->outputsClosed(), 1U);
  EXPECT_EQ(device.use_count(), 1);
}

TEST_F(DeviceAudioQueuesTest, QueuesGoOnWhenTheirMakerIsGone) {
  Recording recording;
  Playback playback;
  playback.source = ramp(1, 5000);
  ASSERT_EQ(recording.begin(*queues), kAudioStatusOk);
  ASSERT_EQ(playback.begin(*queues), kAudioStatusOk);
  queues.reset();
  EXPECT_TRUE(device->feed(ramp(0, kRecordFrames)));
  EXPECT_TRUE(recording.endFrames.awaitCount(1));
  EXPECT_EQ(device->pull(100), ramp(1, 100));
  playback.queue.reset();
  recording.queue.reset();
  EXPECT_EQ(device->inputsClosed(), 1U);
  EXPECT_EQ(device->outputsClosed(), 1U);
}

TEST_F(DeviceAudioQueuesTest, DestructionDoesNotWaitForADeviceThatHangs) {
  Recording recording;
  ASSERT_EQ(recording.begin(*queues), kAudioStatusOk);
  device->hang();
  recording.queue.reset();
  queues.reset();  // would wait forever
  EXPECT_EQ(device->inputsClosed(), 0U);
  device->release();
  EXPECT_TRUE(device->awaitInputClosed());
  EXPECT_TRUE(support::eventually([&] { return device.use_count() == 1; }));
}

}  // namespace
}  // namespace platform::test
