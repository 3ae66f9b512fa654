// States whose initial value is already the expected one: they must be changed first, or a test of
// the code that sets them cannot fail.
#include <gmock/gmock.h>

#include "audio/OVAQRecorder.h"
#include "document/FileFixture.h"
#include "support/Gate.h"
#include "support/fakes/FailingTemporaryFiles.h"
#include "waveform/views/OVWaveFormView.h"

class EdgeCasesTest : public DocumentFileFixture {
 protected:
  EdgeCasesTest() { openWindow(); }
  ~EdgeCasesTest() override {
    gate_.open();
    closeDocument();  // before the objects that its work uses
  }

  OVWaveFormView* waveform() { return document_->window()->findChild<OVWaveFormView*>("wfView"); }

  /// Records three chunks and sets marker, recording and writing position to a fraction of them.
  void recordAndClickAt(double fraction) {
    recordChunks(3);
    settle();
    document_->waveFormViewReceivedClick(waveform(), {}, fraction);
    const auto frames = static_cast<std::uint64_t>(fraction * 3 * kChunkFrames);
    ASSERT_EQ(document_->playbackPosition(), frames);
    ASSERT_EQ(document_->recordingPosition(), frames);
    ASSERT_EQ(document_->recorder()->writingPosition(), frames * kFrameBytes);
  }

  /// Holds every write of the audio until the gate is open.
  void holdWrites() {
    files_.beforeWrites([this] { gate_.pass(); });
  }

  support::Gate gate_;
  support::FailingTemporaryFiles files_;
  platform::Installed<platform::TemporaryFiles>::Scope installation_{files_};
};

TEST_F(EdgeCasesTest, OpeningResetsPositionsThatWereElsewhere) {
  recordAndClickAt(0.5);
  open(writeFile("take.wav", ramp(1000)));
  EXPECT_EQ(document_->playbackPosition(), 0U);
  EXPECT_EQ(document_->recordingPosition(), 0U);
  EXPECT_EQ(document_->recorder()->writingPosition(), 0U);
}

TEST_F(EdgeCasesTest, ImportingLeavesPositionsThatAreElsewhere) {
  recordAndClickAt(0.5);
  import(writeFile("part.wav", ramp(1000)));
  EXPECT_EQ(document_->playbackPosition(), 6144U);
  EXPECT_EQ(document_->recordingPosition(), 6144U);
}

TEST_F(EdgeCasesTest, RemovingBeforeTheMarkerPutsTheWritingPositionAtTheNewEnd) {
  recordAndClickAt(0.25);
  document_->removeBeforeMarker(nullptr);
  const std::uint64_t rest = 3 * std::uint64_t{kChunkFrames} - 3072;
  ASSERT_EQ(length(), rest);
  EXPECT_EQ(document_->playbackPosition(), 0U);
  EXPECT_EQ(document_->recordingPosition(), rest);
  EXPECT_EQ(document_->recorder()->writingPosition(), rest * kFrameBytes);
  pressRecord();
  ASSERT_TRUE(capture(0.75F));
  EXPECT_EQ(length(), rest + kChunkFrames);
  EXPECT_EQ(samplesAt(rest, 1), Samples(2, 0.75F));
}

TEST_F(EdgeCasesTest, TheGridScrollsBackOnlyUntilARecordingIsStoppedOrPaused) {
  for (const auto end :
       {&VLRecorderWindowController::stopButton, &VLRecorderWindowController::pauseButton}) {
    pressRecord();
    ASSERT_TRUE(capture(0.25F));
    ASSERT_TRUE(waveform()->scrollBack());
    ((*document_).*end)(nullptr);
    EXPECT_FALSE(waveform()->scrollBack());
  }
}

TEST_F(EdgeCasesTest, TheWaveformIsDrawnWhileItGrowsForAsLongAsAFileIsOpened) {
  holdWrites();
  EXPECT_FALSE(waveform()->overrideRegenerationCheck());
  document_->openFileNamed(writeFile("take.wav", ramp(1000)));
  ASSERT_TRUE(gate_.awaitArrival());
  EXPECT_TRUE(waveform()->overrideRegenerationCheck());
  gate_.open();
  awaitIdle();
  EXPECT_FALSE(waveform()->overrideRegenerationCheck());
}

TEST_F(EdgeCasesTest, TheWaveformIsDrawnWhileItGrowsForAsLongAsAFileIsImported) {
  recordChunks(1);
  const std::string path = writeFile("part.wav", ramp(1000));
  holdWrites();
  document_->importFile(nullptr);
  panels_->answerOpen({path});
  ASSERT_TRUE(runMainLoopUntil([&] { return document_->isImport(); }));
  ASSERT_TRUE(gate_.awaitArrival());
  EXPECT_TRUE(waveform()->overrideRegenerationCheck());
  gate_.open();
  awaitIdle();
  EXPECT_FALSE(waveform()->overrideRegenerationCheck());
}
