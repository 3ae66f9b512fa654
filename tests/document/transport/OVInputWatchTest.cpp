#include "document/transport/OVInputWatch.h"

#include <memory>
#include <vector>

#include <gmock/gmock.h>

#include "document/OVDocumentParts.h"
#include "storage/OVBlockBuffer.h"
#include "support/fakes/RecordingServices.h"
#include "support/fakes/SteppedAudioQueues.h"

namespace {

using platform::AudioInputSource;
using testing::IsEmpty;
using testing::SizeIs;

constexpr std::uint32_t kChunkFrames = 4096;

class OVInputWatchTest : public testing::Test {
 protected:
  OVInputWatchTest() {
    queues_->inputSource = {.kind = AudioInputSource::Kind::kMicrophone,
                            .isOpen = true,
                            .id = "mic",
                            .name = "USB Mic"};
    parts_.audio.setBuffer(buffer_);
    parts_.transport.bufferChanged();
    parts_.summaries->setBuffer(buffer_);
  }
  ~OVInputWatchTest() override { parts_.transport.pause(); }

  void capture(float value) {
    captured_ += kChunkFrames;
    queues_->capturedFrames = captured_;
    ASSERT_TRUE(queues_.input().deliver(std::vector<float>(2 * kChunkFrames, value), captured_));
  }
  void recordALoss() {
    parts_.transport.record();
    parts_.transport.recordedUpTo(0);
    capture(0.5F);
    captured_ += 441;
    queues_->lostFrames += 441;
    ASSERT_TRUE(queues_.input().deliverSilence(441, captured_));
    capture(0.5F);
  }

  support::InstalledRecordingServices services_;
  support::InstalledSteppedQueues queues_;
  std::shared_ptr<OVBlockBuffer> buffer_ = OVBlockBuffer::init();
  OVDocumentParts parts_{OVDocumentParts::Operations{}};
  OVInputWatch watch_{parts_.transport};
  std::uint64_t captured_ = 0;
};

TEST_F(OVInputWatchTest, TheFirstLookIsNewsAndTheSameAgainIsNot) {
  EXPECT_TRUE(watch_.look());
  EXPECT_EQ(watch_.state().source, queues_->inputSource);
  EXPECT_FALSE(watch_.look());
}

TEST_F(OVInputWatchTest, AtRestTheSourceIsCopiedOnlyWhenItHasChanged) {
  EXPECT_TRUE(watch_.look());
  const int copies = queues_->inputSourceCopies;
  for (int i = 0; i < 100; ++i) {
    EXPECT_FALSE(watch_.look());
  }
  EXPECT_EQ(queues_->inputSourceCopies, copies);
  queues_->inputSource.name = "Headset";
  EXPECT_TRUE(watch_.look());
  EXPECT_EQ(watch_.state().source.name, "Headset");
  EXPECT_EQ(queues_->inputSourceCopies, copies + 1);
}

TEST_F(OVInputWatchTest, AnotherSoundSystemsSourceIsAnotherOne) {
  EXPECT_TRUE(watch_.look());
  const support::InstalledSteppedQueues others;
  EXPECT_TRUE(watch_.look());
  EXPECT_EQ(watch_.state().source, AudioInputSource());
}

TEST_F(OVInputWatchTest, EachChangeOfARecordingIsNewsOnce) {
  EXPECT_TRUE(watch_.look());
  parts_.transport.record();
  EXPECT_TRUE(watch_.look());
  EXPECT_FALSE(watch_.look());
  capture(0);
  EXPECT_TRUE(watch_.look());
  EXPECT_EQ(watch_.state().silentFrames, kChunkFrames);
  EXPECT_FALSE(watch_.look());
  parts_.transport.recordedUpTo(kChunkFrames);
  EXPECT_TRUE(watch_.look());
  EXPECT_TRUE(watch_.state().hasRecorded);
  parts_.transport.pause();
  EXPECT_TRUE(watch_.look());
  EXPECT_FALSE(watch_.state().isRecording);
  EXPECT_FALSE(watch_.look());
}

TEST_F(OVInputWatchTest, ALossIsNewsOnceAndStaysUntilTheNextRecording) {
  recordALoss();
  EXPECT_TRUE(watch_.look());
  EXPECT_THAT(watch_.state().losses, SizeIs(1));
  EXPECT_FALSE(watch_.look());
  parts_.transport.pause();
  EXPECT_TRUE(watch_.look());
  EXPECT_FALSE(watch_.look());
  EXPECT_THAT(watch_.state().losses, SizeIs(1));
  parts_.transport.record();
  EXPECT_TRUE(watch_.look());
  EXPECT_THAT(watch_.state().losses, IsEmpty());
}

TEST_F(OVInputWatchTest, ALossOfTheNextRecordingIsNotTakenForTheFormerOne) {
  recordALoss();
  EXPECT_TRUE(watch_.look());
  parts_.transport.pause();
  const auto former = watch_.state().losses;
  recordALoss();  // with no look in between
  EXPECT_TRUE(watch_.look());
  ASSERT_THAT(watch_.state().losses, SizeIs(1));
  EXPECT_NE(watch_.state().losses[0].atFrame, former[0].atFrame);
}

}  // namespace
