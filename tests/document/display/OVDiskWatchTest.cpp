#include "document/display/OVDiskWatch.h"

#include <cerrno>
#include <memory>
#include <vector>

#include <gmock/gmock.h>

#include "document/display/OVNotices.h"
#include "document/editing/OVDocumentAudio.h"
#include "document/editing/OVDocumentLife.h"
#include "storage/OVBlockBuffer.h"
#include "support/Gate.h"
#include "support/MainLoop.h"
#include "support/fakes/FailingTemporaryFiles.h"
#include "support/fakes/RecordingServices.h"
#include "support/fakes/ScriptedFreeSpace.h"

namespace {

using testing::Each;
using testing::HasSubstr;
using testing::SizeIs;

class OVDiskWatchTest : public testing::Test {
 protected:
  static constexpr std::uint64_t kMinute = std::uint64_t{60} * 44100 * 8;  // bytes

  OVDiskWatchTest() {
    life_.begin(document_);
    audio_.setBuffer(OVBlockBuffer::init());
  }
  ~OVDiskWatchTest() override {
    gate_.open();
    EXPECT_TRUE(awaitGlobalQueue());
    EXPECT_TRUE(drainMainQueue());
  }

  void settle() {
    ASSERT_TRUE(awaitGlobalQueue());
    ASSERT_TRUE(drainMainQueue());
  }

  void record(std::uint64_t freeBytes) {
    space_->set(freeBytes);
    watch_.setRecording(true);
    settle();
  }
  void lookAt(std::uint64_t freeBytes) {
    space_->set(freeBytes);
    watch_.look();
    settle();
  }
  /// A disk that does not answer until the gate is open.
  void hang() {
    space_->beforeAnswers([this] { gate_.pass(); });
  }

  QString text() const { return notices_.text(); }

  support::InstalledRecordingServices services_;
  support::InstalledFreeSpace space_;
  support::FailingTemporaryFiles files_;
  platform::Installed<platform::TemporaryFiles>::Scope filesInstallation_{files_};
  support::Gate gate_;
  std::shared_ptr<int> document_ = std::make_shared<int>();
  OVDocumentLife life_;
  OVDocumentAudio audio_;
  OVNotices::TimePoint now_;
  OVNotices notices_{[this] { return now_; }};
  OVDiskWatch watch_{life_, audio_, notices_};
};

TEST_F(OVDiskWatchTest, LooksAgainByItselfWhileRecording) {
  constexpr double kAtOnce = 0.001;  // seconds
  OVDiskWatch quick(life_, audio_, notices_, kAtOnce);
  space_->set(kMinute * 120);
  quick.setRecording(true);
  ASSERT_TRUE(runMainLoopUntil([&] { return space_->folders().size() >= 3; }));
  EXPECT_EQ(text(), "");
  space_->set(kMinute * 4);
  EXPECT_TRUE(runMainLoopUntil([&] { return text() != ""; }));
  quick.setRecording(false);
  settle();
  const std::size_t looks = space_->folders().size();
  QCoreApplication::processEvents();
  settle();
  EXPECT_EQ(space_->folders().size(), looks);
}

TEST_F(OVDiskWatchTest, LooksAtTheFolderOfTheTemporaryFileAtOnceAndOnlyWhileRecording) {
  EXPECT_FALSE(watch_.isRunning());
  EXPECT_THAT(space_->folders(), SizeIs(0));
  record(support::ScriptedFreeSpace::kUnlimited);
  EXPECT_TRUE(watch_.isRunning());
  EXPECT_THAT(space_->folders(), testing::ElementsAre("/nowhere"));
  EXPECT_EQ(text(), "");
  watch_.setRecording(false);
  EXPECT_FALSE(watch_.isRunning());
}

TEST_F(OVDiskWatchTest, TellsEachLimitOnceAndNamesTheFolder) {
  record(31 * kMinute);
  EXPECT_EQ(text(), "");
  for (const int minutes : {30, 10, 5}) {
    lookAt(static_cast<std::uint64_t>(minutes) * kMinute);
    EXPECT_EQ(text(), QStringLiteral("Space for less than %1 minutes of recording is left in "
                                     "“/nowhere”.")
                          .arg(minutes));
    now_ += 2 * OVNotices::kShownFor;
    notices_.tick();
    EXPECT_EQ(text(), "") << "it passes";
    lookAt(static_cast<std::uint64_t>(minutes) * kMinute - 1000);
    EXPECT_EQ(text(), "") << "it is told once";
  }
}

TEST_F(OVDiskWatchTest, TheLastMinuteIsToldAtTheStartAndStaysUntilTheRecordingEnds) {
  record(kMinute / 2);
  const QString last = "Space for less than a minute of recording is left in “/nowhere”.";
  EXPECT_EQ(text(), last);
  now_ += 10 * OVNotices::kDroppedAfter;
  notices_.tick();
  EXPECT_EQ(text(), last);
  watch_.setRecording(false);
  EXPECT_EQ(text(), "");
  record(kMinute / 2);
  EXPECT_EQ(text(), last) << "every recording tells it anew";
}

TEST_F(OVDiskWatchTest, SpaceThatCameBackTakesTheLastMinuteAwayAndIsToldWhenItGoesAgain) {
  record(kMinute / 2);
  lookAt(100 * kMinute);
  EXPECT_EQ(text(), "");
  lookAt(29 * kMinute);
  EXPECT_THAT(text().toStdString(), HasSubstr("less than 30 minutes"));
  lookAt(kMinute);
  EXPECT_THAT(text().toStdString(), HasSubstr("less than a minute"));
}

TEST_F(OVDiskWatchTest, DocumentsThatRecordAtTheSameTimeFillTheDiskTogether) {
  OVDocumentAudio otherAudio;
  otherAudio.setBuffer(OVBlockBuffer::init());
  OVNotices otherNotices{[this] { return now_; }};
  {
    OVDiskWatch other(life_, otherAudio, otherNotices);
    other.setRecording(true);
    settle();
    record(11 * kMinute);
    EXPECT_THAT(text().toStdString(), HasSubstr("less than 10 minutes")) << "it is 5.5";
    other.look();
    settle();
    EXPECT_THAT(otherNotices.text().toStdString(), HasSubstr("less than 10 minutes"));
    other.setRecording(false);
    lookAt(15 * kMinute);
    lookAt(11 * kMinute);
    now_ += 2 * OVNotices::kShownFor;
    notices_.tick();
    lookAt(10 * kMinute + 1000);
    EXPECT_EQ(text(), "") << "it is alone again";
    other.setRecording(true);
    settle();
    lookAt(10 * kMinute);
    EXPECT_THAT(text().toStdString(), HasSubstr("less than 5 minutes"));
  }
  watch_.setRecording(true);
  lookAt(9 * kMinute);
  EXPECT_THAT(text().toStdString(), HasSubstr("less than 10 minutes")) << "the other is closed";
}

TEST_F(OVDiskWatchTest, TenRecordingsOnADiskForTenMinutesHaveOneLeft) {
  std::vector<std::unique_ptr<OVDocumentAudio>> audio;
  std::vector<std::unique_ptr<OVDiskWatch>> watches;
  OVNotices notices{[this] { return now_; }};
  space_->set(10 * kMinute);
  for (int i = 0; i < 9; ++i) {
    audio.push_back(std::make_unique<OVDocumentAudio>());
    audio.back()->setBuffer(OVBlockBuffer::init());
    watches.push_back(std::make_unique<OVDiskWatch>(life_, *audio.back(), notices));
    watches.back()->setRecording(true);
  }
  record(10 * kMinute);
  EXPECT_EQ(text(), "Space for less than a minute of recording is left in “/nowhere”.");
}

TEST_F(OVDiskWatchTest, SpaceThatCannotBeReadIsOneLineInTheConsoleAndNoNotice) {
  space_->fail(ESTALE);
  watch_.setRecording(true);
  settle();
  watch_.look();
  settle();
  watch_.setRecording(false);
  watch_.setRecording(true);
  settle();
  EXPECT_THAT(space_->folders(), SizeIs(3));
  EXPECT_EQ(text(), "");
  EXPECT_EQ(services_->consoleLinesWith("/nowhere"), 1U);
}

TEST_F(OVDiskWatchTest, ADiskThatDoesNotAnswerHoldsUpNothingAndIsAskedOnce) {
  hang();
  space_->set(kMinute / 2);
  watch_.setRecording(true);
  ASSERT_TRUE(gate_.awaitArrival());
  for (int i = 0; i < 5; ++i) {
    watch_.look();
  }
  watch_.setRecording(false);
  watch_.setRecording(true);
  watch_.look();
  EXPECT_THAT(space_->folders(), SizeIs(1));
  gate_.open();
  ASSERT_TRUE(runMainLoopUntil([&] { return text() != ""; }));
  EXPECT_THAT(space_->folders(), SizeIs(2)) << "the second recording looks as soon as it can";
}

TEST_F(OVDiskWatchTest, ManyDocumentsOnADiskThatDoesNotAnswerBlockOneThread) {
  hang();
  OVDocumentAudio others;
  others.setBuffer(OVBlockBuffer::init());
  OVDiskWatch second(life_, others, notices_);
  OVDiskWatch third(life_, others, notices_);
  for (OVDiskWatch* const watch : {&watch_, &second, &third}) {
    watch->setRecording(true);
  }
  ASSERT_TRUE(gate_.awaitArrival());
  bool otherWorkDone = false;
  platform::globalQueue().async(
      [&] { platform::mainQueue().async([&] { otherWorkDone = true; }); });
  ASSERT_TRUE(runMainLoopUntil([&] { return otherWorkDone; }));
  EXPECT_THAT(space_->folders(), SizeIs(1));
  gate_.open();
  settle();
  EXPECT_THAT(space_->folders(), SizeIs(3));
}

TEST_F(OVDiskWatchTest, AnAnswerAfterTheRecordingOrAfterTheDocumentTellsNothing) {
  hang();
  space_->set(kMinute / 2);
  watch_.setRecording(true);
  ASSERT_TRUE(gate_.awaitArrival());
  watch_.setRecording(false);
  gate_.open();
  settle();
  EXPECT_EQ(text(), "");
  watch_.setRecording(true);
  document_.reset();
  settle();
  EXPECT_EQ(text(), "");
}

TEST_F(OVDiskWatchTest, AudioThatIsNotInAFileIsNotWatched) {
  audio_.setBuffer(nullptr);
  record(0);
  EXPECT_THAT(space_->folders(), SizeIs(0));
  EXPECT_EQ(text(), "");
}

}  // namespace
