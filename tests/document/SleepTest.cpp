// While a document records, and only then, the machine is kept from suspending.
#include <gmock/gmock.h>

#include "document/FileFixture.h"
#include "support/fakes/FailingTemporaryFiles.h"

namespace {

class SleepTest : public DocumentFileFixture {
 protected:
  ~SleepTest() override { closeDocument(); }

  void beginRecording() {
    pressRecord();
    ASSERT_TRUE(capture(0.25F));
    ASSERT_EQ(sleep_.holds(), 1);
  }
};

TEST_F(SleepTest, ARecordingKeepsTheMachineAwakeAndSaysWhy) {
  openWindow();
  EXPECT_EQ(sleep_.holds(), 0);
  ASSERT_NO_FATAL_FAILURE(beginRecording());
  EXPECT_THAT(sleep_.reasons(), testing::ElementsAre("Orvo is recording"));
  ASSERT_TRUE(capture(0.5F));
  EXPECT_THAT(sleep_.reasons(), testing::SizeIs(1)) << "one hold lasts";
}

TEST_F(SleepTest, PauseStopAndTheRecordButtonLetItSleep) {
  openWindow();
  for (const auto command :
       {&VLRecorderWindowController::pauseButton, &VLRecorderWindowController::stopButton}) {
    ASSERT_NO_FATAL_FAILURE(beginRecording());
    ((*document_).*command)(nullptr);
    EXPECT_EQ(sleep_.holds(), 0);
  }
  ASSERT_NO_FATAL_FAILURE(beginRecording());
  auto* const rec = button("recButton");
  rec->setIsOn(false);
  document_->recButton(rec);
  EXPECT_EQ(sleep_.holds(), 0);
}

TEST_F(SleepTest, PlayingLetsItSleep) {
  openWindow();
  recordChunks(2);
  document_->stopButton(nullptr);
  pressPlay();
  ASSERT_NE(document_->player(), nullptr);
  EXPECT_EQ(sleep_.holds(), 0);
}

TEST_F(SleepTest, AnInputThatIsLostLetsItSleep) {
  openWindow();
  ASSERT_NO_FATAL_FAILURE(beginRecording());
  queues_.input().failLate(platform::kDeviceUnavailableStatus);
  ASSERT_TRUE(runMainLoopUntil([this] { return sleep_.holds() == 0; }));
}

TEST_F(SleepTest, ARecordingThatCannotBeginKeepsNothingAwake) {
  queues_->fail("newInput", platform::kDeviceUnavailableStatus);
  openWindow();
  queues_->fail("newInput", platform::kDeviceUnavailableStatus);
  pressRecord();
  EXPECT_EQ(sleep_.holds(), 0);
}

TEST_F(SleepTest, AFullDiskLetsItSleep) {
  support::FailingTemporaryFiles files;
  const platform::Installed<platform::TemporaryFiles>::Scope installation(files);
  openWindow();
  ASSERT_NO_FATAL_FAILURE(beginRecording());
  files.fillUpAfter(0);
  static_cast<void>(capture(0.5F));
  ASSERT_TRUE(runMainLoopUntil([this] { return sleep_.holds() == 0; }));
  closeDocument();
}

TEST_F(SleepTest, AClosingWindowLetsItSleep) {
  openWindow();
  ASSERT_NO_FATAL_FAILURE(beginRecording());
  panels_->answerEverySheetWith(VLRecorderWindowController::kDontSave);
  document_->window()->performClose();
  EXPECT_TRUE(runMainLoopUntil([this] { return sleep_.holds() == 0; }));
}

TEST_F(SleepTest, ADocumentThatClosesWithoutAQuestionLetsItSleepBeforeItIsDestroyed) {
  openDocument();
  ASSERT_NO_FATAL_FAILURE(beginRecording());
  document_->windowWillClose(nullptr);
  EXPECT_EQ(sleep_.holds(), 0);
  document_.reset();
  settle();
}

TEST_F(SleepTest, EveryRecordingWindowHoldsForItself) {
  openWindow();
  ASSERT_NO_FATAL_FAILURE(beginRecording());
  const auto other = VLRecorderWindowController::initWithWindow(nullptr);
  other->windowDidLoad();
  OVTransportButton rec;
  rec.setIsOn(true);
  other->recButton(&rec);
  EXPECT_EQ(sleep_.holds(), 2);
  document_->pauseButton(nullptr);
  EXPECT_EQ(sleep_.holds(), 1);
  other->windowWillClose(nullptr);
  EXPECT_EQ(sleep_.holds(), 0);
}

TEST_F(SleepTest, ARecordingLooksHowLongTheDiskLasts) {
  openWindow();
  EXPECT_THAT(freeSpace_->folders(), testing::IsEmpty());
  ASSERT_NO_FATAL_FAILURE(beginRecording());
  settle();
  EXPECT_THAT(freeSpace_->folders(), testing::SizeIs(1));
}

}  // namespace
