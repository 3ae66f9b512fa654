#include <algorithm>
#include <cstdint>
#include <memory>
#include <vector>

#include <gmock/gmock.h>

#include "document/OVDocumentParts.h"
#include "storage/OVBlockBuffer.h"
#include "support/MainLoop.h"
#include "support/fakes/RecordingServices.h"
#include "support/fakes/SteppedAudioQueues.h"

// What the transport knows of its input, and the notices that follow from it.
namespace {

using platform::AudioInputSource;
using testing::IsEmpty;
using testing::SizeIs;

constexpr std::uint32_t kChunkFrames = 4096;

class OVTransportInputTest : public testing::Test {
 protected:
  OVTransportInputTest() {
    queues_->inputSource = {.kind = AudioInputSource::Kind::kMicrophone,
                            .isOpen = true,
                            .id = "mic",
                            .name = "USB Mic"};
    parts_.audio.setBuffer(buffer_);
    parts_.transport.bufferChanged();
    parts_.summaries->setBuffer(buffer_);
  }
  ~OVTransportInputTest() override { parts_.transport.pause(); }

  void capture(float value) {
    captured_ += kChunkFrames;
    queues_->capturedFrames = captured_;
    ASSERT_TRUE(queues_.input().deliver(std::vector<float>(2 * kChunkFrames, value), captured_));
  }
  void lose(std::uint32_t frames) { loseBefore(captured_ + frames, frames); }
  /// Frames that are found lost now, and are missing before this one.
  void loseBefore(std::uint64_t lostAtFrame, std::uint32_t frames) {
    queues_->lostFrames += frames;
    while (frames > 0) {
      const std::uint32_t part = std::min(frames, kChunkFrames);
      frames -= part;
      captured_ += part;
      ASSERT_TRUE(queues_.input().deliverSilence(part, captured_, lostAtFrame));
    }
  }
  [[nodiscard]] const OVInputState& state() {
    parts_.inputWatch.look();
    return parts_.inputWatch.state();
  }

  support::InstalledRecordingServices services_;
  support::InstalledSteppedQueues queues_;
  std::shared_ptr<OVBlockBuffer> buffer_ = OVBlockBuffer::init();
  OVDocumentParts parts_{OVDocumentParts::Operations{}};
  std::uint64_t captured_ = 0;
};

TEST_F(OVTransportInputTest, AtRestItNamesTheInputOnly) {
  EXPECT_FALSE(state().isRecording);
  EXPECT_EQ(state().source, queues_->inputSource);
  EXPECT_EQ(state().silentFrames, 0U);
  EXPECT_THAT(state().losses, IsEmpty());
}

TEST_F(OVTransportInputTest, WhileRecordingItCountsTheSilence) {
  parts_.transport.record();
  capture(0);
  capture(0);
  EXPECT_TRUE(state().isRecording);
  EXPECT_EQ(state().silentFrames, 2U * kChunkFrames);
  parts_.transport.pause();
  EXPECT_EQ(state().silentFrames, 0U);
}

TEST_F(OVTransportInputTest, TheGapsOfARecordingAreKeptUntilTheNextOne) {
  parts_.transport.record();
  capture(0.5F);
  lose(441);
  capture(0.5F);
  ASSERT_THAT(state().losses, SizeIs(1));
  parts_.transport.stop();
  ASSERT_THAT(state().losses, SizeIs(1));
  EXPECT_EQ(state().losses[0].atFrame, kChunkFrames);
  EXPECT_EQ(state().losses[0].frames, 441U);
  EXPECT_EQ(buffer_->bufferSizeInFrames(), 2U * kChunkFrames + 441);
  parts_.transport.record();
  EXPECT_THAT(state().losses, IsEmpty());
}

TEST_F(OVTransportInputTest, ALossBeforeThePressThatIsFoundAfterItIsNoneOfTheRecording) {
  capture(0.5F);
  const std::uint64_t pressed = captured_;
  parts_.transport.record();
  capture(0.5F);
  loseBefore(pressed, 44100);
  capture(0.25F);
  parts_.transport.pause();
  EXPECT_THAT(state().losses, IsEmpty());
  EXPECT_EQ(buffer_->bufferSizeInFrames(), 2U * kChunkFrames);
}

TEST_F(OVTransportInputTest, ALossThatMayBeAfterThePressIsOneOfTheRecording) {
  capture(0.5F);
  const std::uint64_t pressed = captured_;
  parts_.transport.record();
  capture(0.5F);
  loseBefore(pressed + 1, 44100);
  capture(0.25F);
  parts_.transport.pause();
  ASSERT_THAT(state().losses, SizeIs(1));
  EXPECT_EQ(buffer_->bufferSizeInFrames(), 2U * kChunkFrames + 44100);
}

TEST_F(OVTransportInputTest, RecordingsBetweenTwoTicksAreToldEachByItself) {
  parts_.transport.record();
  capture(0.5F);
  lose(4410);
  capture(0.5F);
  parts_.displayLoop.tick();
  EXPECT_EQ(services_->consoleLinesWith(": 4410 frames"), 1U);
  lose(441);
  capture(0.5F);
  parts_.transport.pause();
  parts_.transport.record();
  EXPECT_EQ(services_->consoleLinesWith(": 441 frames"), 1U) << "of the former recording";
  capture(0.5F);
  lose(8820);
  capture(0.5F);
  parts_.displayLoop.tick();
  EXPECT_EQ(services_->consoleLinesWith(": 8820 frames"), 1U) << "the first of this one";
}

TEST_F(OVTransportInputTest, EveryTickOfTheDisplayLoopUpdatesTheNotices) {
  parts_.transport.record();
  parts_.transport.recordedUpTo(0);
  parts_.displayLoop.tick();
  EXPECT_EQ(parts_.notices.text(), "Recording from USB Mic");
  capture(0.5F);
  lose(44100);
  capture(0.5F);
  parts_.displayLoop.tick();
  EXPECT_EQ(parts_.notices.text(), "1.0 s were lost at 00:00");
  EXPECT_EQ(services_->consoleLinesWith("Recording \"Unnamed\": 44100 frames"), 1U);
}

}  // namespace
