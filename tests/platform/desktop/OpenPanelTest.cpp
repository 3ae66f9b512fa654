#include "platform/desktop/OpenPanel.h"

#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>
#include <QAbstractItemView>
#include <QPushButton>
#include <QTest>

#include "platform/desktop/QtFileDialogs.h"
#include "support/MainLoop.h"
#include "support/TemporaryFolder.h"

namespace {

using Paths = std::vector<std::string>;
namespace fs = std::filesystem;

class OpenPanelTest : public testing::Test {
 protected:
  OpenPanelTest() { window_.show(); }

  std::string put(const std::string& name) {
    std::ofstream(folder_.file(name)) << "sound";
    return folder_.file(name);
  }

  void begin(bool several = true) {
    panels_.beginOpenPanel({.window = &window_,
                            .title = "Open",
                            .acceptLabel = "Open",
                            .allowsMultipleSelection = several,
                            .fileTypes = {"caf", "wav"},
                            .selectionChanged = [this](const std::string& path) { told_ = path; }},
                           [this](const Paths& paths) { answers_.push_back(paths); });
    panel_ = window_.findChild<platform::OpenPanel*>("openPanel");
    panel_->showFolder(folder_.path());
    list_ = panel_->findChild<QAbstractItemView*>("listView");
    edit_ = panel_->findChild<QLineEdit*>("fileNameEdit");
  }

  void acceptAndAwaitAnswer() {
    panel_->accept();
    EXPECT_TRUE(runMainLoopUntil([&] { return answers_.size() == 1; }));
  }

  QStringList shown() const {
    QStringList names;
    for (int row = 0; row < list_->model()->rowCount(); ++row) {
      names << list_->model()->index(row, 0).data().toString();
    }
    return names;
  }

  bool awaitShown(const QStringList& names) {
    return runMainLoopUntil([&] { return shown() == names; });
  }

  void select(int row) {
    list_->selectionModel()->select(list_->model()->index(row, 0),
                                    QItemSelectionModel::Select | QItemSelectionModel::Rows);
  }

  QString said() const { return panel_->findChild<QLabel*>("statusLabel")->text(); }

  support::TemporaryFolder folder_;
  QWidget window_;
  platform::QtFileDialogs panels_;
  QPointer<platform::OpenPanel> panel_;
  QAbstractItemView* list_ = nullptr;
  QLineEdit* edit_ = nullptr;
  std::vector<Paths> answers_;
  std::string told_;
};

TEST_F(OpenPanelTest, OffersFoldersAndFilesOfTheTypesByTheirSuffixAlone) {
  for (const char* const name :
       {"take 2.wav", "take 1.WAV", "song.caf", "text.txt", ".hidden.wav"}) {
    put(name);
  }
  folder_.makeFolder("songs");
  begin();
  EXPECT_TRUE(awaitShown({"songs", "song.caf", "take 1.WAV", "take 2.wav"}))
      << shown().join(' ').toStdString();
  panel_->findChild<QComboBox*>("fileTypeCombo")->setCurrentIndex(1);
  EXPECT_TRUE(awaitShown({"songs", "song.caf", "take 1.WAV", "take 2.wav", "text.txt"}));
  panel_->reject();
  ASSERT_EQ(answers_.size(), 1U);
  EXPECT_EQ(answers_.front(), Paths{});
}

TEST_F(OpenPanelTest, SelectedFilesAreNamedInTheEditAndOpened) {
  const std::string one = put("one.wav");
  const std::string two = put("two \xFF.wav");
  begin();
  ASSERT_TRUE(runMainLoopUntil([&] { return shown().size() == 2; }));
  select(0);
  EXPECT_EQ(edit_->text(), "one.wav");
  EXPECT_EQ(told_, one);
  select(1);
  EXPECT_TRUE(edit_->text().startsWith("\"one.wav\" \"two "));
  EXPECT_EQ(told_, "");
  acceptAndAwaitAnswer();
  EXPECT_EQ(answers_.front(), (Paths{one, two}));
}

TEST_F(OpenPanelTest, SeveralTypedNamesAreInQuotes) {
  const std::string one = put("one.wav");
  const std::string two = put("two words.wav");
  begin();
  edit_->setText(QString::fromStdString("\"" + one + "\" \"two words.wav\""));
  acceptAndAwaitAnswer();
  EXPECT_EQ(answers_.front(), (Paths{one, two}));
}

TEST_F(OpenPanelTest, QuotesArePartOfTheNameWhereOnlyOneFileMayBeChosen) {
  const std::string quoted = put("\"a\" \"b\".wav");
  begin(false);
  edit_->setText("\"a\" \"b\".wav");
  acceptAndAwaitAnswer();
  EXPECT_EQ(answers_.front(), Paths{quoted});
}

TEST_F(OpenPanelTest, AFileThatIsNotThereIsToldAndThePanelStays) {
  begin();
  edit_->setText("missing.wav");
  panel_->accept();
  EXPECT_TRUE(runMainLoopUntil([&] { return said().contains("missing.wav"); }));
  EXPECT_TRUE(panel_->isVisible());
  edit_->setText("other.wav");
  EXPECT_EQ(said(), "");
  panel_->reject();
}

TEST_F(OpenPanelTest, AFoldersNameLeadsIntoItAndTheButtonOutOfIt) {
  folder_.makeFolder("songs");
  std::ofstream(folder_.file("songs/inside.wav")) << "sound";
  begin();
  ASSERT_TRUE(awaitShown({"songs"}));
  QTest::keyClick(list_, Qt::Key_Home);
  QTest::keyClick(list_, Qt::Key_Return);
  EXPECT_TRUE(awaitShown({"inside.wav"}));
  EXPECT_EQ(panel_->folder(), folder_.file("songs"));
  EXPECT_TRUE(panel_->isVisible());
  panel_->findChild<QToolButton*>("toParentButton")->click();
  EXPECT_TRUE(awaitShown({"songs"}));
  panel_->reject();
}

TEST_F(OpenPanelTest, AFolderThatCannotBeReadIsTold) {
  begin();
  panel_->showFolder(folder_.file("gone"));
  EXPECT_TRUE(runMainLoopUntil([&] { return !said().isEmpty(); }));
  EXPECT_TRUE(panel_->isVisible());
  panel_->reject();
}

TEST_F(OpenPanelTest, TheFoldersAboveAndTheUsersOwnCanBeChosen) {
  begin();
  auto* const folders = panel_->findChild<QComboBox*>("lookInCombo");
  EXPECT_EQ(folders->currentText().toStdString(), folder_.path());
  const int parent =
      folders->findText(QString::fromStdString(fs::path(folder_.path()).parent_path().string()));
  ASSERT_GE(parent, 0);
  Q_EMIT folders->activated(parent);
  EXPECT_EQ(panel_->folder(), fs::path(folder_.path()).parent_path());
  EXPECT_GE(folders->findText("/"), 0);
  panel_->reject();
}

TEST_F(OpenPanelTest, SizesAndDatesAreShownAndSorted) {
  std::ofstream(folder_.file("small.wav")) << "x";
  std::ofstream(folder_.file("big.wav")) << std::string(5000, 'x');
  folder_.makeFolder("folder");
  begin();
  ASSERT_TRUE(awaitShown({"folder", "big.wav", "small.wav"}));
  ASSERT_TRUE(
      runMainLoopUntil([&] { return !list_->model()->index(1, 1).data().toString().isEmpty(); }));
  EXPECT_FALSE(list_->model()->index(1, 2).data().toString().isEmpty());
  EXPECT_TRUE(list_->model()->index(0, 1).data().toString().isEmpty());
  list_->model()->sort(1, Qt::AscendingOrder);
  EXPECT_EQ(shown(), QStringList({"folder", "small.wav", "big.wav"}));
  list_->model()->sort(1, Qt::DescendingOrder);
  EXPECT_EQ(shown(), QStringList({"folder", "big.wav", "small.wav"}));
  panel_->reject();
}

}  // namespace
