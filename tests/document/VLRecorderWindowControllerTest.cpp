#include "document/VLRecorderWindowController.h"

#include <cstdio>
#include <filesystem>
#include <fstream>

#include <gmock/gmock.h>

#include "document/DocumentFixture.h"
#include "platform/base/ApplicationServices.h"
#include "support/fakes/FailingTemporaryFiles.h"

class VLRecorderWindowControllerTest : public DocumentFixture {};

TEST_F(VLRecorderWindowControllerTest, ANewWindowHasNoFileNoLengthAndAHiddenProgressBar) {
  openWindow();
  EXPECT_EQ(document_->currentFiletype(), -1);
  EXPECT_TRUE(document_->currentFilename().empty());
  EXPECT_EQ(document_->playbackPosition(), 0u);
  EXPECT_EQ(document_->recordingPosition(), 0u);
  ASSERT_NE(document_->loadingIndicator(), nullptr);
  EXPECT_FALSE(document_->loadingIndicator()->isVisible());
  EXPECT_EQ(document_->loadingIndicator()->value(), 0);
  EXPECT_EQ(document_->window()->title(), "Orvo - Unnamed");
  EXPECT_FALSE(document_->isDocumentEdited());
  EXPECT_NE(std::dynamic_pointer_cast<OVDynamicWaveForm>(document_->waveForm()), nullptr);
}

TEST_F(VLRecorderWindowControllerTest, AnUnknownInterfaceNameMakesNoDocument) {
  EXPECT_EQ(VLRecorderWindowController::initWithWindowNibName("Other"), nullptr);
}

TEST_F(VLRecorderWindowControllerTest, RunsWithoutAnyView) {
  openDocument();
  recordChunks(2);
  EXPECT_EQ(length(), 2u * kChunkFrames);
  document_->updatePlaybackMarkerView();
  document_->recreateIndicator(true);
  document_->recMenu(nullptr);
  document_->playMenu(nullptr);
  document_->windowDidReceiveKeyDown(nullptr, 15);
  document_->windowDidReceiveKeyUp(nullptr, 15);
  pressPlay();
  EXPECT_TRUE(document_->player()->isPlaying());
  document_->stopButton(nullptr);
  document_->removeAfterMarker(nullptr);
  document_->undoCommand();
  settle();
  EXPECT_EQ(length(), 2u * kChunkFrames);
}

TEST_F(VLRecorderWindowControllerTest,
       AChunkWrittenWhileNotRecordingChangesNeitherPositionsNorTheSpectrumsCopy) {
  openDocument();
  const std::vector<float> samples(64, 0.5F);
  document_->buffer()->writeData(samples.data(), 0, 256);
  EXPECT_EQ(document_->recordingPosition(), 0u);
  EXPECT_EQ(document_->playbackPosition(), 0u);
  EXPECT_TRUE(document_->fft_data().empty());
}

TEST_F(VLRecorderWindowControllerTest,
       ARecordedChunkMovesTheRecordingPositionAndIsCopiedForTheSpectrum) {
  openDocument();
  pressRecord();
  ASSERT_TRUE(capture(0.5F));
  EXPECT_EQ(document_->recordingPosition(), kChunkFrames);
  EXPECT_EQ(document_->fft_data().size(), kChunkFrames * kFrameBytes);
}

TEST_F(VLRecorderWindowControllerTest, NearTheStartTheStaticSummaryIsUpdatedAtFractionZero) {
  openDocument();
  recordChunks(4, 0.0F);
  document_->prevButton(nullptr);
  pressRecord();
  ASSERT_TRUE(capture(0.0F));
  document_->updatePlaybackMarkerView();
  ASSERT_TRUE(runMainLoopUntil([&] { return summaryIsStatic(); }));
  document_->prevButton(nullptr);

  const auto expected = std::dynamic_pointer_cast<OVStaticWaveform>(document_->waveForm()->copy());
  std::vector<float> chunk(2 * kChunkFrames, 0.0F);
  for (std::size_t i = 0; i < chunk.size(); i += 7) {
    chunk[i] = 0.75F;
  }
  captured_ += kChunkFrames;
  ASSERT_TRUE(queues_.input().deliver(chunk, captured_));
  ASSERT_EQ(document_->recordingPosition(), kChunkFrames);  // less than twice the chunk

  expected->updateWithDataChunk(chunk.data(), chunk.size(), 0.0);
  std::vector<float> want;
  std::vector<float> got;
  expected->copyElementsInto(want);
  document_->waveForm()->copyElementsInto(got);
  EXPECT_EQ(got, want);
  EXPECT_GT(got[0], 0.0F);
}

TEST_F(VLRecorderWindowControllerTest,
       LaterTheStaticSummaryIsUpdatedTwoChunksBeforeTheRecordingPosition) {
  openDocument();
  recordChunks(8, 0.0F);
  document_->prevButton(nullptr);
  pressRecord();
  ASSERT_TRUE(capture(0.0F));
  document_->updatePlaybackMarkerView();
  ASSERT_TRUE(runMainLoopUntil([&] { return summaryIsStatic(); }));
  ASSERT_TRUE(capture(0.0F));
  const auto expected = std::dynamic_pointer_cast<OVStaticWaveform>(document_->waveForm()->copy());
  std::vector<float> chunk(2 * kChunkFrames, 0.0F);
  for (std::size_t i = 0; i < chunk.size(); i += 5) {
    chunk[i] = -0.5F;
  }
  captured_ += kChunkFrames;
  ASSERT_TRUE(queues_.input().deliver(chunk, captured_));
  expected->updateWithDataChunk(chunk.data(), chunk.size(), 1.0 / 8.0);
  std::vector<float> want;
  std::vector<float> got;
  expected->copyElementsInto(want);
  document_->waveForm()->copyElementsInto(got);
  EXPECT_EQ(got, want);
}

TEST_F(VLRecorderWindowControllerTest,
       APlayerThatStoppedBeforeTheEndLeavesTheTransportPausedWhereItWas) {
  openWindow();
  recordChunks(3);
  pressPlay();
  const auto place = document_->playbackPosition();
  ASSERT_THAT(place, testing::AllOf(testing::Gt(0U), testing::Lt(length())));
  document_->playerStoppedPlayback(document_->player().get());
  EXPECT_EQ(document_->player(), nullptr);
  EXPECT_EQ(document_->playbackPosition(), place);
  EXPECT_EQ(document_->recordingPosition(), place);
  EXPECT_EQ(document_->recorder()->writingPosition(), place * kFrameBytes);
  EXPECT_FALSE(button("playButton")->isOn());
}

TEST_F(VLRecorderWindowControllerTest,
       AReportThatNoPlayerSentBeforeTheEndLeavesTheTransportAsItIs) {
  openWindow();
  recordChunks(3);
  pressPlay();
  document_->playerStoppedPlayback(nullptr);
  EXPECT_NE(document_->player(), nullptr);
  EXPECT_TRUE(button("playButton")->isOn());
}

TEST_F(VLRecorderWindowControllerTest, APlayerThatStoppedAtTheEndBehavesAsTheStopButton) {
  openWindow();
  recordChunks(3);
  pressPlay();
  document_->setPlaybackPosition(length());
  document_->playerStoppedPlayback(document_->player().get());
  EXPECT_EQ(document_->player(), nullptr);
  EXPECT_EQ(document_->playbackPosition(), 0u);
  EXPECT_EQ(document_->recordingPosition(), length());
  EXPECT_FALSE(button("playButton")->isOn());
}

TEST_F(VLRecorderWindowControllerTest, APlayerWhoseDeviceFailedPausesWhereItBrokeOff) {
  openWindow();
  recordChunks(3);
  pressPlay();
  queues_.output().playOne();
  const auto position = document_->playbackPosition();
  queues_->failure = platform::kDeviceLostStatus;
  queues_.output().changeRunning(0);
  ASSERT_TRUE(runMainLoopUntil([&] { return document_->player() == nullptr; }));
  EXPECT_FALSE(button("playButton")->isOn());
  EXPECT_TRUE(button("recButton")->isEnabled());
  EXPECT_EQ(document_->playbackPosition(), position);
}

TEST_F(VLRecorderWindowControllerTest, AClosedControllerIsFreedThoughNoOneElseHoldsIt) {
  openWindow();
  const std::weak_ptr<VLRecorderWindowController> controller = document_;
  const QPointer<OVRecorderWindow> window = document_->window();
  document_.reset();
  EXPECT_FALSE(controller.expired());  // it keeps itself alive while its window is open
  window->performClose();
  EXPECT_TRUE(controller.expired());
  EXPECT_TRUE(runMainLoopUntil([&] { return window.isNull(); }));
  EXPECT_EQ(queues_->queuesAlive, 0);
}

TEST_F(VLRecorderWindowControllerTest, ClosingEndsTheDisplayTimerBeforeTheControllerGoes) {
  openWindow();
  EXPECT_TRUE(document_->isDisplayTimerRunning());
  document_->window()->performClose();
  EXPECT_FALSE(document_->isDisplayTimerRunning());
  document_.reset();
}

TEST_F(VLRecorderWindowControllerTest, ClosingWhileRecordingAndWhilePlayingEndsCleanly) {
  openWindow();
  pressRecord();
  ASSERT_TRUE(capture(0.5F));
  closeDocument();
  EXPECT_EQ(queues_->queuesAlive, 0);

  openWindow();
  recordChunks(2);
  pressPlay();
  closeDocument();
  EXPECT_EQ(queues_->queuesAlive, 0);
}

TEST_F(VLRecorderWindowControllerTest,
       TheMeterSeesThePlayerWhilePlayingElseTheRecorderWhileRecordingElseNothing) {
  openDocument();
  EXPECT_EQ(document_->dataForVUView(nullptr), std::nullopt);
  pressRecord();
  capture(0.5F);
  EXPECT_EQ(document_->dataForVUView(nullptr), (std::vector{0.75F, 0.25F}));
  document_->pauseButton(nullptr);
  EXPECT_EQ(document_->dataForVUView(nullptr), std::nullopt);
  pressPlay();
  EXPECT_EQ(document_->dataForVUView(nullptr), (std::vector{0.75F, 0.25F}));
}

TEST_F(VLRecorderWindowControllerTest, AFreshIndicatorTakesThePlaceOfTheOldOne) {
  openWindow();
  const QPointer<QProgressBar> old = document_->loadingIndicator();
  const QRect frame = old->geometry();
  const QWidget* const parent = old->parentWidget();
  document_->recreateIndicator(true);
  EXPECT_TRUE(old.isNull());
  ASSERT_NE(document_->loadingIndicator(), nullptr);
  EXPECT_EQ(document_->loadingIndicator()->geometry(), frame);
  EXPECT_EQ(document_->loadingIndicator()->parentWidget(), parent);
  EXPECT_EQ(document_->loadingIndicator()->maximum(), 0);  // indeterminate
  document_->recreateIndicator(false);
  EXPECT_GT(document_->loadingIndicator()->maximum(), 0);
}

TEST_F(VLRecorderWindowControllerTest, TemporaryPathsAreFreshAndRemovingNoneDoesNothing) {
  const std::string path = VLRecorderWindowController::createTempFile();
  EXPECT_EQ(std::filesystem::path(path).filename().string().rfind("velmar_", 0), 0u);
  EXPECT_FALSE(std::filesystem::exists(path));
  EXPECT_NE(path, VLRecorderWindowController::createTempFile());
  std::ofstream(path) << "x";
  VLRecorderWindowController::removeTempFile(path);
  EXPECT_FALSE(std::filesystem::exists(path));
  VLRecorderWindowController::removeTempFile(path);
  VLRecorderWindowController::removeTempFile("");
}

TEST_F(VLRecorderWindowControllerTest,
       ADocumentWithoutATemporaryFileTellsAgainAtRecordAndStaysUsable) {
  support::FailingTemporaryFiles files;
  const platform::Installed<platform::TemporaryFiles>::Scope installation(files);
  files.failCreation(EACCES);
  openWindow();
  EXPECT_EQ(document_->buffer(), nullptr);
  EXPECT_EQ(alertCount(), 1u);
  document_->updatePlaybackMarkerView();
  document_->recMenu(nullptr);
  document_->playMenu(nullptr);
  document_->stopMenu(nullptr);
  document_->nextMenu(nullptr);
  document_->removeAfterMarker(nullptr);
  document_->waveFormViewReceivedClick(nullptr, {}, 0.5);
  settle();
  EXPECT_FALSE(button("recButton")->isOn());
  EXPECT_FALSE(button("playButton")->isOn());
  EXPECT_EQ(alertCount(), 2u) << "one at Record";
}
