#include "document/display/OVClipping.h"

#include <cmath>
#include <thread>
#include <vector>

#include "document/DocumentFixture.h"

namespace {

const float kBelow = std::nextafter(OVClipping::kClipped, 0.0F);

/// The watch alone, over the audio of a document that records nothing.
class OVClippingTest : public DocumentFixture {
 protected:
  OVClippingTest() { audio_.setBuffer(OVBlockBuffer::init()); }

  void write(const std::vector<float>& samples, std::uint64_t atFrame = 0) {
    clipping_.chunkWritten(samples.data(), atFrame * kFrameBytes,
                           static_cast<std::uint32_t>(samples.size() * sizeof(float)));
  }

  OVDocumentLife life_;
  OVDocumentAudio audio_;
  OVClipping clipping_{life_, audio_};
};

class OVClippingLampOfADocumentTest : public DocumentFixture {
 protected:
  void tick() {
    document_->updatePlaybackMarkerView();
    drainMainQueue();
  }
  OVClippingLamp* lamp() { return document_->window()->findChild<OVClippingLamp*>("clippingLamp"); }
};

}  // namespace

TEST_F(OVClippingTest, TheLargestSampleOf16BitsIsClippedAndTheNextSmallerOneIsNot) {
  write({kBelow, -kBelow});
  EXPECT_EQ(clipping_.firstFrame(), std::nullopt);
  write({0.0F, 0.0F, OVClipping::kClipped, 0.0F}, 10);
  EXPECT_EQ(clipping_.firstFrame(), 11U);
}

TEST_F(OVClippingTest, EitherChannelAndEitherSignCount) {
  for (const std::size_t place : {0U, 1U, 6U, 7U}) {
    for (const float sample : {1.0F, -1.0F, 32767.0F / 32768.0F, -32767.0F / 32768.0F, 3.0F}) {
      clipping_.begin();
      std::vector<float> samples(8, 0.5F);
      samples[place] = sample;
      write(samples, 100);
      EXPECT_EQ(clipping_.firstFrame(), 100 + place / 2) << place << ": " << sample;
    }
  }
}

TEST_F(OVClippingTest, TheFirstOneStaysUntilTheNextRecording) {
  write({0.0F, 1.0F}, 7);
  write({1.0F, 1.0F}, 3);
  EXPECT_EQ(clipping_.firstFrame(), 7U);
  clipping_.begin();
  EXPECT_EQ(clipping_.firstFrame(), std::nullopt);
}

TEST_F(OVClippingTest, SamplesThatAreNoNumbersAreNotClipped) {
  write({std::nanf(""), std::nanf("")});
  write({});
  EXPECT_EQ(clipping_.firstFrame(), std::nullopt);
}

TEST_F(OVClippingTest, IsReadWhileItWatches) {
  std::thread writer([this] {
    for (std::uint64_t i = 0; i < 1000; ++i) {
      write(std::vector<float>(64, i == 500 ? 1.0F : 0.0F), i * 32);
    }
  });
  while (!clipping_.firstFrame()) {
    clipping_.update();
    std::this_thread::yield();
  }
  EXPECT_EQ(clipping_.firstFrame(), 500 * 32U);
  writer.join();
}

TEST_F(OVClippingLampOfADocumentTest, ALoudRecordingDoesNotLightIt) {
  openWindow();
  pressRecord();
  ASSERT_TRUE(capture(kBelow));
  tick();
  EXPECT_FALSE(lamp()->isLit());
}

TEST_F(OVClippingLampOfADocumentTest, AClippedSampleLightsItWithTheTimeOfTheFirst) {
  openWindow();
  recordChunks(44);
  document_->waveFormViewReceivedClick(nullptr, {}, 0.5);
  pressRecord();
  ASSERT_TRUE(capture(-1.0F));
  ASSERT_TRUE(capture(-1.0F));
  tick();
  EXPECT_TRUE(lamp()->isLit());
  EXPECT_EQ(lamp()->toolTip(), "Too loud: clipped at 00:00:02.04. Click to turn off.");
}

TEST_F(OVClippingLampOfADocumentTest, ItStaysUntilTheNextRecording) {
  openWindow();
  recordChunks(1, 1.0F);  // in the last chunk, with no tick before the end
  tick();
  EXPECT_TRUE(lamp()->isLit());
  pressPlay();
  tick();
  document_->stopButton(nullptr);
  tick();
  EXPECT_TRUE(lamp()->isLit());
  pressRecord();
  EXPECT_FALSE(lamp()->isLit());
  ASSERT_TRUE(capture(0.5F));
  tick();
  EXPECT_FALSE(lamp()->isLit());
}

TEST_F(OVClippingLampOfADocumentTest, AClickTurnsItOffForTheRestOfTheRecording) {
  openWindow();
  pressRecord();
  ASSERT_TRUE(capture(1.0F));
  tick();
  ASSERT_TRUE(lamp()->isLit());
  QTest::mouseClick(lamp(), Qt::LeftButton);
  EXPECT_FALSE(lamp()->isLit());
  ASSERT_TRUE(capture(1.0F));
  tick();
  EXPECT_FALSE(lamp()->isLit());
}

TEST_F(OVClippingLampOfADocumentTest, PlaybackDoesNotLightIt) {
  openWindow();
  recordChunks(4, 1.0F);
  tick();
  lamp()->turnOff();
  pressPlay();
  queues_.output().playOne();
  tick();
  EXPECT_FALSE(lamp()->isLit());
}

TEST_F(OVClippingLampOfADocumentTest, ADocumentWithoutAWindowNeedsNone) {
  openDocument();
  recordChunks(2, 1.0F);
  document_->updatePlaybackMarkerView();
}
