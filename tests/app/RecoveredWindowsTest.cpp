// Recovered recordings in the whole application.
#include <gmock/gmock.h>

#include <filesystem>

#include <QLocale>
#include <QPushButton>

#include "app/AppFixture.h"
#include "support/FewDescriptors.h"
#include "support/Gate.h"
#include "support/RecoveredFolder.h"
#include "support/TemporaryFolder.h"
#include "support/TestAudio.h"
#include "support/fakes/FailingTemporaryFiles.h"

namespace {

using testing::IsEmpty;
using testing::UnorderedElementsAre;

const std::string kFirst = "Orvo recording 2026-11-21 14.02.31.caf";
const std::string kSecond = "Orvo recording 2026-11-22 09.00.00.caf";

class RecoveredWindowsTest : public AppFixture {
 protected:
  ~RecoveredWindowsTest() override { std::filesystem::remove_all(folder_.path()); }

  void add(const std::string& name) { folder_.add(name, support::ramp(0, 1000)); }

  bool awaitPanel() {
    return runMainLoopUntil([&] { return delegate_.recovered().panel() != nullptr; });
  }
  void press(const char* button) {
    delegate_.recovered().panel()->findChild<QPushButton*>(QString::fromLatin1(button))->click();
  }
  static std::string titleOf(QDate date, QTime time) {
    return "Orvo - Recovered " +
           QLocale().toString(QDateTime(date, time), QLocale::ShortFormat).toStdString();
  }
  static std::vector<std::string> titles() {
    std::vector<std::string> titles;
    for (const OVRecorderWindow* const window : windows()) {
      titles.push_back(window->title().toStdString());
    }
    return titles;
  }
  bool awaitEdited(std::size_t count) {
    return runMainLoopUntil([&] {
      const auto all = windows();
      return static_cast<std::size_t>(std::count_if(all.begin(), all.end(), [](const auto* one) {
               return one->isDocumentEdited();
             })) == count;
    });
  }

  const support::RecoveredFolder folder_{qgetenv("XDG_DATA_HOME").toStdString()};
};

TEST_F(RecoveredWindowsTest, EachOpensInAWindowOfItsOwnAndIsInNoListAndTheEmptyWindowStays) {
  add(kFirst);
  add(kSecond);
  delegate_.applicationDidFinishLaunching();
  delegate_.offerRecovered();
  ASSERT_TRUE(awaitPanel());
  press("openRecovered");
  ASSERT_TRUE(awaitEdited(2));
  EXPECT_THAT(titles(), UnorderedElementsAre("Orvo - Unnamed", titleOf({2026, 11, 21}, {14, 2, 31}),
                                             titleOf({2026, 11, 22}, {9, 0})));
  EXPECT_TRUE(awaitGlobalQueue());
  EXPECT_THAT(recent_.recentDocuments(10), IsEmpty());
  EXPECT_TRUE(folder_.has(kFirst));
}

TEST_F(RecoveredWindowsTest, TheQuestionWaitsForTheFilesOfTheCommandLine) {
  support::Gate gate;
  support::FailingTemporaryFiles files;
  const platform::Installed<platform::TemporaryFiles>::Scope installation(files);
  files.beforeWrites(gate.holdingTheFirst());
  const support::TemporaryFolder folder;
  const std::string opened = folder.file("take.caf");
  std::filesystem::copy_file(folder_.add(kFirst, support::ramp(0, 1000)), opened);
  delegate_.applicationOpenFile(opened);
  delegate_.applicationDidFinishLaunching();
  ASSERT_TRUE(gate.awaitArrival());
  delegate_.offerRecovered();
  EXPECT_TRUE(runMainLoopUntil([&] { return !delegate_.recovered().isListing(); }));
  EXPECT_EQ(delegate_.recovered().panel(), nullptr);
  gate.open();
  EXPECT_TRUE(awaitPanel());
  EXPECT_THAT(titles(), UnorderedElementsAre("Orvo - take.caf"));
}

TEST_F(RecoveredWindowsTest, TheQuestionWaitsForAnAlert) {
  add(kFirst);
  bool alert = true;
  delegate_.setAlertsPendingCheck([&alert] { return alert; });
  delegate_.applicationDidFinishLaunching();
  delegate_.offerRecovered();
  EXPECT_TRUE(runMainLoopUntil([&] { return !delegate_.recovered().isListing(); }));
  EXPECT_EQ(delegate_.recovered().panel(), nullptr);
  alert = false;
  EXPECT_TRUE(awaitPanel());
}

TEST_F(RecoveredWindowsTest, QuittingAsksForEachAndDontSaveDeletesIt) {
  add(kFirst);
  add(kSecond);
  delegate_.offerRecovered();
  ASSERT_TRUE(awaitPanel());
  press("openRecovered");
  ASSERT_TRUE(awaitEdited(2));
  delegate_.terminate();
  EXPECT_TRUE(runMainLoopUntil([&] { return quits_ == 1; }));
  EXPECT_TRUE(awaitGlobalQueue());
  EXPECT_FALSE(folder_.has(kFirst));
  EXPECT_FALSE(folder_.has(kSecond));
}

TEST_F(RecoveredWindowsTest, OneForWhoseWindowThereIsNoRoomIsRefusedAndKept) {
  add(kFirst);
  delegate_.applicationDidFinishLaunching();
  delegate_.offerRecovered();
  ASSERT_TRUE(awaitPanel());
  {
    const support::FewDescriptors few(40);
    press("openRecovered");
  }
  EXPECT_EQ(services_->postedAlerts().size(), 1U);
  EXPECT_THAT(titles(), UnorderedElementsAre("Orvo - Unnamed"));
  EXPECT_TRUE(support::FileLock(folder_.file(kFirst)).isHeld()) << "there, and released";
}

TEST_F(RecoveredWindowsTest, TheMenuShowsTheList) {
  OVRecorderWindow* const window = spawn();
  item(window, "Recovered Recordings…")->trigger();
  ASSERT_TRUE(awaitPanel());
  EXPECT_EQ(delegate_.recovered().panel()->occasion(), OVRecoveredPanel::Occasion::command);
}

}  // namespace
