// The summaries of a document whose audio changes while they are generated. Generations are held
// at their first read of the audio, which is in a temporary file that the test watches.
#include "document/summaries/OVDocumentSummaries.h"

#include <atomic>
#include <memory>

#include "document/FileFixture.h"
#include "support/Gate.h"
#include "support/fakes/FailingTemporaryFiles.h"

namespace {

class OVDocumentSummariesTest : public DocumentFileFixture {
 protected:
  using SharedGate = std::shared_ptr<support::Gate>;

  /// Audio whose waveform differs everywhere.
  static Samples noise(std::uint64_t frames, std::uint32_t seed = 1) {
    Samples samples(2 * frames);
    for (float& sample : samples) {
      seed = seed * 1664525U + 1013904223U;
      sample = static_cast<float>(seed >> 8U) / 8388608.0F - 1.0F;
    }
    return samples;
  }

  /// A window with this much audio, all of it summarised.
  void openWith(std::uint64_t frames) {
    openWindow();
    fill(noise(frames));
    document_->refreshCompleteUI(true);
    settle();
    document_->updatePlaybackMarkerView();
  }

  /// From now on no background queue gets past its first read of the audio.
  SharedGate holdReads() {
    auto gate = std::make_shared<support::Gate>();
    files_.beforeReads([gate] {
      if (!platform::isMainThread()) {
        gate->pass();
      }
    });
    return gate;
  }

  /// From now on nothing submitted to the global queue begins.
  static SharedGate holdQueue() {
    auto gate = std::make_shared<support::Gate>();
    for (std::size_t i = 0; i < platform::GlobalQueue::kMaximumThreads; ++i) {
      platform::globalQueue().async([gate] { gate->pass(); });
    }
    return gate;
  }

  bool captureNoise(std::uint32_t seed) {
    captured_ += kChunkFrames;
    const bool delivered = queues_.input().deliver(noise(kChunkFrames, seed), captured_);
    queues_->capturedFrames = captured_;
    return delivered;
  }

  /// One more chunk of a recording, a tick of the display loop, and the summary that it requests.
  void recordOn(std::uint32_t seed) {
    ASSERT_TRUE(captureNoise(seed));
    document_->updatePlaybackMarkerView();
    ASSERT_TRUE(runMainLoopUntil([&] { return !document_->waveformIsChanging(); }));
  }

  /// A recording of this many chunks, with a tick of the display loop after each.
  void recordNoise(int chunks, std::uint32_t seed) {
    pressRecord();
    for (int i = 0; i < chunks; ++i) {
      recordOn(seed + static_cast<std::uint32_t>(i));
    }
    document_->pauseButton(nullptr);
    settle();
  }

  void goTo(std::uint64_t frame) {
    document_->setPlaybackPosition(frame);
    document_->setRecordingPosition(frame);
    document_->recorder()->setWritingPosition(frame * kFrameBytes);
  }

  void makeSummaryStatic() {
    goTo(0);
    recordNoise(1, 7);
    ASSERT_TRUE(summaryIsStatic());
  }

  Samples elements() {
    Samples elements;
    document_->waveForm()->copyElementsInto(elements);
    return elements;
  }

  /// The elements of a new summary of the same kind, generated from the present audio.
  Samples elementsMadeAnew() {
    std::shared_ptr<OVWaveformSummary> made;
    if (summaryIsStatic()) {
      made = OVStaticWaveform::initWithBuffer(document_->buffer());
    } else {
      made = OVDynamicWaveForm::initWithBuffer(document_->buffer());
      made->generate();
    }
    Samples elements;
    made->copyElementsInto(elements);
    return elements;
  }

  OVWaveFormView* view() { return document_->window()->findChild<OVWaveFormView*>("wfView"); }
  OVTimeView* time() { return document_->window()->findChild<OVTimeView*>("timeView"); }
  bool barIsShown() { return document_->loadingIndicator()->isVisibleTo(document_->window()); }

  /// Whether a full redraw would leave the screen unchanged.
  bool pictureIsUpToDate() {
    view()->grab();
    const QImage shown = view()->image().copy();
    view()->setShouldRedrawWaveform(true);
    view()->grab();
    return shown == view()->image();
  }

  support::FailingTemporaryFiles files_;
  platform::Installed<platform::TemporaryFiles>::Scope filesInstallation_{files_};
};

// Undo and redo during a refresh ----------------------------------------------------------------

TEST_F(OVDocumentSummariesTest, ACutThatIsUndoneDuringItsRefreshShowsItselfWhenItIsRedone) {
  openWith(60'000);
  const Samples before = elements();
  document_->setPlaybackPosition(20'000);
  const auto gate = holdReads();
  document_->removeAfterMarker(nullptr);
  ASSERT_TRUE(gate->awaitArrival());
  document_->undoCommand();
  gate->open();
  settle();
  EXPECT_EQ(elements(), before);
  document_->redoCommand();
  settle();
  EXPECT_EQ(length(), 20'000u);
  EXPECT_EQ(document_->waveForm()->readerPos(), 20'000u);
  EXPECT_EQ(elements(), elementsMadeAnew());
  EXPECT_TRUE(pictureIsUpToDate());
}

TEST_F(OVDocumentSummariesTest, ACutThatIsUndoneBeforeItsRefreshBeganShowsItselfWhenItIsRedone) {
  openWith(60'000);
  const Samples before = elements();
  document_->setPlaybackPosition(20'000);
  const auto gate = holdQueue();
  document_->removeAfterMarker(nullptr);
  document_->undoCommand();
  gate->open();
  settle();
  EXPECT_EQ(elements(), before);
  document_->redoCommand();
  settle();
  EXPECT_EQ(document_->waveForm()->readerPos(), 20'000u);
  EXPECT_EQ(elements(), elementsMadeAnew());
}

TEST_F(OVDocumentSummariesTest, ACutUndoneAndRedoneDuringItsRefreshIsShown) {
  openWith(60'000);
  document_->setPlaybackPosition(20'000);
  const auto gate = holdReads();
  document_->removeBeforeMarker(nullptr);
  ASSERT_TRUE(gate->awaitArrival());
  document_->undoCommand();
  document_->redoCommand();
  gate->open();
  settle();
  EXPECT_EQ(length(), 40'000u);
  EXPECT_EQ(elements(), elementsMadeAnew());
  EXPECT_FALSE(barIsShown());
}

TEST_F(OVDocumentSummariesTest, ARedoThatIsUndoneDuringItsRefreshShowsTheAudioBeforeTheCut) {
  openWith(60'000);
  const Samples before = elements();
  document_->setPlaybackPosition(20'000);
  auto gate = holdReads();
  document_->removeBeforeMarker(nullptr);
  ASSERT_TRUE(gate->awaitArrival());
  document_->undoCommand();
  gate->open();
  settle();
  gate = holdReads();
  document_->redoCommand();
  ASSERT_TRUE(gate->awaitArrival());
  document_->undoCommand();
  gate->open();
  settle();
  EXPECT_EQ(length(), 60'000u);
  EXPECT_EQ(elements(), before);
}

TEST_F(OVDocumentSummariesTest, ASummaryOfFixedSizeComesBackOfItsOwnAudioToo) {
  openWith(60'000);
  makeSummaryStatic();
  document_->setPlaybackPosition(20'000);
  const auto gate = holdReads();
  document_->removeBeforeMarker(nullptr);
  ASSERT_TRUE(gate->awaitArrival());
  document_->undoCommand();
  gate->open();
  settle();
  document_->redoCommand();
  settle();
  ASSERT_TRUE(summaryIsStatic());
  EXPECT_EQ(length(), 40'000u);
  EXPECT_EQ(elements(), elementsMadeAnew());
}

TEST_F(OVDocumentSummariesTest, ASecondCutDuringTheRefreshOfTheFirstIsShown) {
  openWith(60'000);
  document_->setPlaybackPosition(40'000);
  const auto gate = holdReads();
  document_->removeAfterMarker(nullptr);
  ASSERT_TRUE(gate->awaitArrival());
  document_->setPlaybackPosition(10'000);
  document_->removeBeforeMarker(nullptr);
  gate->open();
  settle();
  EXPECT_EQ(length(), 30'000u);
  EXPECT_EQ(elements(), elementsMadeAnew());
  document_->undoCommand();
  settle();
  EXPECT_EQ(length(), 40'000u);
  EXPECT_EQ(elements(), elementsMadeAnew());
}

// Recording during a refresh --------------------------------------------------------------------

TEST_F(OVDocumentSummariesTest, AudioAppendedDuringTheRefreshOfACutIsShown) {
  openWith(60'000);
  document_->setPlaybackPosition(20'000);
  const auto gate = holdReads();
  document_->removeAfterMarker(nullptr);
  ASSERT_TRUE(gate->awaitArrival());
  pressRecord();
  ASSERT_TRUE(captureNoise(9));
  document_->updatePlaybackMarkerView();
  gate->open();
  ASSERT_TRUE(captureNoise(10));
  document_->updatePlaybackMarkerView();
  document_->pauseButton(nullptr);
  settle();
  EXPECT_EQ(length(), 20'000u + 2 * kChunkFrames);
  EXPECT_EQ(document_->waveForm()->readerPos(), length());
  document_->undoCommand();
  settle();
  EXPECT_EQ(length(), 20'000u);
  EXPECT_EQ(elements(), elementsMadeAnew());
}

TEST_F(OVDocumentSummariesTest,
       AudioRecordedIntoTheMiddleDuringTheRefreshOfACutIsShownWithTheRest) {
  openWith(300'000);
  document_->setPlaybackPosition(200'000);
  const auto gate = holdReads();
  document_->removeAfterMarker(nullptr);
  ASSERT_TRUE(gate->awaitArrival());
  document_->waveFormViewReceivedClick(nullptr, {}, 0.25);
  pressRecord();
  ASSERT_TRUE(captureNoise(9));
  document_->updatePlaybackMarkerView();
  gate->open();
  ASSERT_TRUE(runMainLoopUntil([&] { return !document_->waveformIsChanging(); }));
  settle();
  document_->updatePlaybackMarkerView();
  document_->pauseButton(nullptr);
  settle();
  ASSERT_TRUE(summaryIsStatic());
  EXPECT_EQ(elements(), elementsMadeAnew());
  document_->undoCommand();
  settle();
  EXPECT_EQ(elements(), elementsMadeAnew());
}

TEST_F(OVDocumentSummariesTest,
       ARecordingThatIsUndoneBeforeItsSummaryIsReadyIsShownWhenItIsRedone) {
  openWith(60'000);
  goTo(10'000);
  const auto gate = holdQueue();
  pressRecord();
  for (std::uint32_t seed = 20; seed < 24; ++seed) {
    ASSERT_TRUE(captureNoise(seed));
    document_->updatePlaybackMarkerView();
  }
  ASSERT_TRUE(document_->waveformIsChanging());
  document_->undoCommand();
  gate->open();
  settle();
  EXPECT_EQ(elements(), elementsMadeAnew());
  document_->redoCommand();
  settle();
  EXPECT_EQ(elements(), elementsMadeAnew());
}

TEST_F(OVDocumentSummariesTest, UndoOfARecordingFromTheMiddlePastTheEndShowsTheOldAudioAgain) {
  openWindow();
  recordNoise(4, 1);
  const Samples before = elements();
  document_->prevButton(nullptr);
  recordNoise(6, 11);
  ASSERT_FALSE(summaryIsStatic());
  const Samples after = elements();
  document_->undoCommand();
  settle();
  EXPECT_EQ(length(), 4u * kChunkFrames);
  EXPECT_EQ(elements(), before);
  document_->redoCommand();
  settle();
  EXPECT_EQ(elements(), after);
}

TEST_F(OVDocumentSummariesTest, UndoOfARecordingFromTheMiddleToTheVeryEndShowsTheOldAudioAgain) {
  openWindow();
  recordNoise(4, 1);
  const Samples before = elements();
  document_->prevButton(nullptr);
  recordNoise(4, 11);
  document_->undoCommand();
  settle();
  EXPECT_EQ(length(), 4u * kChunkFrames);
  ASSERT_FALSE(summaryIsStatic());
  EXPECT_EQ(elements(), before);
}

// A recording that goes past the end and is then moved back -------------------------------------

TEST_F(OVDocumentSummariesTest, UndoOfARecordingAtTheEndThatWasMovedBackShowsTheOldAudioAgain) {
  openWindow();
  recordNoise(4, 1);
  document_->nextButton(nullptr);
  pressRecord();
  recordOn(11);
  recordOn(12);
  document_->prevButton(nullptr);
  recordOn(13);
  ASSERT_TRUE(summaryIsStatic());
  document_->pauseButton(nullptr);
  settle();
  document_->undoCommand();
  settle();
  EXPECT_EQ(length(), 4u * kChunkFrames);
  EXPECT_EQ(elements(), elementsMadeAnew());
}

TEST_F(OVDocumentSummariesTest, UndoOfARecordingPastTheEndThatWasMovedBackShowsTheOldAudioAgain) {
  openWindow();
  recordNoise(2, 1);
  document_->prevButton(nullptr);
  pressRecord();
  for (const std::uint32_t seed : {11U, 12U, 13U, 14U}) {
    recordOn(seed);
  }
  ASSERT_FALSE(summaryIsStatic());
  document_->prevButton(nullptr);
  recordOn(15);
  document_->pauseButton(nullptr);
  settle();
  document_->undoCommand();
  settle();
  EXPECT_EQ(length(), 2u * kChunkFrames);
  EXPECT_EQ(elements(), elementsMadeAnew());
}

TEST_F(OVDocumentSummariesTest, UndoRedoUndoShowsTheWaveformBeforeTheLastActionAndNewAudioAnother) {
  openWindow();
  recordNoise(2, 1);
  const Samples beforeTheLast = elements();
  recordNoise(2, 11);
  document_->undoCommand();
  settle();
  document_->redoCommand();
  settle();
  document_->undoCommand();
  settle();
  ASSERT_EQ(length(), 0u);
  EXPECT_EQ(elements(), beforeTheLast);  // on purpose: summaries are only exchanged
  recordNoise(1, 21);
  EXPECT_EQ(length(), kChunkFrames);
  EXPECT_EQ(elements(), elementsMadeAnew());
}

// File operations during a refresh --------------------------------------------------------------

TEST_F(OVDocumentSummariesTest, ARefreshThatEndsDuringASaveShowsItselfAtOnce) {
  openWith(60'000);
  makeSummaryStatic();
  document_->setPlaybackPosition(20'000);
  document_->removeAfterMarker(nullptr);
  ASSERT_TRUE(awaitGlobalQueue());  // its end waits in the main queue
  bool seen = false;
  platform::mainQueue().async([&] {
    seen = true;
    EXPECT_TRUE(document_->isFileIOActive());
    EXPECT_DOUBLE_EQ(time()->durationInSeconds(), 20'000 / 44100.0);
    EXPECT_TRUE(pictureIsUpToDate());
    EXPECT_TRUE(barIsShown()) << "the bar is the save's";
  });
  saveTo(at("take.wav"));
  EXPECT_TRUE(seen);
  EXPECT_FALSE(barIsShown());
  EXPECT_EQ(readFile(at("take.wav")).size(), 40'000u);
}

TEST_F(OVDocumentSummariesTest, ARefreshThatOutlastsASaveGetsItsBarBack) {
  openWith(60'000);
  document_->setPlaybackPosition(20'000);
  const auto gate = std::make_shared<support::Gate>();
  // Only the first reader is held: the refresh.
  const auto held = std::make_shared<std::atomic<bool>>(false);
  files_.beforeReads([gate, held] {
    if (!platform::isMainThread() && !held->exchange(true)) {
      gate->pass();
    }
  });
  document_->removeAfterMarker(nullptr);
  ASSERT_TRUE(gate->awaitArrival());
  document_->saveFileNamed(at("take.wav"), 0);
  EXPECT_EQ(document_->loadingIndicator()->maximum(), 1000);
  EXPECT_TRUE(runMainLoopUntil([&] { return !document_->isFileIOActive(); }));
  EXPECT_TRUE(barIsShown());
  EXPECT_EQ(document_->loadingIndicator()->maximum(), 0) << "it cannot tell how far it is";
  gate->open();
  settle();
  EXPECT_FALSE(barIsShown());
  EXPECT_EQ(elements(), elementsMadeAnew());
}

TEST_F(OVDocumentSummariesTest, ARefreshThatEndsWhileAFileThatCannotBeImportedIsOpenedEndsItsBar) {
  openWith(60'000);
  const std::string letter = at("letter.wav");
  std::ofstream(letter) << "This is a letter, not a sound.\n";
  document_->setPlaybackPosition(20'000);
  document_->removeAfterMarker(nullptr);
  ASSERT_TRUE(awaitGlobalQueue());  // its end waits in the main queue
  import(letter);
  EXPECT_EQ(services_->alerts().size(), 1u);
  EXPECT_FALSE(barIsShown());
  EXPECT_DOUBLE_EQ(time()->durationInSeconds(), 20'000 / 44100.0);
  EXPECT_TRUE(pictureIsUpToDate());
}

TEST_F(OVDocumentSummariesTest, AnImportDuringTheRefreshOfACutIsShownAndUndone) {
  openWith(60'000);
  document_->setPlaybackPosition(20'000);
  const std::string part = writeFile("part.wav", ramp(5'000));
  const auto gate = holdReads();
  document_->removeAfterMarker(nullptr);
  ASSERT_TRUE(gate->awaitArrival());
  document_->importFile(nullptr);
  panels_->answerOpen({part});
  EXPECT_TRUE(runMainLoopUntil([&] { return document_->isImport(); }));
  gate->open();
  awaitIdle();
  EXPECT_EQ(length(), 25'000u);
  EXPECT_EQ(elements(), elementsMadeAnew());
  EXPECT_FALSE(barIsShown());
  document_->undoCommand();
  settle();
  EXPECT_EQ(length(), 20'000u);
  EXPECT_EQ(elements(), elementsMadeAnew());
}

}  // namespace
