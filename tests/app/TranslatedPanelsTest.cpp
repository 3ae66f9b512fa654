// Panels and questions in every language: whether their texts fit, and the letters for Alt.
#include <filesystem>
#include <fstream>

#include <sys/stat.h>
#include <unistd.h>

#include <QDialogButtonBox>
#include <QHeaderView>
#include <QInputDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QScopeGuard>
#include <QToolButton>
#include <QTreeWidget>

#include "app/OVRecoveredPanel.h"
#include "app/TranslatedFixture.h"
#include "platform/desktop/OpenPanel.h"
#include "platform/desktop/QtFileDialogs.h"
#include "platform/desktop/SavePanel.h"
#include "support/ClosedFolder.h"
#include "support/RecoveredFolder.h"
#include "support/TemporaryFolder.h"
#include "support/TestAudio.h"

using support::expectKeyLetters;
using support::expectNothingClipped;

namespace {

class TranslatedPanelsTest : public TranslatedFixture {
 protected:
  platform::QtFileDialogs dialogs_;
  platform::Installed<platform::FileDialogs>::Scope dialogsInstallation_{dialogs_};
};

TEST_P(TranslatedPanelsTest, TheSavePanelIsWholeAndItsKeyLettersAreItsOwn) {
  item(window_, "Save As…")->trigger();
  auto* const panel = shownDialog<platform::SavePanel>("savePanel");
  ASSERT_NE(panel, nullptr);
  EXPECT_EQ(panel->windowTitle(), translated("Save As"));
  expectNothingClipped(*panel);
  expectKeyLetters(*panel);
  panel->reject();
}

TEST_P(TranslatedPanelsTest, TheQuestionBeforeReplacingIsWhole) {
  const support::TemporaryFolder folder;
  std::ofstream(folder.file("take.wav")) << "sound";
  item(window_, "Save As…")->trigger();
  auto* const panel = shownDialog<platform::SavePanel>("savePanel");
  ASSERT_NE(panel, nullptr);
  panel->findChild<QLineEdit*>("fileNameEdit")
      ->setText(QString::fromStdString(folder.file("take.wav")));
  panel->accept();
  auto* const question = shownDialog<QMessageBox>("replaceQuestion");
  ASSERT_NE(question, nullptr);
  expectNothingClipped(*question);
  expectKeyLetters(*question);
  question->reject();
  panel->reject();
}

TEST_P(TranslatedPanelsTest, TheOpenAndTheImportPanelAreWhole) {
  for (const char* const command : {"Open…", "Import…"}) {
    item(window_, command)->trigger();
    auto* const panel = shownDialog<platform::OpenPanel>("openPanel");
    ASSERT_NE(panel, nullptr) << command;
    expectNothingClipped(*panel);
    expectKeyLetters(*panel);
    panel->reject();
    ASSERT_TRUE(runMainLoopUntil(
        [&] { return window_->findChild<platform::OpenPanel*>("openPanel") == nullptr; }));
  }
}

TEST_P(TranslatedPanelsTest, ThePanelsOfTheExportsAreWhole) {
  for (const char* const command : {"Export Ringtone…", "Export Waveform Picture…"}) {
    item(window_, command)->trigger();
    auto* const panel = shownDialog<platform::SavePanel>("savePanel");
    ASSERT_NE(panel, nullptr) << command;
    expectNothingClipped(*panel);
    expectKeyLetters(*panel);
    panel->reject();
    ASSERT_TRUE(runMainLoopUntil(
        [&] { return window_->findChild<platform::SavePanel*>("savePanel") == nullptr; }));
  }
}

TEST_P(TranslatedPanelsTest, TheQuestionForANewFolderIsWhole) {
  item(window_, "Save As…")->trigger();
  auto* const panel = shownDialog<platform::SavePanel>("savePanel");
  ASSERT_NE(panel, nullptr);
  panel->findChild<QToolButton*>("newFolderButton")->click();
  auto* const question = shownDialog<QInputDialog>(panel, "newFolderQuestion");
  ASSERT_NE(question, nullptr);
  EXPECT_EQ(question->windowTitle(), translated("New Folder"));
  const auto* const ok = question->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok);
  EXPECT_FALSE(ok->isEnabled()) << "there is no name yet";
  question->setTextValue(QStringLiteral("Takes"));
  EXPECT_TRUE(ok->isEnabled());
  expectNothingClipped(*question);
  expectKeyLetters(*question);
  question->reject();
  panel->reject();
}

// The user's own file, in a folder in which the user may make none.
TEST_P(TranslatedPanelsTest, TheQuestionBeforeOverwritingIsWhole) {
  const support::TemporaryFolder folder;
  const std::string path = folder.file("take.wav");
  std::ofstream(path) << "sound";
  ASSERT_EQ(::chmod(path.c_str(), 0666), 0);
  ASSERT_EQ(::chmod(folder.path().c_str(), 0755), 0);
  if (::geteuid() == 0) {
    constexpr uid_t kNobody = 65534;
    ASSERT_EQ(::chown(path.c_str(), kNobody, kNobody), 0);
  }
  const support::ClosedFolder closed(folder.path());
  item(window_, "Save As…")->trigger();
  auto* const panel = shownDialog<platform::SavePanel>("savePanel");
  ASSERT_NE(panel, nullptr);
  panel->findChild<QLineEdit*>("fileNameEdit")->setText(QString::fromStdString(path));
  panel->accept();
  auto* const replace = shownDialog<QMessageBox>("replaceQuestion");
  ASSERT_NE(replace, nullptr);
  press(*replace, "&Replace");
  auto* const question = shownDialog<QMessageBox>("sheet");
  ASSERT_NE(question, nullptr);
  EXPECT_EQ(question->text(), translated("%1 can only be overwritten")
                                  .arg(translated("“%1”").arg(QStringLiteral("take.wav"))));
  EXPECT_EQ(question->defaultButton()->text(), translated("&Cancel")) << "Return destroys nothing";
  expectNothingClipped(*question);
  expectKeyLetters(*question);
  press(*question, "&Cancel");
  awaitIdle(*documentOf(window_));
  EXPECT_EQ(std::filesystem::file_size(path), 5U);
}

TEST_P(TranslatedPanelsTest, TheQuestionBeforeRecordingsAreDeletedIsWhole) {
  const support::RecoveredFolder folder(qgetenv("XDG_DATA_HOME").toStdString());
  const auto removed = qScopeGuard([&] { std::filesystem::remove_all(folder.path()); });
  folder.add("Orvo recording 2026-11-21 14.02.31.caf", support::ramp(0, 1000));
  item(window_, "Recovered Recordings…")->trigger();
  ASSERT_TRUE(runMainLoopUntil([&] { return delegate_.recovered().panel() != nullptr; }));
  OVRecoveredPanel* const panel = delegate_.recovered().panel();
  panel->findChild<QAbstractButton*>("deleteRecovered")->click();
  auto* const question = shownDialog<QMessageBox>(panel, "sheet");
  ASSERT_NE(question, nullptr);
  EXPECT_EQ(question->text(), translated("Delete for good?"));
  expectNothingClipped(*question);
  expectKeyLetters(*question);
  press(*question, "&Cancel");
  EXPECT_TRUE(folder.has("Orvo recording 2026-11-21 14.02.31.caf"));
  panel->reject();
}

TEST_P(TranslatedPanelsTest, TheQuestionAboutRecoveredRecordingsIsWhole) {
  std::vector<OVRecoveredFile> files(4);
  files[0].frames = 44100 * 7500ULL;
  files[0].start = QDateTime(QDate(2026, 11, 21), QTime(14, 2));
  files[1].start = QDateTime(QDate(2026, 12, 31), QTime(23, 59));
  files[1].state = OVRecoveredFile::State::damaged;
  files[2].state = OVRecoveredFile::State::beingWritten;
  files[3].state = OVRecoveredFile::State::waitingForRoom;
  for (const auto occasion :
       {OVRecoveredPanel::Occasion::unexpectedEnd, OVRecoveredPanel::Occasion::command}) {
    OVRecoveredPanel panel(occasion, {});
    panel.setAttribute(Qt::WA_DeleteOnClose, false);
    panel.setFiles(files);
    panel.show();
    ASSERT_TRUE(runMainLoopUntil([&] { return panel.isVisible(); }));
    QCoreApplication::sendPostedEvents();
    EXPECT_EQ(panel.windowTitle(), translated("Recovered Recordings"));
    expectNothingClipped(panel);
    expectKeyLetters(panel);
    const auto* const list = panel.findChild<QTreeWidget*>();
    EXPECT_EQ(list->topLevelItem(1)->text(2), translated("Damaged"));
    EXPECT_EQ(list->topLevelItem(2)->text(2), translated("Still being written"));
    for (int row = 0; row < list->topLevelItemCount(); ++row) {
      for (int column = 0; column < list->columnCount(); ++column) {
        const QString text = list->topLevelItem(row)->text(column);
        const int box = column == 0 ? list->style()->pixelMetric(QStyle::PM_IndicatorWidth) : 0;
        EXPECT_GT(list->columnWidth(column), list->fontMetrics().horizontalAdvance(text) + box)
            << text.toStdString();
      }
    }
    EXPECT_LE(list->header()->length(), list->viewport()->width()) << "nothing to scroll";
  }
}

INSTANTIATE_TEST_SUITE_P(InEveryLanguage, TranslatedPanelsTest, everyTestedLanguage(),
                         nameOfTestedLanguage);

}  // namespace
