#include "app/OVRecoveredRecordings.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <filesystem>
#include <optional>

#include <QFileSystemWatcher>
#include <QPushButton>
#include <QSignalSpy>
#include <QTreeWidget>

#include "support/MainLoop.h"
#include "support/RecoveredFolder.h"
#include "support/TemporaryFolder.h"
#include "support/TestAudio.h"
#include "support/fakes/RecordingServices.h"
#include "support/fakes/ScriptedFileDialogs.h"

namespace {

using support::FileLock;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using Occasion = OVRecoveredPanel::Occasion;

const std::string kFirst = "Orvo recording 2026-11-21 14.02.31.caf";
const std::string kSecond = "Orvo recording 2026-11-22 09.00.00.caf";
constexpr int kDelete = 1;

class OVRecoveredRecordingsTest : public testing::Test {
 protected:
  ~OVRecoveredRecordingsTest() override {
    recordings_.reset();
    EXPECT_TRUE(awaitGlobalQueue());
    EXPECT_TRUE(drainMainQueue());
  }

  std::string add(const std::string& name) { return folder_.add(name, support::ramp(0, 44100)); }

  void begin() {
    recordings_->begin();
    awaitListing();
  }
  void awaitListing() {
    EXPECT_TRUE(runMainLoopUntil([&] { return !recordings_->isListing(); }));
  }

  [[nodiscard]] OVRecoveredPanel* panel() { return recordings_->panel(); }
  [[nodiscard]] bool awaitPanel() {
    return runMainLoopUntil([&] { return panel() != nullptr; });
  }
  [[nodiscard]] int rows() { return panel()->findChild<QTreeWidget*>()->topLevelItemCount(); }
  void press(const char* name) {
    panel()->findChild<QPushButton*>(QString::fromLatin1(name))->click();
    EXPECT_TRUE(awaitGlobalQueue());
    EXPECT_TRUE(drainMainQueue());
  }
  /// Whether another Orvo could take the file.
  [[nodiscard]] static bool isFree(const std::string& path) { return FileLock(path).isHeld(); }

  support::InstalledRecordingServices services_;
  support::InstalledScriptedPanels panels_;
  support::TemporaryFolder data_;
  support::RecoveredFolder folder_{data_.path()};
  bool mayAsk_ = true;
  std::vector<OVRecoveredFile> opened_;
  std::unique_ptr<OVRecoveredRecordings> recordings_ = std::make_unique<OVRecoveredRecordings>(
      folder_.path(), OVRecoveredRecordings::Callbacks{
                          .open = [this](const OVRecoveredFile& file) { opened_.push_back(file); },
                          .mayAsk = [this] { return mayAsk_; }});
};

TEST_F(OVRecoveredRecordingsTest, NothingIsAskedWhenThereIsNothing) {
  begin();
  EXPECT_EQ(panel(), nullptr);
  EXPECT_THAT(services_->consoleLines(), IsEmpty());
}

TEST_F(OVRecoveredRecordingsTest, OneQuestionIsAskedAboutAllAndTheFilesAreClaimedMeanwhile) {
  const std::string first = add(kFirst);
  const std::string second = add(kSecond);
  begin();
  ASSERT_NE(panel(), nullptr);
  EXPECT_EQ(panel()->occasion(), Occasion::unexpectedEnd);
  EXPECT_TRUE(panel()->isVisible());
  EXPECT_FALSE(panel()->isModal());
  EXPECT_THAT(panel()->chosen(), ElementsAre(first, second));
  EXPECT_FALSE(isFree(first));
  EXPECT_FALSE(isFree(second));
}

TEST_F(OVRecoveredRecordingsTest, OpenPassesTheChosenFilesWithTheirClaimsAndReleasesTheOthers) {
  const std::string first = add(kFirst);
  const std::string second = add(kSecond);
  begin();
  panel()->findChild<QTreeWidget*>()->topLevelItem(0)->setCheckState(0, Qt::Unchecked);
  press("openRecovered");
  EXPECT_EQ(panel(), nullptr);
  ASSERT_THAT(opened_, SizeIs(1));
  EXPECT_EQ(opened_[0].path, second);
  EXPECT_FALSE(isFree(second));
  EXPECT_TRUE(isFree(first));
  opened_.clear();
  EXPECT_TRUE(isFree(second));
}

TEST_F(OVRecoveredRecordingsTest, LaterReleasesThemAndTheyAreNotAskedAboutAgainButListed) {
  const std::string first = add(kFirst);
  begin();
  press("recoveredLater");
  EXPECT_EQ(panel(), nullptr);
  EXPECT_TRUE(isFree(first));
  QFileSystemWatcher watcher({QString::fromStdString(folder_.path())});
  const QSignalSpy changes(&watcher, &QFileSystemWatcher::directoryChanged);
  folder_.put("notes.txt", "a change in the folder");
  EXPECT_TRUE(runMainLoopUntil([&] { return !changes.isEmpty(); }));
  EXPECT_TRUE(drainMainQueue());
  awaitListing();
  EXPECT_EQ(panel(), nullptr);
  EXPECT_TRUE(isFree(first));

  recordings_->show();
  ASSERT_TRUE(awaitPanel());
  EXPECT_EQ(panel()->occasion(), Occasion::command);
  EXPECT_EQ(rows(), 1);
  EXPECT_FALSE(isFree(first));
}

TEST_F(OVRecoveredRecordingsTest, AFileThatAppearsLaterIsAskedAbout) {
  begin();
  EXPECT_EQ(panel(), nullptr);
  const std::string written = folder_.put(kFirst + ".part", "");
  {
    const FileLock writer(written);
    std::filesystem::resize_file(written, 100);
    awaitListing();
    EXPECT_EQ(panel(), nullptr) << "still being written";
    folder_.put(kFirst + ".part", support::recoveredCaf(support::ramp(0, 1000)));
    std::filesystem::rename(written, folder_.file(kFirst));
  }
  ASSERT_TRUE(awaitPanel());
  EXPECT_THAT(panel()->chosen(), ElementsAre(folder_.file(kFirst)));
}

TEST_F(OVRecoveredRecordingsTest, AWriterThatDiesLeavesADamagedFileThatIsAskedAbout) {
  const std::string written =
      folder_.put(kFirst + ".part", support::recoveredCaf(support::ramp(0, 1000), 800000));
  std::optional<FileLock> writer(written);
  begin();
  EXPECT_EQ(panel(), nullptr);
  writer.reset();
  ASSERT_TRUE(awaitPanel());
  EXPECT_EQ(panel()->findChild<QTreeWidget*>()->topLevelItem(0)->text(2), "Damaged");
}

TEST_F(OVRecoveredRecordingsTest, AFileThatAppearsWhileAQuestionIsShownIsAddedToIt) {
  add(kFirst);
  begin();
  ASSERT_NE(panel(), nullptr);
  const QPointer<OVRecoveredPanel> shown = panel();
  add(kSecond);
  EXPECT_TRUE(runMainLoopUntil([&] { return rows() == 2; }));
  EXPECT_EQ(panel(), shown);
}

TEST_F(OVRecoveredRecordingsTest, TheQuestionWaitsUntilItDisturbsNothing) {
  const std::string first = add(kFirst);
  mayAsk_ = false;
  begin();
  EXPECT_EQ(panel(), nullptr);
  EXPECT_FALSE(isFree(first));
  mayAsk_ = true;
  EXPECT_TRUE(awaitPanel());
}

TEST_F(OVRecoveredRecordingsTest, OnlyOneOfTwoProgramsOffersAFile) {
  const std::string first = add(kFirst);
  OVRecoveredRecordings other(
      folder_.path(), {.open = [](const OVRecoveredFile&) {}, .mayAsk = [] { return true; }});
  begin();
  ASSERT_NE(panel(), nullptr);
  other.begin();
  EXPECT_TRUE(runMainLoopUntil([&] { return !other.isListing(); }));
  EXPECT_EQ(other.panel(), nullptr);
  other.show();
  EXPECT_TRUE(runMainLoopUntil([&] { return other.panel() != nullptr; }));
  EXPECT_EQ(other.panel()->findChild<QTreeWidget*>()->topLevelItemCount(), 0);
}

TEST_F(OVRecoveredRecordingsTest, AFileThatAnotherProgramReleasesSoonIsAskedAbout) {
  const std::string first = add(kFirst);
  std::optional<FileLock> writer(first);  // has renamed it, and ends in a moment
  begin();
  EXPECT_EQ(panel(), nullptr);
  writer.reset();
  EXPECT_TRUE(awaitPanel());
}

TEST_F(OVRecoveredRecordingsTest, TheCommandShowsAnEmptyListAndItsPanelIsOne) {
  recordings_->show();
  ASSERT_TRUE(awaitPanel());
  EXPECT_EQ(rows(), 0);
  const QPointer<OVRecoveredPanel> shown = panel();
  recordings_->show();
  awaitListing();
  EXPECT_EQ(panel(), shown);
}

TEST_F(OVRecoveredRecordingsTest, AFolderThatMayNotBeUsedIsSaidOnTheConsoleOnce) {
  std::filesystem::remove_all(folder_.path());
  std::filesystem::create_directory_symlink(data_.makeFolder("elsewhere"), folder_.path());
  begin();
  EXPECT_EQ(panel(), nullptr);
  recordings_->show();
  ASSERT_TRUE(awaitPanel());
  EXPECT_EQ(rows(), 0);
  EXPECT_EQ(services_->consoleLinesWith(folder_.path()), 1U);
}

TEST_F(OVRecoveredRecordingsTest, ARecordingThatWaitsForRoomIsToldOnceAndOfferedWhenItIsThere) {
  const std::string part = folder_.put(kFirst + ".part", "");
  std::filesystem::resize_file(part, 80'000);
  {
    const FileLock writer(part);
    begin();
    ASSERT_NE(panel(), nullptr);
    EXPECT_EQ(panel()->occasion(), Occasion::unexpectedEnd);
    EXPECT_THAT(panel()->chosen(), IsEmpty());
    std::filesystem::remove(part);
    add(kFirst);
    EXPECT_TRUE(runMainLoopUntil([&] { return panel()->chosen().size() == 1; }));
  }
}

// Delete ----------------------------------------------------------------------------------------

TEST_F(OVRecoveredRecordingsTest, DeleteAsksAgainAndCancelDeletesNothing) {
  add(kFirst);
  begin();
  press("deleteRecovered");
  ASSERT_EQ(panels_->sheets(), 1U);
  EXPECT_EQ(panels_->sheet().window, panel());
  EXPECT_THAT(panels_->sheet().message.toStdString(), HasSubstr("Recordings to be deleted: 1."));
  EXPECT_EQ(panels_->sheet().buttons.front().title, "&Cancel") << "the default";
  panels_->answerSheet(platform::FileDialogs::kNoAnswer);
  EXPECT_TRUE(awaitGlobalQueue());
  EXPECT_TRUE(folder_.has(kFirst));
  EXPECT_NE(panel(), nullptr);
}

TEST_F(OVRecoveredRecordingsTest, DeletingSomeLeavesTheQuestionAndDeletingAllEndsIt) {
  add(kFirst);
  add(kSecond);
  begin();
  QTreeWidgetItem* const second = panel()->findChild<QTreeWidget*>()->topLevelItem(1);
  second->setCheckState(0, Qt::Unchecked);
  press("deleteRecovered");
  panels_->answerSheet(kDelete);
  EXPECT_TRUE(runMainLoopUntil([&] { return !folder_.has(kFirst); }));
  EXPECT_TRUE(folder_.has(kSecond));
  ASSERT_NE(panel(), nullptr);
  EXPECT_EQ(rows(), 1);
  panel()->findChild<QTreeWidget*>()->topLevelItem(0)->setCheckState(0, Qt::Checked);
  press("deleteRecovered");
  panels_->answerSheet(kDelete);
  EXPECT_TRUE(runMainLoopUntil([&] { return !folder_.has(kSecond); }));
  EXPECT_EQ(panel(), nullptr);
  EXPECT_THAT(services_->postedAlerts(), IsEmpty());
}

TEST_F(OVRecoveredRecordingsTest, AFileThatIsGoneIsDeletedWithoutAnAlert) {
  const std::string first = add(kFirst);
  begin();
  press("deleteRecovered");
  std::filesystem::remove(first);
  panels_->answerSheet(kDelete);
  EXPECT_TRUE(awaitGlobalQueue());
  EXPECT_THAT(services_->postedAlerts(), IsEmpty());
}

TEST_F(OVRecoveredRecordingsTest, AFileThatCannotBeDeletedIsToldOnce) {
  const std::string first = add(kFirst);
  begin();
  press("deleteRecovered");
  std::filesystem::remove(first);
  add(kFirst);  // another file of the name, which was not the one that was shown
  panels_->answerSheet(kDelete);
  EXPECT_TRUE(runMainLoopUntil([&] { return services_->postedAlerts().size() == 1; }));
  EXPECT_THAT(services_->postedAlerts()[0].title, HasSubstr("could not be deleted"));
  EXPECT_TRUE(folder_.has(kFirst));
}

TEST_F(OVRecoveredRecordingsTest, TheFolderMayBeDeletedAndComeBack) {
  begin();
  std::filesystem::remove_all(folder_.path());
  const support::RecoveredFolder again(data_.path());
  add(kFirst);
  EXPECT_TRUE(awaitPanel());
}

TEST_F(OVRecoveredRecordingsTest, AFolderThatIsMissingIsNotMadeAndNoticedWhenAnotherMakesIt) {
  std::filesystem::remove_all(data_.file("orvo"));
  begin();
  EXPECT_EQ(panel(), nullptr);
  EXPECT_FALSE(std::filesystem::exists(data_.file("orvo")));
  const support::RecoveredFolder made(data_.path());
  add(kFirst);
  EXPECT_TRUE(awaitPanel());
  EXPECT_THAT(services_->consoleLines(), IsEmpty());
}

TEST_F(OVRecoveredRecordingsTest, AFileThatReplacesOneThatWasAskedAboutIsAskedAbout) {
  const std::string first = add(kFirst);
  begin();
  press("recoveredLater");
  std::filesystem::rename(folder_.add("new", support::ramp(0, 500)), first);
  ASSERT_TRUE(awaitPanel());
  EXPECT_THAT(panel()->chosen(), ElementsAre(first));
}

}  // namespace
