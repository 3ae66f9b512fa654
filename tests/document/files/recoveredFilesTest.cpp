#include "document/files/recoveredFiles.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <cerrno>
#include <chrono>
#include <filesystem>
#include <fstream>

#include "support/RecoveredFolder.h"
#include "support/TemporaryFolder.h"
#include "support/TestAudio.h"
#include "support/fakes/TestUserAudioFiles.h"

namespace {

using support::FileLock;
using support::recoveredCaf;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using State = OVRecoveredFile::State;
namespace fs = std::filesystem;

const std::string kName = "Orvo recording 2026-11-21 14.02.31.caf";
const QDateTime kStart(QDate(2026, 11, 21), QTime(14, 2, 31));

class RecoveredFilesTest : public testing::Test {
 protected:
  [[nodiscard]] OVRecoveredListing list(const std::vector<OVRecoveredFile>& held = {}) const {
    return recoveredFilesIn(folder_.path(), held);
  }

  [[nodiscard]] OVRecoveredFile only() const {
    const auto listing = list();
    EXPECT_THAT(listing.files, SizeIs(1));
    return listing.files.empty() ? OVRecoveredFile() : listing.files.front();
  }

  static std::vector<std::string> namesOf(const OVRecoveredListing& listing) {
    std::vector<std::string> names;
    for (const OVRecoveredFile& file : listing.files) {
      names.push_back(fs::path(file.path).filename().string());
    }
    return names;
  }

  support::TemporaryFolder data_;
  support::RecoveredFolder folder_{data_.path()};
};

// Folder ----------------------------------------------------------------------------------------

TEST_F(RecoveredFilesTest, AnEmptyAndAMissingFolderListNothing) {
  EXPECT_THAT(list().files, IsEmpty());
  EXPECT_EQ(list().nearest, folder_.path());
  fs::remove_all(data_.file("orvo"));
  const auto listing = list();
  EXPECT_THAT(listing.files, IsEmpty());
  EXPECT_EQ(listing.error, 0);
  EXPECT_EQ(listing.nearest, data_.path());
  EXPECT_FALSE(fs::exists(data_.file("orvo"))) << "nothing is made";
}

TEST_F(RecoveredFilesTest, AFolderThatOthersMayReadIsClosedToThemAndALinkIsNotUsed) {
  folder_.add(kName, support::ramp(0, 10));
  ASSERT_EQ(::chmod(folder_.path().c_str(), 0755), 0);
  EXPECT_THAT(list().files, SizeIs(1));
  EXPECT_EQ(fs::status(folder_.path()).permissions(), fs::perms::owner_all);

  const std::string link = data_.file("link");
  fs::create_directory_symlink(folder_.path(), link);
  EXPECT_THAT(recoveredFilesIn(link).files, IsEmpty());
  EXPECT_NE(recoveredFilesIn(link).error, 0);
}

TEST_F(RecoveredFilesTest, AFileOfALengthThatTakesNoRoomWaitsForRoomWhileItsWriterLives) {
  const std::string path = folder_.put(kName + ".part", "");
  fs::resize_file(path, 80'000);
  {
    const FileLock writer(path);
    const OVRecoveredFile file = only();
    EXPECT_EQ(file.state, State::waitingForRoom);
    EXPECT_EQ(file.frames, 10'000U);
    EXPECT_FALSE(file.claim);
  }
  EXPECT_EQ(only().state, State::damaged);
}

TEST_F(RecoveredFilesTest, WithoutAUserThereIsNoFolder) {
  EXPECT_EQ(recoveredFilesIn("").error, 0);
  EXPECT_THAT(recoveredFilesIn("").files, IsEmpty());
}

TEST_F(RecoveredFilesTest, TheFolderLiesInTheUsersDataFolder) {
  const QByteArray before = qgetenv("XDG_DATA_HOME");
  const QByteArray home = qgetenv("HOME");
  qputenv("HOME", "/somebody");
  qputenv("XDG_DATA_HOME", "/data");
  EXPECT_EQ(recoveredFolder(), "/data/orvo/recovered");
  for (const char* unusable : {"", "data", "./data"}) {
    qputenv("XDG_DATA_HOME", unusable);
    EXPECT_EQ(recoveredFolder(), "/somebody/.local/share/orvo/recovered");
  }
  qputenv("XDG_DATA_HOME", before);
  qputenv("HOME", home);
}

// Files -----------------------------------------------------------------------------------------

TEST_F(RecoveredFilesTest, AWholeFileHasItsStartAndLengthAndIsClaimed) {
  const std::string path = folder_.add(kName, support::ramp(0, 44100));
  const OVRecoveredFile file = only();
  EXPECT_EQ(file.path, path);
  EXPECT_EQ(file.start, kStart);
  EXPECT_EQ(file.frames, 44100U);
  EXPECT_EQ(file.byteCount, 44100U * 8 + support::kRecoveredHeaderBytes);
  EXPECT_EQ(file.state, State::whole);
  EXPECT_TRUE(file.claim);
  EXPECT_FALSE(FileLock(path).isHeld()) << "the claim holds it";
}

TEST_F(RecoveredFilesTest, TheOldestComesFirstAndEqualTimesAreToldApart) {
  const std::string later = "Orvo recording 2026-11-21 14.02.32.caf";
  const std::string second = "Orvo recording 2026-11-21 14.02.31 2.caf";
  for (const std::string& name : {later, second, kName}) {
    folder_.add(name, support::ramp(0, 10));
  }
  const auto listing = list();
  EXPECT_THAT(namesOf(listing), ElementsAre(kName, second, later));
  EXPECT_EQ(listing.files[1].start, kStart);
}

TEST_F(RecoveredFilesTest, ANameWithoutATimeLeavesTheTimeOfTheFile) {
  for (const char* name :
       {"take.caf", "Orvo recording 2026-13-45 14.02.31.caf", "Orvo recording 2026-11-21.caf",
        "Orvo recording 2026-11-21 14.02.31x.caf", "\xff\xfe\n.caf", "Orvo recording .caf"}) {
    const std::string path = folder_.add(name, support::ramp(0, 10));
    fs::last_write_time(path, fs::file_time_type::clock::now() - std::chrono::hours(48));
    const OVRecoveredFile file = only();
    EXPECT_EQ(file.path, path);
    EXPECT_NEAR(static_cast<double>(file.start.secsTo(QDateTime::currentDateTime())), 48 * 3600,
                600)
        << name;
    fs::remove(path);
  }
}

TEST_F(RecoveredFilesTest, ForeignFilesLinksAndFoldersAreLeftOut) {
  const std::string outside = data_.file("outside.caf");
  std::ofstream(outside) << recoveredCaf(support::ramp(0, 10));
  folder_.put("notes.txt", "mine");
  folder_.put(".hidden.caf", recoveredCaf(support::ramp(0, 10)));
  folder_.put("take.caf.part.bak", "x");
  fs::create_symlink(outside, folder_.file(kName));
  fs::create_directory(folder_.file("folder.caf"));
  ASSERT_EQ(::mkfifo(folder_.file("pipe.caf").c_str(), 0600), 0);
  EXPECT_THAT(namesOf(list()), IsEmpty());
}

TEST_F(RecoveredFilesTest, AFileUnderWayIsBeingWrittenWhileItsWriterLivesAndDamagedAfterwards) {
  const std::string path = folder_.put(kName + ".part", recoveredCaf(support::ramp(0, 100), 80000));
  {
    const FileLock writer(path);
    ASSERT_TRUE(writer.isHeld());
    const OVRecoveredFile file = only();
    EXPECT_EQ(file.state, State::beingWritten);
    EXPECT_EQ(file.start, kStart);
    EXPECT_FALSE(file.claim);
  }
  const OVRecoveredFile left = only();
  EXPECT_EQ(left.state, State::damaged);
  EXPECT_EQ(left.frames, 100U);
  EXPECT_TRUE(left.claim);
}

TEST_F(RecoveredFilesTest, AFileThatAnotherProgramHoldsIsLeftOutAndCounted) {
  const FileLock other(folder_.add(kName, support::ramp(0, 10)));
  const auto listing = list();
  EXPECT_THAT(listing.files, IsEmpty());
  EXPECT_EQ(listing.lockedElsewhere, 1U);
}

TEST_F(RecoveredFilesTest, OnlyOneListingClaimsAFile) {
  folder_.add(kName, support::ramp(0, 10));
  {
    const auto first = list();
    EXPECT_THAT(first.files, SizeIs(1));
    EXPECT_THAT(list().files, IsEmpty());
    EXPECT_THAT(list(first.files).files, SizeIs(1)) << "its own";
  }
  EXPECT_THAT(list().files, SizeIs(1));
}

TEST_F(RecoveredFilesTest, AClaimedFileThatIsGoneIsNotListedAgain) {
  const std::string path = folder_.add(kName, support::ramp(0, 10));
  const auto first = list();
  fs::remove(path);
  EXPECT_THAT(list(first.files).files, IsEmpty());
}

TEST_F(RecoveredFilesTest, AClaimedFileThatWasReplacedIsListedAsTheNewOne) {
  const std::string path = folder_.add(kName, support::ramp(0, 10));
  const auto first = list();
  fs::rename(folder_.add("new", support::ramp(0, 20)), path);
  const auto second = list(first.files);
  ASSERT_THAT(second.files, SizeIs(1));
  EXPECT_EQ(second.files[0].frames, 20U);
  EXPECT_NE(second.files[0].number, first.files[0].number);
  EXPECT_EQ(second.files[0].claim->checkName(), 0);
}

TEST_F(RecoveredFilesTest, AFileThatIsJustBeingReplacedIsLeftOutAndNotClaimed) {
  const std::string path = folder_.add(kName, support::ramp(0, 10));
  auto before = list();
  const FileLock writer(folder_.put(kName + ".part", ""));
  EXPECT_THAT(namesOf(list(before.files)), ElementsAre(kName + ".part")) << "claimed before";
  before.files.clear();
  const auto listing = list();
  EXPECT_THAT(namesOf(listing), ElementsAre(kName + ".part"));
  EXPECT_EQ(listing.files[0].state, State::beingWritten);
  EXPECT_TRUE(FileLock(path).isHeld());
}

TEST_F(RecoveredFilesTest, AFileWhoseReplacementWasNeverFinishedIsListedWithIt) {
  folder_.add(kName, support::ramp(0, 10));
  folder_.put(kName + ".part", recoveredCaf(support::ramp(0, 5), 80));
  EXPECT_THAT(namesOf(list()), ElementsAre(kName, kName + ".part"));
}

TEST_F(RecoveredFilesTest, AHugeFolderListsTheLatest) {
  for (int i = 0; i < 3; ++i) {
    for (int minute = 0; minute < 60; ++minute) {
      const std::string two = (minute < 10 ? "0" : "") + std::to_string(minute);
      folder_.put("Orvo recording 2026-11-2" + std::to_string(i) + " 14." + two + ".00.caf", "");
    }
  }
  const auto listing = list();
  ASSERT_THAT(listing.files, SizeIs(kMaxRecoveredFiles));
  EXPECT_EQ(listing.files.back().start, QDateTime(QDate(2026, 11, 22), QTime(14, 59)));
  EXPECT_EQ(listing.files.front().start, QDateTime(QDate(2026, 11, 21), QTime(14, 20)));
}

// Header ----------------------------------------------------------------------------------------

class RecoveredContentTest : public testing::Test {
 protected:
  OVRecoveredContent contentOf(const std::string& bytes) {
    files_.setBytes(bytes);
    return recoveredContentOf(**files_.openForReading({}));
  }

  void expectUnusable(const std::string& bytes) {
    const auto content = contentOf(bytes);
    EXPECT_EQ(content.frames, 0U);
    EXPECT_FALSE(content.isWhole);
  }

  support::TestUserAudioFiles files_;
};

TEST_F(RecoveredContentTest, AFileThatHoldsWhatItAnnouncesIsWhole) {
  for (const std::size_t frames : {0U, 1U, 1000U}) {
    const auto content = contentOf(recoveredCaf(support::ramp(0, frames)));
    EXPECT_EQ(content.frames, frames);
    EXPECT_TRUE(content.isWhole);
  }
}

TEST_F(RecoveredContentTest, SoundUntilTheEndOfTheFileIsWhole) {
  const auto content = contentOf(recoveredCaf(support::ramp(0, 50), -1));
  EXPECT_EQ(content.frames, 50U);
  EXPECT_TRUE(content.isWhole);
}

TEST_F(RecoveredContentTest, AFileThatAnnouncesMoreIsDamagedAndHoldsWhatIsThere) {
  for (const std::int64_t announced : {std::int64_t{401}, std::int64_t{8000}, INT64_MAX - 4}) {
    const auto content = contentOf(recoveredCaf(support::ramp(0, 50), announced));
    EXPECT_EQ(content.frames, 50U);
    EXPECT_FALSE(content.isWhole) << announced;
  }
}

TEST_F(RecoveredContentTest, AFileThatIsCutAnywhereIsNeverWhole) {
  const std::string whole = recoveredCaf(support::ramp(0, 3));
  for (std::size_t size = 0; size < whole.size(); ++size) {
    EXPECT_FALSE(contentOf(whole.substr(0, size)).isWhole) << size;
  }
}

TEST_F(RecoveredContentTest, ChunksBeforeTheSoundAreSkippedAndSenselessOnesEndTheSearch) {
  const std::string whole = recoveredCaf(support::ramp(0, 3));
  const std::string free = std::string("free\0\0\0\0\0\0\0\2xx", 14);
  EXPECT_EQ(contentOf(whole.substr(0, 52) + free + whole.substr(52)).frames, 3U);
  const std::string endless = std::string("free\x7f\xff\xff\xff\xff\xff\xff\xff", 12);
  expectUnusable(whole.substr(0, 52) + endless + whole.substr(52));
  const std::string empty = std::string("free\0\0\0\0\0\0\0\0", 12);
  std::string many = whole.substr(0, 52);
  for (int i = 0; i < 10000; ++i) {
    many += empty;
  }
  expectUnusable(many + whole.substr(52));
}

TEST_F(RecoveredContentTest, OtherFormatsAndNonsenseAreUnusable) {
  expectUnusable("");
  expectUnusable("This is a letter, not a sound.\n");
  std::string mono = recoveredCaf(support::ramp(0, 3));
  mono[20 + 19] = 4;  // bytes in a packet
  expectUnusable(mono);
  std::string undescribed = recoveredCaf(support::ramp(0, 3));
  undescribed[8] = 'x';
  expectUnusable(undescribed);
}

}  // namespace
