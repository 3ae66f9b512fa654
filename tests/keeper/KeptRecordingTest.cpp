#include "keeper/KeptRecording.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <limits>
#include <new>
#include <optional>
#include <utility>

#include "keeper/KeptRecordings.h"
#include "support/ClosedFolder.h"
#include "support/FileSizeLimit.h"
#include "support/RecoveredFolder.h"
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

  [[nodiscard]] std::string recordedDate(const std::string& name) const {
    return support::cafInformation(support::recoveredPath(data_.path()) + "/" + name,
                                   "recorded date");
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

// A file of which one read fails after some bytes.
class OnceUnreadableAudio : public platform::File {
 public:
  explicit OnceUnreadableAudio(std::unique_ptr<platform::File> file) : file_(std::move(file)) {}

  platform::FileTransfer readAt(void* destination, std::uint64_t byteCount,
                                std::uint64_t offset) override {
    const bool fails = !std::exchange(isGood_, true);
    const std::uint64_t count = fails ? byteCount / 2 : byteCount;
    return {.byteCount = file_->readAt(destination, count, offset).byteCount,
            .error = fails ? EIO : 0};
  }
  platform::FileTransfer writeAt(const void*, std::uint64_t, std::uint64_t) override { return {}; }
  std::uint64_t size() override { return file_->size(); }
  int setSize(std::uint64_t) override { return ENOTSUP; }
  [[nodiscard]] int descriptor() const override { return file_->descriptor(); }

 private:
  const std::unique_ptr<platform::File> file_;
  bool isGood_ = false;
};

TEST_F(KeptRecordingTest, WhatIsReadAtTheSecondTryIsNotSilent) {
  write(*buffer_, pattern(80'000, 1), 0);
  KeptRecording recording(
      std::make_unique<OnceUnreadableAudio>(sameFile(buffer_->fileDescriptor())),
      sameFile(buffer_->journal()->descriptor()));
  EXPECT_EQ(recording.recover(*folder_), Outcome::done);
  EXPECT_TRUE(cafAudio(support::recoveredPath(data_.path()) + "/" + kName) ==
              wholeRecording(*buffer_));
}

TEST_F(KeptRecordingTest, HasTheTimeOfItsFirstRecording) {
  write(*buffer_, pattern(800, 1), 0);
  buffer_->journal()->recordingBegins(1'000'000'001);
  const std::string name = "Orvo recording 2001-09-09 01.46.41.caf";
  expectRecovered(name);
  EXPECT_EQ(recordedDate(name), "2001-09-09T01:46:41+0000");
}

TEST_F(KeptRecordingTest, HasTheTimeOfItsFirstChangeWithoutARecording) {
  write(*buffer_, pattern(800, 1), 0);
  expectRecovered();
  EXPECT_EQ(recordedDate(kName), "2001-09-09T01:46:40+0000");
}

// A dying program may have overwritten it. A file whose name is the suffix alone would be hidden.
TEST_F(KeptRecordingTest, TimeThatNoCalendarHasLeavesANameThatIsOffered) {
  buffer_ = editedBuffer(std::numeric_limits<std::int64_t>::max());
  write(*buffer_, pattern(800, 1), 0);
  expectRecovered("Orvo recording.caf");
}

// The document was recovered before, and recorded again by the program that has now died.
TEST_F(KeptRecordingTest, HasTheTimeOfTheRecordingThatItsDocumentWasRecoveredFrom) {
  const std::string former = "Orvo recording 2001-09-09 01.46.40 2.caf";
  buffer_ = OVBlockBuffer::init();
  ASSERT_NE(
      buffer_->beginJournal(
          {.created = 1'600'000'000, .recoveredFrom = former, .firstRecording = 1'000'000'000}),
      nullptr);
  buffer_->journal()->setState(journal::State::edited);
  buffer_->journal()->recordingBegins(1'600'000'001);
  write(*buffer_, pattern(800, 1), 0);
  expectRecovered(former);
  EXPECT_EQ(recordedDate(former), "2001-09-09T01:46:40+0000");

  // Another keeper writes that file just now: the new one still gets the name of that time.
  const std::string folder = support::recoveredPath(data_.path());
  ASSERT_TRUE(std::ofstream(folder + "/" + former + ".part") << "x");
  const support::FileLock writer(folder + "/" + former + ".part");
  ASSERT_TRUE(writer.isHeld());
  EXPECT_EQ(kept().recover(*folder_), Outcome::done);
  EXPECT_EQ(recoveredNames(data_.path()),
            (std::vector<std::string>{former, former + ".part", kName}));
  EXPECT_EQ(recordedDate(kName), "2001-09-09T01:46:40+0000");
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

TEST_F(KeptRecordingTest, WholeRecordingThatMayNotBeNamedIsNamedOnceItMay) {
  write(*buffer_, pattern(800, 1), 0);
  const std::string folder = support::recoveredPath(data_.path());
  std::optional<support::ClosedFolder> closed;
  auto audio = std::make_unique<support::WatchedAudio>(buffer_->fileDescriptor(), [&](int read) {
    if (read == 0) {
      closed.emplace(folder);
    }
  });
  KeptRecording recording(std::move(audio), sameFile(buffer_->journal()->descriptor()));
  EXPECT_EQ(recording.recover(*folder_), Outcome::waiting);
  closed.reset();
  EXPECT_EQ(recoveredNames(data_.path()), std::vector<std::string>{std::string(kName) + ".part"});
  EXPECT_TRUE(cafAudio(folder + "/" + kName + ".part") == wholeRecording(*buffer_));
  EXPECT_EQ(recording.recover(*folder_), Outcome::done);
  EXPECT_EQ(recoveredNames(data_.path()), std::vector<std::string>{kName});
}

TEST_F(KeptRecordingTest, WaitsWhereThereIsNoMemoryForIt) {
  write(*buffer_, pattern(800, 1), 0);
  bool exhausted = true;
  auto audio = std::make_unique<support::WatchedAudio>(buffer_->fileDescriptor(), [&](int) {
    if (exhausted) {
      throw std::bad_alloc();
    }
  });
  KeptRecording recording(std::move(audio), sameFile(buffer_->journal()->descriptor()));
  EXPECT_EQ(recording.recover(*folder_), Outcome::waiting);
  exhausted = false;
  EXPECT_EQ(recording.recover(*folder_), Outcome::done);
  EXPECT_EQ(recoveredNames(data_.path()), std::vector<std::string>{kName});
}

TEST_F(KeptRecordingTest, NothingIsLeftOfACopyThatTheDiskNeverTakes) {
  constexpr std::uint64_t kBytes = 4 << 20;
  write(*buffer_, pattern(kBytes, 1), 0);
  for (const std::uint64_t taken : {std::uint64_t{0}, std::uint64_t{1} << 20}) {
    {
      const support::FileSizeLimit limit(taken);
      EXPECT_EQ(kept().recover(*folder_), Outcome::failed) << taken;
    }
    EXPECT_TRUE(recoveredNames(data_.path()).empty()) << taken;
  }
  expectRecovered();
}

// The disk had room, and takes nothing more once some has been copied.
TEST_F(KeptRecordingTest, NothingIsLeftOfACopyThatFailsOnTheWay) {
  write(*buffer_, pattern(4 << 20, 1), 0);
  std::optional<support::FileSizeLimit> limit;
  auto audio = std::make_unique<support::WatchedAudio>(buffer_->fileDescriptor(), [&](int read) {
    if (read == 4) {
      limit.emplace(1 << 20);
    }
  });
  KeptRecording recording(std::move(audio), sameFile(buffer_->journal()->descriptor()));
  EXPECT_EQ(recording.recover(*folder_), Outcome::failed);
  EXPECT_TRUE(limit) << "nothing was read";
  limit.reset();
  EXPECT_TRUE(recoveredNames(data_.path()).empty());
  expectRecovered();
}

TEST_F(KeptRecordingTest, WithoutAJournalItCannotBeRecovered) {
  KeptRecording recording(sameFile(buffer_->fileDescriptor()), sameFile(buffer_->fileDescriptor()));
  EXPECT_EQ(recording.recover(*folder_), Outcome::failed);
  EXPECT_TRUE(recoveredNames(data_.path()).empty());
}

}  // namespace
