// The end of the desktop's session, told by a session manager.

#include <csignal>
#include <memory>
#include <string>

#include "acceptance/KilledProgramTest.h"
#include "support/programs/AudioFileTools.h"
#include "support/programs/SessionManager.h"

using namespace support;

namespace {

using Event = SessionManager::Event;

class SessionEnd : public KilledProgramTest {
 protected:
  /// Starts the program in a session, which it has joined when this returns.
  void startInSession() {
    std::string error;
    manager_ = SessionManager::start(error);
    ASSERT_NE(manager_, nullptr) << error;
    RunningOrvo::Options options;
    options.wrapper = {"env"};
    for (const auto& [name, value] : manager_->environment()) {
      options.wrapper.push_back(name + "=" + value);
    }
    ASSERT_NO_FATAL_FAILURE(startWithKeeper(options));
    keeper_ = orvo_->keeperPid();
    expectFurther({Event::registered, Event::saved});
  }

  void startAndRecord(std::uint32_t seed) {
    ASSERT_NO_FATAL_FAILURE(startInSession());
    ASSERT_NO_FATAL_FAILURE(record(signalOfSeconds(0.3, seed)));
    ASSERT_NO_FATAL_FAILURE(expectTitle("Unnamed*"));
  }

  /// Waits until exactly this has happened since the last call.
  void expectFurther(const SessionManager::Events& events) {
    events_.insert(events_.end(), events.begin(), events.end());
    const bool happened = manager_->waitFor(events_);
    ASSERT_TRUE(happened) << testing::PrintToString(manager_->events()) << " instead of "
                          << testing::PrintToString(events_);
  }

  /// Ends the session and lets the program ask.
  void endSessionUntilAsked() {
    manager_->endSession();
    ASSERT_NO_FATAL_FAILURE(expectFurther({Event::askedToSave, Event::interactionRequested}));
    EXPECT_TRUE(alerts().empty()) << "asked before it was permitted";
    manager_->permitInteraction();
    ASSERT_TRUE(eventually([&] { return alerts().size() == 1; }));
    ASSERT_NO_FATAL_FAILURE(expectFurther({Event::interactionPermitted}));
  }

  void expectEndWithNothingRecovered() {
    EXPECT_EQ(orvo_->process().waitForExit(), (ExitStatus{0, 0}));
    EXPECT_TRUE(eventually([&] { return hasEnded(keeper_); }));
    EXPECT_EQ(orvo_->process().errorOutput(), "");
    expectNothingElseIsLeft(0);
  }

  pid_t keeper_ = 0;
  std::string bytesWhenSaved_;  ///< of the file, when the program told the session manager
  std::unique_ptr<SessionManager> manager_;
  SessionManager::Events events_;  ///< that are expected so far
};

TEST_F(SessionEnd, WithNothingUnsavedItAsksNothingAndEndsWhenTold) {
  ASSERT_NO_FATAL_FAILURE(startInSession());
  manager_->endSession();
  ASSERT_NO_FATAL_FAILURE(expectFurther({Event::askedToSave, Event::saved}));
  EXPECT_TRUE(screen_->isVisible(orvo_->window())) << "it ended before it was told";
  manager_->die();
  ASSERT_NO_FATAL_FAILURE(expectFurther({Event::toldToDie, Event::closed}));
  expectEndWithNothingRecovered();
}

TEST_F(SessionEnd, DontSaveLetsTheSessionEndAndNothingIsRecovered) {
  ASSERT_NO_FATAL_FAILURE(startAndRecord(141));
  ASSERT_NO_FATAL_FAILURE(endSessionUntilAsked());
  ASSERT_NO_FATAL_FAILURE(answerSheet(Answer::dontSave));
  ASSERT_NO_FATAL_FAILURE(expectFurther({Event::interactionDone, Event::saved, Event::closed}));
  expectEndWithNothingRecovered();
}

TEST_F(SessionEnd, CancelKeepsTheSessionAndTheRecordingAndTheNextEndAsksAgain) {
  ASSERT_NO_FATAL_FAILURE(startAndRecord(142));
  const Samples recorded = orvo_->recorded();
  ASSERT_NO_FATAL_FAILURE(endSessionUntilAsked());
  ASSERT_NO_FATAL_FAILURE(answerSheet(Answer::cancel));
  ASSERT_NO_FATAL_FAILURE(expectFurther({Event::interactionDoneAndEndCancelled, Event::notSaved}));
  manager_->takeEndBack();
  ASSERT_NO_FATAL_FAILURE(expectFurther({Event::endTakenBack}));

  ASSERT_TRUE(screen_->activate(orvo_->window()));
  const Samples signal = signalOfSeconds(0.3, 143);
  ASSERT_NO_FATAL_FAILURE(record(signal));  // it continues as before
  EXPECT_EQ(equalFrames(recorded, orvo_->recorded(), 0), recorded.size() / kChannels);
  ASSERT_NO_FATAL_FAILURE(expectTitle("Unnamed*"));
  ASSERT_NO_FATAL_FAILURE(listen());
  ASSERT_TRUE(screen_->pressKey("Return") && screen_->pressKey("space"));
  ASSERT_NO_FATAL_FAILURE(expectHeard(signal));

  ASSERT_NO_FATAL_FAILURE(endSessionUntilAsked());
  ASSERT_NO_FATAL_FAILURE(answerSheet(Answer::dontSave));
  ASSERT_NO_FATAL_FAILURE(expectFurther({Event::interactionDone, Event::saved, Event::closed}));
  expectEndWithNothingRecovered();
}

TEST_F(SessionEnd, SaveWritesTheFileBeforeTheSessionGoesOn) {
  ASSERT_NO_FATAL_FAILURE(startAndRecord(144));
  const Samples recorded = orvo_->recorded();
  ASSERT_NO_FATAL_FAILURE(endSessionUntilAsked());
  manager_->whenSaved([&] { bytesWhenSaved_ = fileBytes(document("take.wav")); });
  ASSERT_NO_FATAL_FAILURE(answerSheet(Answer::save));
  ASSERT_FALSE(panel("Save As").empty());
  EXPECT_EQ(manager_->events(), events_) << "the session must wait";
  ASSERT_NO_FATAL_FAILURE(chooseFile(document("take.wav")));
  ASSERT_NO_FATAL_FAILURE(expectFurther({Event::interactionDone, Event::saved, Event::closed}));
  expectEndWithNothingRecovered();
  expectHolds(document("take.wav"), recorded);
  EXPECT_TRUE(bytesWhenSaved_ == fileBytes(document("take.wav"))) << "said before it was";
}

TEST_F(SessionEnd, KilledWhileItAsksItsRecordingIsKept) {
  ASSERT_NO_FATAL_FAILURE(startAndRecord(145));
  ASSERT_NO_FATAL_FAILURE(endSessionUntilAsked());
  ASSERT_NO_FATAL_FAILURE(endBy(SIGKILL));
  ASSERT_NO_FATAL_FAILURE(expectFurther({Event::closed}));
  expectAllOf(written(), recoveredAudio());
  expectNothingElseIsLeft(1);
}

TEST_F(SessionEnd, SessionManagerThatDiesDoesNotEndARecording) {
  ASSERT_NO_FATAL_FAILURE(startInSession());
  const Samples signal = signalOfSeconds(0.3, 148);
  ASSERT_NO_FATAL_FAILURE(beginRecording());
  manager_->vanish();
  ASSERT_NO_FATAL_FAILURE(feed(signal));
  ASSERT_NO_FATAL_FAILURE(expectRecorded(signal));
  ASSERT_TRUE(screen_->pressKey("ctrl+q"));
  ASSERT_NO_FATAL_FAILURE(answerSheet(Answer::dontSave));
  expectEndWithNothingRecovered();
}

TEST_F(SessionEnd, SessionManagerThatDiesLeavesTheQuestionOpen) {
  ASSERT_NO_FATAL_FAILURE(startAndRecord(146));
  const Samples recorded = orvo_->recorded();
  ASSERT_NO_FATAL_FAILURE(endSessionUntilAsked());
  manager_->vanish();
  ASSERT_NO_FATAL_FAILURE(answerSheet(Answer::cancel));
  ASSERT_TRUE(screen_->activate(orvo_->window()));
  ASSERT_NO_FATAL_FAILURE(record(signalOfSeconds(0.3, 147)));
  EXPECT_EQ(equalFrames(recorded, orvo_->recorded(), 0), recorded.size() / kChannels);
  ASSERT_TRUE(screen_->pressKey("ctrl+q"));
  ASSERT_NO_FATAL_FAILURE(answerSheet(Answer::dontSave));
  expectEndWithNothingRecovered();
}

}  // namespace
