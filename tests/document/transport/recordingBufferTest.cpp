#include "document/transport/recordingBuffer.h"

#include <cerrno>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>

#include "document/DocumentFixture.h"
#include "support/fakes/FailingTemporaryFiles.h"

namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

class RecordingBufferTest : public DocumentFixture {
 protected:
  support::FailingTemporaryFiles files_;
  platform::Installed<platform::TemporaryFiles>::Scope installation_{files_};
};

TEST_F(RecordingBufferTest, BelowTheAlertStandTheTemporaryDirectoryAndTheSystemsCause) {
  const std::vector<std::pair<int, std::string>> causes{
      {ENOENT, "There is no such folder."},
      {ENOTDIR, "It is not a folder."},
      {EACCES, "You do not have the permission for it."},
      {ENOSPC, "The disk is full."},
  };
  for (const auto& [error, cause] : causes) {
    services_->clear();
    files_.failCreation(error);
    EXPECT_EQ(makeRecordingBuffer(), nullptr);
    ASSERT_THAT(services_->alerts(), SizeIs(1));
    EXPECT_EQ(services_->alerts()[0].title, "couldn't open temp file for writing!");
    EXPECT_EQ(services_->alerts()[0].message,
              "The file /nowhere/orvoXXXXXX couldn't be opened for writing. This shouldn't happen! "
              "Check your permissions.\n\nThe temporary directory “/nowhere” cannot be used. " +
                  cause);
  }
}

TEST_F(RecordingBufferTest, EachPressOfRecordSaysItAgainAndRollsBack) {
  files_.failCreation(ENOENT);
  openWindow();
  ASSERT_EQ(alertCount(), 1U);
  for (std::size_t press = 1; press <= 3; ++press) {
    pressRecord();
    EXPECT_EQ(alertCount(), 1 + press);
    EXPECT_FALSE(button("recButton")->isOn());
    EXPECT_FALSE(document_->isDocumentEdited());
    EXPECT_FALSE(document_->windowWillReturnUndoManager()->canUndo());
  }
  EXPECT_THAT(services_->alerts(), IsEmpty()) << "no main loop runs in the middle of a command";
  EXPECT_THAT(services_->postedAlerts()[3].message, HasSubstr("There is no such folder."));
}

TEST_F(RecordingBufferTest, RecordWorksAsSoonAsTheDirectoryCanBeUsed) {
  files_.failCreation(ENOENT);
  openWindow();
  files_.failCreation(0);
  recordChunks(2);
  EXPECT_EQ(length(), 2 * kChunkFrames);
  EXPECT_TRUE(document_->isDocumentEdited());
  EXPECT_EQ(alertCount(), 1U) << "of the window's opening";
}

}  // namespace
