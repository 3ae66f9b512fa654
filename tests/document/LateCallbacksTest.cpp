// Reports of sound and disk that arrive after the document has moved on.
#include <atomic>
#include <memory>
#include <thread>
#include <utility>

#include <gmock/gmock.h>

#include "document/DocumentStates.h"
#include "document/FileFixture.h"

namespace {

constexpr std::uint16_t kKeyR = 15;

// A playback that ended before a file operation began --------------------------------------------

class LateEndOfPlaybackTest : public DocumentFileFixture,
                              public testing::WithParamInterface<State> {
 protected:
  void playToTheEnd() {
    pressPlay();
    queues_.output().changeRunning(1);
    while (!queues_.output().playOne().empty()) {
    }
    queues_.output().changeRunning(0);  // its report waits in the main queue
  }

  StateKeeper keeper_{panels_, queues_};
};

TEST_P(LateEndOfPlaybackTest, EnablesNothingWhileAFileOperationRuns) {
  openWindow();
  keeper_.fill(document_);
  playToTheEnd();
  ASSERT_NO_FATAL_FAILURE(keeper_.enter(GetParam()));
  drainMainQueue();
  EXPECT_FALSE(button("recButton")->isEnabled());
  EXPECT_FALSE(button("playButton")->isEnabled());
  document_->windowDidReceiveKeyDown(document_->window(), kKeyR);
  document_->windowDidReceiveKeyUp(document_->window(), kKeyR);
  EXPECT_FALSE(keeper_.recording());
  document_->recMenu(nullptr);
  EXPECT_FALSE(keeper_.recording());
  pressRecord();
  EXPECT_FALSE(keeper_.recording());

  keeper_.leave(GetParam());
  EXPECT_FALSE(keeper_.recording());
  EXPECT_TRUE(transportEnabled());
  EXPECT_FALSE(button("recButton")->isOn());
  EXPECT_EQ(document_->player(), nullptr);
}

std::string nameOfState(const testing::TestParamInfo<State>& state) {
  return nameOf(state.param);
}

INSTANTIATE_TEST_SUITE_P(While, LateEndOfPlaybackTest,
                         testing::Values(State::loading, State::openingImport, State::importing,
                                         State::saving, State::exporting),
                         nameOfState);

// The player's callback, on its own thread --------------------------------------------------------

using PlayersCallbackTest = DocumentFixture;

TEST_F(PlayersCallbackTest, PauseTakesThePlaceThatThePlayerHadReachedWhenItStood) {
  openWindow();
  recordChunks(4);
  pressPlay();
  queues_.output().changeRunning(1);
  // The recorder's queue, which is stopped too, does not matter here. The hook outlives the test.
  queues_->during("stopImmediately", [this, came = std::make_shared<bool>(false)] {
    if (!std::exchange(*came, true)) {
      queues_.output().playOne();
    }
  });
  document_->pauseButton(nullptr);
  EXPECT_EQ(document_->playbackPosition(), 4U * 1024U);
  EXPECT_EQ(document_->recordingPosition(), document_->playbackPosition());
  EXPECT_EQ(document_->recorder()->writingPosition(), document_->playbackPosition() * kFrameBytes);
}

TEST_F(PlayersCallbackTest, ToTheEndIsNotLostToACallbackThatComesMeanwhile) {
  openDocument();
  recordChunks(4);
  pressPlay();
  const std::uint64_t end = length() * kFrameBytes;
  std::atomic<bool> done = false;
  std::thread callbacks([&] {
    while (!done) {
      document_->playerAdvancedToFrame(1024);
    }
  });
  int lost = 0;
  for (int i = 0; i < 2000; ++i) {
    document_->nextButton(nullptr);
    lost += document_->player()->readingPosition() == end ? 0 : 1;
    document_->player()->setReadingPosition(0);
  }
  done = true;
  callbacks.join();
  EXPECT_EQ(lost, 0);
}

// A write that the disk did not take -------------------------------------------------------------

class LateWriteFailureTest : public DocumentFixture {
 protected:
  support::FailingTemporaryFiles files_;
  platform::Installed<platform::TemporaryFiles>::Scope filesInstallation_{files_};
};

TEST_F(LateWriteFailureTest, AnUndoThatCameFirstKeepsTheAudioThatItBroughtBack) {
  openWindow();
  recordChunks(3);
  const std::uint64_t lastChunk = 2 * std::uint64_t{kChunkFrames};
  document_->setRecordingPosition(lastChunk);
  document_->recorder()->setWritingPosition(lastChunk * kFrameBytes);
  pressRecord();
  files_.fillUpAfter(0);
  capture(0.5F);             // lost; the report of it waits in the main queue
  document_->undoCommand();  // restores the former audio
  settle();
  EXPECT_EQ(length(), 3U * kChunkFrames);
  EXPECT_EQ(samplesAt(0, 3 * kChunkFrames), std::vector<float>(6 * kChunkFrames, 0.25F));
  EXPECT_EQ(services_->alerts().size(), 1U);
  closeDocument();
}

TEST_F(LateWriteFailureTest, ARecordingThatBeganMeanwhileLosesNothing) {
  openWindow();
  pressRecord();
  capture(0.25F);
  files_.fillUpAfter(0);
  capture(0.5F);  // lost; the report of it waits in the main queue
  document_->pauseButton(nullptr);
  files_.freeSpace();
  document_->setRecordingPosition(kChunkFrames);
  document_->recorder()->setWritingPosition(kChunkFrames * kFrameBytes);
  pressRecord();
  capture(0.75F);  // where the lost chunk was
  settle();
  EXPECT_TRUE(document_->recorder()->isRecording());
  EXPECT_EQ(length(), 2U * kChunkFrames);
  EXPECT_EQ(samplesAt(kChunkFrames, kChunkFrames), std::vector<float>(2 * kChunkFrames, 0.75F));
  EXPECT_EQ(document_->recordingPosition(), 2U * kChunkFrames);
  EXPECT_EQ(services_->alerts().size(), 1U);
  closeDocument();
}

TEST_F(LateWriteFailureTest, NoPositionStaysBeyondTheEndThatIsDropped) {
  openWindow();
  pressRecord();
  capture(0.25F);
  files_.fillUpAfter(0);
  capture(0.5F);  // lost; the report of it waits in the main queue
  document_->pauseButton(nullptr);
  document_->nextButton(nullptr);
  ASSERT_EQ(document_->playbackPosition(), 2U * kChunkFrames);
  settle();
  EXPECT_EQ(length(), kChunkFrames);
  EXPECT_EQ(document_->recordingPosition(), length());
  EXPECT_EQ(document_->playbackPosition(), length());
  closeDocument();
}

}  // namespace
