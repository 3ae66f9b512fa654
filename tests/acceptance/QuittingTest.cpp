// Closing and quitting with unsaved changes: nothing is lost without an answer.

#include <csignal>
#include <utility>

#include "acceptance/DocumentTest.h"
#include "support/programs/AudioFileTools.h"

using namespace support;

namespace {

class Quitting : public DocumentTest {
 protected:
  void startAndRecord(std::uint32_t seed) {
    ASSERT_NO_FATAL_FAILURE(startOrvo());
    ASSERT_NO_FATAL_FAILURE(record(signalOfSeconds(0.3, seed)));
    ASSERT_NO_FATAL_FAILURE(expectTitle("Unnamed*"));
  }

  void expectEnd() { EXPECT_EQ(orvo_->process().waitForExit(), (ExitStatus{0, 0})); }

  /// Waits until the recording stops growing while the question is shown.
  void waitUntilNoFurtherFrame(std::size_t document) {
    std::uint64_t frames = 0;
    ASSERT_TRUE(eventually([&] {
      const std::uint64_t last = std::exchange(frames, orvo_->recordedFrames(document));
      return last == frames && frames > 0;
    })) << "it goes on recording behind the question";
  }

  /// Names the requested file, and expects the program to end after saving it.
  void nameItAndExpectEnd(const std::string& path) {
    ASSERT_FALSE(panel("Save As").empty());
    ASSERT_NO_FATAL_FAILURE(chooseFile(path));
    expectEnd();
  }
};

TEST_F(Quitting, CancelKeepsEverythingAndDontSaveEndsIt) {
  ASSERT_NO_FATAL_FAILURE(startAndRecord(31));
  const Samples recorded = orvo_->recorded();
  ASSERT_TRUE(screen_->pressKey("ctrl+q"));
  ASSERT_NO_FATAL_FAILURE(answerSheet(Answer::cancel));
  ASSERT_TRUE(screen_->activate(orvo_->window()));
  ASSERT_NO_FATAL_FAILURE(record(signalOfSeconds(0.3, 32)));  // it continues as before
  EXPECT_TRUE(alerts().empty());
  EXPECT_EQ(equalFrames(recorded, orvo_->recorded(), 0), recorded.size() / kChannels);
  ASSERT_NO_FATAL_FAILURE(expectTitle("Unnamed*"));

  ASSERT_TRUE(screen_->pressKey("ctrl+q"));
  ASSERT_NO_FATAL_FAILURE(answerSheet(Answer::dontSave));
  expectEnd();
}

TEST_F(Quitting, SaveAsksForANameSavesAndEndsIt) {
  ASSERT_NO_FATAL_FAILURE(startAndRecord(33));
  const Samples recorded = orvo_->recorded();
  ASSERT_TRUE(screen_->pressKey("ctrl+q"));
  ASSERT_NO_FATAL_FAILURE(answerSheet(Answer::save));
  ASSERT_NO_FATAL_FAILURE(nameItAndExpectEnd(document("take.wav")));
  expectHolds(document("take.wav"), recorded);
  EXPECT_EQ(names(documents_), std::vector<std::string>{"take.wav"});
}

TEST_F(Quitting, CancelledNameKeepsTheProgramAndTheDocument) {
  ASSERT_NO_FATAL_FAILURE(startAndRecord(34));
  ASSERT_TRUE(screen_->pressKey("ctrl+q"));
  ASSERT_NO_FATAL_FAILURE(answerSheet(Answer::save));
  const Window shown = panel("Save As");
  ASSERT_FALSE(shown.empty());
  ASSERT_TRUE(screen_->pressKey("Escape"));
  ASSERT_TRUE(screen_->waitUntilGone(shown));
  ASSERT_TRUE(screen_->activate(orvo_->window()));
  ASSERT_NO_FATAL_FAILURE(record(signalOfSeconds(0.3, 35)));
  ASSERT_NO_FATAL_FAILURE(expectTitle("Unnamed*"));
  EXPECT_TRUE(names(documents_).empty());
}

TEST_F(Quitting, TwoEditedWindowsAreEachAskedFor) {
  ASSERT_NO_FATAL_FAILURE(startAndRecord(36));
  const Samples first = orvo_->recorded();
  const Window second = openFurtherWindow();
  ASSERT_FALSE(second.empty());
  ASSERT_TRUE(screen_->activate(second));
  ASSERT_TRUE(screen_->pressKey("r"));
  ASSERT_TRUE(orvo_->waitUntilRecorded(1, 1));
  const Samples signal = signalOfSeconds(0.3, 37);
  ASSERT_NO_FATAL_FAILURE(feed(signal));
  ASSERT_NO_FATAL_FAILURE(expectRecorded(signal, 1));
  ASSERT_TRUE(screen_->pressKey("ctrl+q"));
  ASSERT_TRUE(eventually([&] { return alerts().size() == 2; }));
  ASSERT_NO_FATAL_FAILURE(waitUntilNoFurtherFrame(1));
  const Samples other = orvo_->recorded(1);
  // One is discarded and the other kept.
  const auto sheets = alerts();
  ASSERT_NO_FATAL_FAILURE(answer(sheets[1], Answer::dontSave));
  ASSERT_TRUE(eventually(
      [&] { return screen_->isVisible(second) != screen_->isVisible(orvo_->window()); }));
  ASSERT_NO_FATAL_FAILURE(answer(sheets[0], Answer::cancel));
  const Window left = screen_->isVisible(second) ? second : orvo_->window();
  ASSERT_TRUE(screen_->activate(left));
  EXPECT_TRUE(screen_->titleOf(left).ends_with('*'));
  ASSERT_TRUE(screen_->pressKey("ctrl+q"));
  ASSERT_NO_FATAL_FAILURE(answerSheet(Answer::save));
  ASSERT_NO_FATAL_FAILURE(nameItAndExpectEnd(document("kept.wav")));
  expectHolds(document("kept.wav"), left == second ? other : first);
}

TEST_F(Quitting, ClosingWhileRecordingStopsItAsksAndSavesAllOfIt) {
  const Samples signal = signalOfSeconds(0.5, 38);
  ASSERT_NO_FATAL_FAILURE(startOrvo());
  ASSERT_NO_FATAL_FAILURE(beginRecording());
  ASSERT_NO_FATAL_FAILURE(feed(signal));
  ASSERT_NO_FATAL_FAILURE(expectRecorded(signal));
  ASSERT_TRUE(screen_->close(orvo_->window()));
  ASSERT_TRUE(eventually([&] { return !alerts().empty(); }));
  ASSERT_NO_FATAL_FAILURE(waitUntilNoFurtherFrame(0));
  const Samples recorded = orvo_->recorded();
  ASSERT_NO_FATAL_FAILURE(answerSheet(Answer::save));
  ASSERT_NO_FATAL_FAILURE(nameItAndExpectEnd(document("take.wav")));
  expectHolds(document("take.wav"), recorded);
}

TEST_F(Quitting, WithNothingToSaveItEndsAtOnce) {
  ASSERT_NO_FATAL_FAILURE(startOrvo());
  ASSERT_FALSE(openFurtherWindow().empty());
  ASSERT_TRUE(screen_->pressKey("ctrl+q"));
  expectEnd();
}

TEST_F(Quitting, MinimisedWindowIsShownWithItsQuestion) {
  ASSERT_NO_FATAL_FAILURE(startAndRecord(39));
  const Window second = openFurtherWindow();
  ASSERT_FALSE(second.empty());
  ASSERT_TRUE(screen_->minimise(orvo_->window()));
  ASSERT_TRUE(screen_->activate(second));
  ASSERT_TRUE(screen_->pressKey("ctrl+q"));
  EXPECT_TRUE(eventually([&] { return screen_->isVisible(orvo_->window()); }));
  ASSERT_NO_FATAL_FAILURE(answerSheet(Answer::dontSave));
  expectEnd();
}

// Signals ----------------------------------------------------------------------------------------

TEST_F(Quitting, SignalAsksAsQuitDoes) {
  ASSERT_NO_FATAL_FAILURE(startAndRecord(40));
  orvo_->process().signal(SIGTERM);
  ASSERT_NO_FATAL_FAILURE(answerSheet(Answer::dontSave));
  expectEnd();
}

TEST_F(Quitting, SignalWithNothingToSaveEndsItAtOnce) {
  ASSERT_NO_FATAL_FAILURE(startOrvo());
  orvo_->process().signal(SIGINT);
  expectEnd();
}

TEST_F(Quitting, SignalAsksAgainAfterCancel) {
  ASSERT_NO_FATAL_FAILURE(startAndRecord(41));
  for (int i = 0; i < 2; ++i) {
    orvo_->process().signal(SIGTERM);
    ASSERT_NO_FATAL_FAILURE(answerSheet(Answer::cancel));
    EXPECT_TRUE(orvo_->process().isRunning());
  }
  ASSERT_NO_FATAL_FAILURE(expectTitle("Unnamed*"));
}

TEST_F(Quitting, SignalChangesNothingWhileTheQuestionIsOpen) {
  ASSERT_NO_FATAL_FAILURE(startAndRecord(42));
  orvo_->process().signal(SIGHUP);
  ASSERT_TRUE(eventually([&] { return alerts().size() == 1; }));
  orvo_->process().signal(SIGHUP);
  ASSERT_NO_FATAL_FAILURE(answerSheet(Answer::dontSave));
  expectEnd();
}

TEST_F(Quitting, ThirdSignalInAShortTimeEndsItWithoutAnAnswer) {
  ASSERT_NO_FATAL_FAILURE(startAndRecord(43));
  for (int i = 0; i < 3; ++i) {
    orvo_->process().signal(SIGINT);
    // Two signals of a kind that are pending at once are one.
    ASSERT_TRUE(eventually([&] { return orvo_->hasTaken(SIGINT); }));
  }
  EXPECT_EQ(orvo_->process().waitForExit(), (ExitStatus{0, SIGINT}));
}

}  // namespace
