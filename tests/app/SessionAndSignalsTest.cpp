// The end of the desktop's session and termination signals: both ask as a quit does.

#include <filesystem>

#include <QTimer>

#include "app/AppFixture.h"
#include "support/TemporaryFolder.h"

namespace {

class SessionAndSignalsTest : public AppFixture {
 protected:
  std::string at(const std::string& name) const { return folder_.file(name); }

  /// A window with unsaved audio.
  OVRecorderWindow* spawnEdited() {
    OVRecorderWindow* const window = spawn();
    const std::vector<float> samples(2000, 0.5F);
    documentOf(window)->buffer()->writeData(samples.data(), 0, 8000);
    window->setDocumentEdited(true);
    return window;
  }

  bool awaitQuit() {
    return runMainLoopUntil([&] { return quits_ == 1; });
  }

  support::TemporaryFolder folder_;
};

TEST_F(SessionAndSignalsTest, ASessionWithNothingUnsavedEndsWithoutAQuestion) {
  spawn();
  EXPECT_FALSE(delegate_.holdsSession());
  EXPECT_TRUE(delegate_.applicationMayEndSession());
  EXPECT_EQ(quits_, 0) << "the session ends the program, not we";
  EXPECT_EQ(windows().size(), 1U);
}

TEST_F(SessionAndSignalsTest, TheSessionEndsWhenTheChangesWereDiscarded) {
  answerQuestionsWith(std::nullopt);
  spawnEdited();
  spawnEdited();
  // Nothing is answered before both questions are shown.
  QTimer::singleShot(0, [this] {
    EXPECT_EQ(panels_->sheets(), 2U);
    panels_->answerSheet(VLRecorderWindowController::kDontSave);
    panels_->answerSheet(VLRecorderWindowController::kDontSave);
  });
  EXPECT_TRUE(delegate_.holdsSession());
  EXPECT_TRUE(delegate_.applicationMayEndSession());
  EXPECT_TRUE(runMainLoopUntil([] { return windows().empty(); }));
  EXPECT_FALSE(delegate_.isTerminating());
}

TEST_F(SessionAndSignalsTest, TheSessionGoesOnWhenOneQuestionIsCancelled) {
  answerQuestionsWith(std::nullopt);
  OVRecorderWindow* const window = spawnEdited();
  QTimer::singleShot(0,
                     [this] { panels_->answerSheet(VLRecorderWindowController::kCancelClosing); });
  EXPECT_FALSE(delegate_.applicationMayEndSession());
  EXPECT_TRUE(window->isDocumentEdited());
  EXPECT_EQ(quits_, 0);
}

TEST_F(SessionAndSignalsTest, TheSessionWaitsForASaveThatTheUserChose) {
  answerQuestionsWith(std::nullopt);
  spawnEdited();
  QTimer::singleShot(0, [this] {
    panels_->answerSheet(VLRecorderWindowController::kSave);
    panels_->answerSave(at("kept.wav"));
  });
  EXPECT_TRUE(delegate_.applicationMayEndSession());
  EXPECT_TRUE(std::filesystem::exists(at("kept.wav")));
}

TEST_F(SessionAndSignalsTest, TheSessionWaitsForASaveThatIsUnderWay) {
  OVRecorderWindow* const window = spawn();
  documentOf(window)->saveFileNamed(at("copy.wav"), 0);
  EXPECT_TRUE(delegate_.holdsSession());
  EXPECT_TRUE(delegate_.applicationMayEndSession());
  EXPECT_TRUE(std::filesystem::exists(at("copy.wav")));
}

TEST_F(SessionAndSignalsTest, ASessionThatAPanelHoldsGoesOn) {
  OVRecorderWindow* const window = spawnEdited();
  documentOf(window)->saveFileAs(nullptr);
  EXPECT_FALSE(delegate_.applicationMayEndSession());
  EXPECT_EQ(services_->postedAlerts().size(), 1U);
  panels_->answerSave(std::nullopt);
}

TEST_F(SessionAndSignalsTest, ASignalDuringAQuitChangesNothingAndAsksAgainAfterCancel) {
  answerQuestionsWith(std::nullopt);
  spawnEdited();
  delegate_.terminationSignalled();
  ASSERT_EQ(panels_->sheets(), 1U);
  delegate_.terminationSignalled();
  EXPECT_EQ(panels_->sheets(), 1U);
  panels_->answerSheet(VLRecorderWindowController::kCancelClosing);
  EXPECT_FALSE(delegate_.isTerminating());
  delegate_.terminationSignalled();
  EXPECT_EQ(panels_->sheets(), 1U);
  EXPECT_TRUE(delegate_.isTerminating());
  panels_->answerSheet(VLRecorderWindowController::kDontSave);
  EXPECT_TRUE(awaitQuit());
}

TEST_F(SessionAndSignalsTest, SignalsWhileAPanelHoldsTheQuitGiveOneAlert) {
  bool pending = false;
  delegate_.setAlertsPendingCheck([&pending] { return pending; });
  OVRecorderWindow* const window = spawnEdited();
  documentOf(window)->saveFileAs(nullptr);
  delegate_.terminationSignalled();
  pending = true;  // the alert is shown
  delegate_.terminationSignalled();
  EXPECT_EQ(services_->postedAlerts().size(), 1U);
  pending = false;
  delegate_.terminationSignalled();
  EXPECT_EQ(services_->postedAlerts().size(), 2U);
  panels_->answerSave(std::nullopt);
}

}  // namespace
