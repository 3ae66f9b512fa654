#include "keeper/KeptRecording.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <cerrno>
#include <optional>

#include "keeper/KeptRecordings.h"
#include "support/ClosedFolder.h"
#include "support/TemporaryFolder.h"
#include "support/fakes/FailingTemporaryFiles.h"
#include "support/fakes/RecordingServices.h"

namespace {

using support::Bytes;
using support::cafAudio;
using support::editedBuffer;
using support::pattern;
using support::recoveredNames;
using support::sameFile;
using support::wholeRecording;
using support::write;
using Outcome = KeptRecording::Outcome;

constexpr const char* kName = "Orvo recording 2001-09-09 01.46.40.caf";  // 10^9 s in UTC

class KeptRecordingTest : public testing::Test {
 protected:
  KeptRecordingTest() {
    ::setenv("TZ", "UTC", 1);  // NOLINT(concurrency-mt-unsafe): no other thread runs
    ::tzset();
    folder_ = *RecoveredFolder::open(data_.path());
  }

  [[nodiscard]] KeptRecording kept() const {
    return {sameFile(buffer_->fileDescriptor()), sameFile(buffer_->journal()->descriptor())};
  }

  void expectRecovered(const std::string& name = kName) {
    EXPECT_EQ(kept().recover(*folder_), Outcome::done);
    EXPECT_EQ(recoveredNames(data_.path()), std::vector<std::string>{name});
    EXPECT_TRUE(cafAudio(support::recoveredPath(data_.path()) + "/" + name) ==
                wholeRecording(*buffer_));
  }

  support::TemporaryFolder data_;
  std::unique_ptr<RecoveredFolder> folder_;
  std::shared_ptr<OVBlockBuffer> buffer_ = editedBuffer();
};

TEST_F(KeptRecordingTest, IsWrittenAsTheDocumentWouldReadIt) {
  write(*buffer_, pattern(800'000, 1), 0);
  write(*buffer_, pattern(4000, 2), 400'000);
  buffer_->cutoffBufferBeforePosition(100);
  buffer_->cutoffBufferAfterPosition(99'000);
  expectRecovered();
}

TEST_F(KeptRecordingTest, HolesAreSilent) {
  write(*buffer_, pattern(800, 1), 0);
  write(*buffer_, pattern(800, 2), 8000);
  buffer_->cutoffBufferAfterPosition(2000);
  expectRecovered();
}

TEST_F(KeptRecordingTest, WhatTheDiskDidNotTakeIsSilent) {
  write(*buffer_, pattern(80'000, 1), 0);
  ASSERT_EQ(::ftruncate(buffer_->fileDescriptor(), 50'000), 0);
  expectRecovered();
}

TEST_F(KeptRecordingTest, HasTheTimeOfItsFirstRecording) {
  write(*buffer_, pattern(800, 1), 0);
  buffer_->journal()->recordingBegins(1'000'000'001);
  expectRecovered("Orvo recording 2001-09-09 01.46.41.caf");
}

TEST_F(KeptRecordingTest, ReplacesTheFileThatItsDocumentCameFrom) {
  buffer_ = editedBuffer(1'000'000'000, "Orvo recording 1999-01-01 00.00.00.caf");
  write(*buffer_, pattern(800, 1), 0);
  expectRecovered("Orvo recording 1999-01-01 00.00.00.caf");
  write(*buffer_, pattern(800, 2), 800);
  expectRecovered("Orvo recording 1999-01-01 00.00.00.caf");
}

TEST_F(KeptRecordingTest, NothingIsWrittenThatWasSavedOrDiscardedOrIsEmpty) {
  EXPECT_EQ(kept().recover(*folder_), Outcome::done);
  write(*buffer_, pattern(800, 1), 0);
  for (const auto state : {journal::State::saved, journal::State::closed}) {
    buffer_->journal()->setState(state);
    EXPECT_EQ(kept().recover(*folder_), Outcome::done);
  }
  EXPECT_TRUE(recoveredNames(data_.path()).empty());
}

/// Audio whose first read takes the right to name files in a folder away.
class ClosingAudio : public platform::File {
 public:
  ClosingAudio(int descriptor, std::string folder)
      : file_(sameFile(descriptor)), folder_(std::move(folder)) {}

  platform::FileTransfer readAt(void* destination, std::uint64_t byteCount,
                                std::uint64_t offset) override {
    if (!closed_) {
      closed_.emplace(folder_);
    }
    return file_->readAt(destination, byteCount, offset);
  }
  platform::FileTransfer writeAt(const void*, std::uint64_t, std::uint64_t) override { return {}; }
  std::uint64_t size() override { return file_->size(); }
  int setSize(std::uint64_t) override { return ENOTSUP; }

 private:
  const std::unique_ptr<platform::File> file_;
  const std::string folder_;
  std::optional<support::ClosedFolder> closed_;
};

TEST_F(KeptRecordingTest, WholeRecordingThatCannotBeNamedStaysAsAPart) {
  write(*buffer_, pattern(800, 1), 0);
  const std::string folder = support::recoveredPath(data_.path());
  {
    KeptRecording recording(std::make_unique<ClosingAudio>(buffer_->fileDescriptor(), folder),
                            sameFile(buffer_->journal()->descriptor()));
    EXPECT_EQ(recording.recover(*folder_), Outcome::failed);
  }
  EXPECT_EQ(recoveredNames(data_.path()), std::vector<std::string>{std::string(kName) + ".part"});
  EXPECT_TRUE(cafAudio(folder + "/" + kName + ".part") == wholeRecording(*buffer_));
}

TEST_F(KeptRecordingTest, WithoutAJournalItCannotBeRecovered) {
  KeptRecording recording(sameFile(buffer_->fileDescriptor()), sameFile(buffer_->fileDescriptor()));
  EXPECT_EQ(recording.recover(*folder_), Outcome::failed);
  EXPECT_TRUE(recoveredNames(data_.path()).empty());
}

}  // namespace
