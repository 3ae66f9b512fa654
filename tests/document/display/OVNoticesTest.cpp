#include "document/display/OVNotices.h"

#include <gtest/gtest.h>

#include "controls/OVRecorderWindow.h"
#include "support/MainLoop.h"
#include "support/fakes/RecordingAnnouncer.h"

namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using Subject = OVNoticeSubject;

class OVNoticesTest : public testing::Test {
 protected:
  /// Turns the clock and lets the timer tick.
  void pass(OVNotices::Duration time) {
    now_ += time;
    notices_.tick();
  }

  OVNotices::TimePoint now_;
  OVNotices notices_{[this] { return now_; }};
};

/// With a window that has the view.
class OVNoticesInAWindowTest : public OVNoticesTest {
 protected:
  OVNoticesInAWindowTest() {
    window_.setAttribute(Qt::WA_DeleteOnClose, false);
    view_->setObjectName("noticeView");
    notices_.connect(&window_);
  }

  support::RecordingAnnouncer announcer_;
  OVRecorderWindow window_;
  OVNoticeView* view_ = new OVNoticeView(&window_);
};

}  // namespace

TEST_F(OVNoticesTest, SaysNothingAtFirst) {
  EXPECT_EQ(notices_.text(), "");
  EXPECT_FALSE(notices_.isTimerRunning());
}

TEST_F(OVNoticesTest, APassingNoticeGoesAfterSomeSeconds) {
  notices_.show(Subject::input, "Recording from Microphone");
  EXPECT_EQ(notices_.text(), "Recording from Microphone");
  EXPECT_TRUE(notices_.isTimerRunning());
  pass(OVNotices::kShownFor - milliseconds(1));
  EXPECT_EQ(notices_.text(), "Recording from Microphone");
  pass(milliseconds(1));
  EXPECT_EQ(notices_.text(), "");
  EXPECT_FALSE(notices_.isTimerRunning());
}

TEST_F(OVNoticesTest, ALastingNoticeStaysUntilItIsWithdrawnAndNeedsNoTimer) {
  notices_.keep(Subject::microphone, "No microphone");
  EXPECT_FALSE(notices_.isTimerRunning());
  pass(std::chrono::hours(100));
  EXPECT_EQ(notices_.text(), "No microphone");
  notices_.withdraw(Subject::microphone);
  EXPECT_EQ(notices_.text(), "");
}

TEST_F(OVNoticesTest, TheMostImportantSubjectIsShownAndTheNextFollowsIt) {
  notices_.keep(Subject::silence, "Nothing is coming in");
  notices_.keep(Subject::microphone, "No microphone");
  notices_.show(Subject::lostFrames, "0.3 s were lost at 12:31");
  EXPECT_EQ(notices_.text(), "0.3 s were lost at 12:31");
  pass(OVNotices::kShownFor);
  EXPECT_EQ(notices_.text(), "No microphone");
  EXPECT_FALSE(notices_.isTimerRunning());
  notices_.withdraw(Subject::microphone);
  EXPECT_EQ(notices_.text(), "Nothing is coming in");
}

TEST_F(OVNoticesTest, ALessImportantNoticeDoesNotReplaceTheOneShown) {
  notices_.show(Subject::disk, "5 minutes are left");
  notices_.show(Subject::input, "Recording from Microphone");
  EXPECT_EQ(notices_.text(), "5 minutes are left");
}

TEST_F(OVNoticesTest, TheTimeThatANoticeIsHiddenDoesNotCount) {
  notices_.show(Subject::input, "Recording from Microphone");
  pass(seconds(2));
  notices_.show(Subject::disk, "5 minutes are left");
  pass(OVNotices::kShownFor);
  EXPECT_EQ(notices_.text(), "Recording from Microphone");
  pass(OVNotices::kShownFor - seconds(2) - milliseconds(1));
  EXPECT_EQ(notices_.text(), "Recording from Microphone");
  pass(milliseconds(1));
  EXPECT_EQ(notices_.text(), "");
}

TEST_F(OVNoticesTest, OldNewsThatWasNeverShownIsDropped) {
  notices_.keep(Subject::microphone, "No microphone");
  notices_.show(Subject::paused, "Recording has been paused.");
  pass(OVNotices::kDroppedAfter);
  notices_.withdraw(Subject::microphone);
  EXPECT_EQ(notices_.text(), "");
}

TEST_F(OVNoticesTest, ANewTextReplacesItsSubjectsFormerOne) {
  notices_.show(Subject::disk, "30 minutes are left");
  pass(seconds(4));
  notices_.show(Subject::disk, "10 minutes are left");
  EXPECT_EQ(notices_.text(), "10 minutes are left");
  pass(seconds(4));
  EXPECT_EQ(notices_.text(), "10 minutes are left");
  pass(seconds(2));
  EXPECT_EQ(notices_.text(), "") << "the former text does not come back";
}

TEST_F(OVNoticesTest, ATextGivenAgainIsShownForLonger) {
  notices_.show(Subject::input, "Recording from Microphone");
  pass(seconds(4));
  notices_.show(Subject::input, "Recording from Microphone");
  pass(seconds(4));
  EXPECT_EQ(notices_.text(), "Recording from Microphone");
}

TEST_F(OVNoticesTest, ALastingNoticeMayBecomeAPassingOneAndBack) {
  notices_.keep(Subject::disk, "1 minute is left");
  notices_.show(Subject::disk, "1 minute is left");
  notices_.keep(Subject::disk, "1 minute is left");
  pass(OVNotices::kShownFor);
  EXPECT_EQ(notices_.text(), "1 minute is left");
  notices_.show(Subject::disk, "There is space again");
  pass(OVNotices::kShownFor);
  EXPECT_EQ(notices_.text(), "");
}

TEST_F(OVNoticesTest, AnEmptyTextWithdrawsTheNotice) {
  notices_.keep(Subject::silence, "Nothing is coming in");
  notices_.keep(Subject::silence, "");
  EXPECT_EQ(notices_.text(), "");
  notices_.show(Subject::input, " \n ");
  EXPECT_EQ(notices_.text(), "");
  EXPECT_FALSE(notices_.isTimerRunning());
}

TEST_F(OVNoticesTest, WithdrawingWhatIsNotThereChangesNothing) {
  notices_.show(Subject::input, "Recording from Microphone");
  notices_.withdraw(Subject::silence);
  EXPECT_EQ(notices_.text(), "Recording from Microphone");
  EXPECT_TRUE(notices_.isTimerRunning());
}

TEST_F(OVNoticesTest, ATextIsPutIntoOneLine) {
  notices_.show(Subject::input, QString::fromUtf8("Recording from\n\t<b>Mic\x01\u2028</b>\r\n 2 "));
  EXPECT_EQ(notices_.text(), "Recording from <b>Mic </b> 2");
}

TEST_F(OVNoticesTest, AClockThatHasJumpedEndsWhatWasShown) {
  notices_.show(Subject::input, "Recording from Microphone");
  pass(std::chrono::hours(10));
  EXPECT_EQ(notices_.text(), "");
}

TEST_F(OVNoticesTest, ItsOwnTimerEndsWhatWasShown) {
  notices_.show(Subject::input, "Recording from Microphone");
  pass(OVNotices::kShownFor - milliseconds(5));
  now_ += seconds(1);
  EXPECT_TRUE(runMainLoopUntil([this] { return notices_.text().isEmpty(); }));
  EXPECT_FALSE(notices_.isTimerRunning());
}

TEST_F(OVNoticesTest, ALastingNoticeGivenAgainAtEveryTickDoesNotTouchTheOneShown) {
  notices_.show(Subject::lostFrames, "0.3 s were lost at 12:31");
  notices_.keep(Subject::silence, "Nothing is coming in");
  now_ += seconds(1);
  notices_.keep(Subject::silence, "Nothing is coming in");
  EXPECT_EQ(notices_.text(), "0.3 s were lost at 12:31");
  pass(OVNotices::kShownFor - seconds(1));
  EXPECT_EQ(notices_.text(), "Nothing is coming in");
}

TEST_F(OVNoticesInAWindowTest, TheViewShowsWhatIsSaid) {
  notices_.keep(Subject::silence, "Nothing is coming in");
  EXPECT_EQ(view_->text(), "Nothing is coming in");
  notices_.show(Subject::disk, "5 minutes are left");
  EXPECT_EQ(view_->text(), "5 minutes are left");
  pass(OVNotices::kShownFor);
  EXPECT_EQ(view_->text(), "Nothing is coming in");
  notices_.withdraw(Subject::silence);
  EXPECT_EQ(view_->text(), "");
}

TEST_F(OVNoticesInAWindowTest, ATextIsAnnouncedOnceWhenItIsFirstShown) {
  notices_.keep(Subject::silence, "Nothing is coming in");
  notices_.keep(Subject::silence, "Nothing is coming in");
  notices_.show(Subject::disk, "5 minutes are left");
  notices_.show(Subject::disk, "5 minutes are left");
  notices_.show(Subject::input, "Recording from Microphone");
  pass(OVNotices::kShownFor);
  EXPECT_EQ(announcer_.texts,
            (std::vector<std::string>{"Nothing is coming in", "5 minutes are left"}))
      << "what was hidden meanwhile is known";
  notices_.withdraw(Subject::silence);
  EXPECT_EQ(announcer_.texts.back(), "Recording from Microphone");
  notices_.keep(Subject::silence, "Nothing is coming in");
  EXPECT_EQ(announcer_.texts.size(), 4U) << "silence that comes back is news";
}

TEST_F(OVNoticesInAWindowTest, AViewThatIsGoneIsNotAsked) {
  delete view_;
  notices_.keep(Subject::silence, "Nothing is coming in");
  EXPECT_EQ(notices_.text(), "Nothing is coming in");
}
