// A window that closes while a background queue works for it: the work ends after its current
// piece, nothing is reported, and nothing is kept.
#include <gmock/gmock.h>

#include "document/FileFixture.h"
#include "document/files/loadFile.h"
#include "support/Gate.h"
#include "support/fakes/FailingTemporaryFiles.h"

namespace {

using testing::IsEmpty;

/// Two minutes of sound: one write per chunk, and more than a hundred reads for its summary.
constexpr std::uint64_t kManyChunks = 20;

class CancelledWorkTest : public DocumentFileFixture {
 protected:
  std::string writeLongFile() {
    return writeFile("take.wav", ramp(kManyChunks * kLoadChunkFrames));
  }

  /// Closes the window while its work waits at the gate, then lets the work continue.
  void closeAndOpenTheGate() {
    const std::weak_ptr<OVAudioBufferInterface> buffer = document_->buffer();
    const QPointer<OVRecorderWindow> window = document_->window();
    document_->setDocumentEdited(false);  // nothing to ask
    window->performClose();
    document_.reset();
    gate_.open();
    settle();
    EXPECT_TRUE(window.isNull());
    EXPECT_TRUE(buffer.expired());
    EXPECT_THAT(services_->alerts(), IsEmpty());
  }

  support::Gate gate_;
  support::FailingTemporaryFiles files_;
  platform::Installed<platform::TemporaryFiles>::Scope filesInstallation_{files_};
};

TEST_F(CancelledWorkTest, WhileAFileIsLoadedTheChunkBeingStoredIsTheLast) {
  openWindow();
  files_.beforeWrites([this] { gate_.pass(); });
  document_->openFileNamed(writeLongFile());
  ASSERT_TRUE(gate_.awaitArrival());
  closeAndOpenTheGate();
  EXPECT_EQ(files_.writes(), 1U);
}

TEST_F(CancelledWorkTest, WhileTheWaveformOfALoadedFileIsBuiltTheReadThatRunsIsTheLast) {
  openWindow();
  files_.beforeReads([this] { gate_.pass(); });
  document_->openFileNamed(writeLongFile());
  ASSERT_TRUE(runMainLoopUntil([this] { return document_->isRenderingWaveform(); }));
  ASSERT_TRUE(gate_.awaitArrival());
  closeAndOpenTheGate();
  EXPECT_EQ(files_.reads(), 1U);
}

TEST_F(CancelledWorkTest, WhileAnEditIsRefreshedTheReadThatRunsIsTheLast) {
  openWindow();
  fill(ramp(kManyChunks * kLoadChunkFrames));
  files_.beforeReads([this] { gate_.pass(); });
  document_->refreshCompleteUI(true);
  ASSERT_TRUE(gate_.awaitArrival());
  closeAndOpenTheGate();
  EXPECT_EQ(files_.reads(), 1U);
}

TEST_F(CancelledWorkTest, WhileARecordingTakesInWhatIsThereTheReadThatRunsIsTheLast) {
  openWindow();
  fill(ramp(kManyChunks * kLoadChunkFrames));
  document_->nextButton(nullptr);
  files_.beforeReads([this] { gate_.pass(); });
  pressRecord();
  ASSERT_TRUE(capture(0.25F));
  document_->updatePlaybackMarkerView();  // extends the summary, which is still empty
  ASSERT_TRUE(gate_.awaitArrival());
  closeAndOpenTheGate();
  EXPECT_EQ(files_.reads(), 1U);
}

TEST_F(CancelledWorkTest, WhileARecordingGetsAGrowingSummaryAgainTheStretchBeingReadIsTheLast) {
  openWindow();
  fill(ramp(kManyChunks * kLoadChunkFrames));
  document_->waveForm()->generate();
  pressRecord();
  ASSERT_TRUE(capture(0.25F));
  document_->updatePlaybackMarkerView();
  settle();
  ASSERT_TRUE(summaryIsStatic());
  document_->pauseButton(nullptr);
  settle();
  document_->nextButton(nullptr);
  const std::uint64_t readsBefore = files_.reads();
  files_.beforeReads([this] { gate_.pass(); });
  pressRecord();
  ASSERT_TRUE(capture(0.25F));
  document_->updatePlaybackMarkerView();
  ASSERT_TRUE(gate_.awaitArrival());
  closeAndOpenTheGate();
  EXPECT_EQ(files_.reads(), readsBefore + 2);  // of the recording, and of the audio after it
}

}  // namespace
