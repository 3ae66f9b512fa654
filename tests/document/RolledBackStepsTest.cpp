// Steps that fail or are rolled back: the former undo and redo entries are restored.
#include <functional>

#include <gmock/gmock.h>

#include "document/FileFixture.h"
#include "platform/base/AudioTypes.h"
#include "support/fakes/FailingTemporaryFiles.h"

namespace {

class RolledBackStepsTest : public DocumentFileFixture {
 protected:
  ~RolledBackStepsTest() override { closeDocument(); }

  void recordTwoTakes() {
    openWindow();
    recordChunks(1, 0.25F);
    recordChunks(1, 0.5F);
    both_ = audio();
    one_ = samplesAt(0, kChunkFrames);
  }

  /// An import that a full disk interrupts.
  void importInVain() {
    const std::string path = writeFile("part.wav", ramp(2 * platform::kFileChunkFrames));
    files_.fillUpAfter(platform::kFileChunkFrames * kFrameBytes);
    import(path);
    files_.freeSpace();
    EXPECT_EQ(services_->alerts().size(), 1U);
  }

  /// A recording for which there turns out to be no input.
  void recordInVain() {
    document_->nextButton(nullptr);
    pressRecord();
    queues_->fail("newInput", platform::kDeviceUnavailableStatus);
    queues_.input().failLate(platform::kDeviceUnavailableStatus);
    ASSERT_TRUE(runMainLoopUntil([this] { return document_->recorder() == nullptr; }));
    settle();
  }

  void expectUndoAndRedoOfTheSecondTake(const std::function<void()>& step) {
    recordTwoTakes();
    document_->setDocumentEdited(false);
    step();
    EXPECT_EQ(audio(), both_);
    EXPECT_FALSE(document_->isDocumentEdited());
    const auto manager = document_->windowWillReturnUndoManager();
    EXPECT_EQ(manager->undoActionName(), "Record");
    EXPECT_FALSE(manager->canRedo());
    document_->undoCommand();
    settle();
    EXPECT_EQ(audio(), one_);
    document_->redoCommand();
    settle();
    EXPECT_EQ(audio(), both_);
    EXPECT_FALSE(document_->isDocumentEdited());
  }

  void expectRedoOfTheSecondTake(const std::function<void()>& step) {
    recordTwoTakes();
    document_->undoCommand();
    settle();
    const bool edited = document_->isDocumentEdited();
    step();
    EXPECT_EQ(audio(), one_);
    EXPECT_EQ(document_->isDocumentEdited(), edited);
    const auto manager = document_->windowWillReturnUndoManager();
    EXPECT_FALSE(manager->canUndo());
    EXPECT_EQ(manager->redoActionName(), "Record");
    document_->redoCommand();
    settle();
    EXPECT_EQ(audio(), both_);
    document_->undoCommand();
    settle();
    EXPECT_EQ(document_->isDocumentEdited(), edited);
  }

  Samples both_;
  Samples one_;
  support::FailingTemporaryFiles files_;
  platform::Installed<platform::TemporaryFiles>::Scope filesInstallation_{files_};
};

TEST_F(RolledBackStepsTest, AnImportThatIsTakenBackGivesBackTheUndoBeforeIt) {
  expectUndoAndRedoOfTheSecondTake([this] { importInVain(); });
}

TEST_F(RolledBackStepsTest, AnImportThatIsTakenBackGivesBackTheRedoBeforeIt) {
  expectRedoOfTheSecondTake([this] { importInVain(); });
}

TEST_F(RolledBackStepsTest, ARecordingThatIsTakenBackGivesBackTheUndoBeforeIt) {
  expectUndoAndRedoOfTheSecondTake([this] { recordInVain(); });
}

TEST_F(RolledBackStepsTest, ARecordingThatIsTakenBackGivesBackTheRedoBeforeIt) {
  expectRedoOfTheSecondTake([this] { recordInVain(); });
}

}  // namespace
