#include "platform/desktop/QtFileDialogs.h"

#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>
#include <QAbstractButton>
#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include "platform/desktop/SavePanel.h"
#include "support/MainLoop.h"
#include "support/TemporaryFolder.h"

namespace {

using platform::QtFileDialogs;
using platform::withSuffix;

class QtFileDialogsTest : public testing::Test {
 protected:
  QtFileDialogsTest() { window_.show(); }

  template <typename Dialog>
  Dialog* shown(const char* name) {
    Dialog* found = nullptr;
    EXPECT_TRUE(runMainLoopUntil([&] {
      found = window_.findChild<Dialog*>(name);
      return found != nullptr && found->isVisible();
    }));
    return found;
  }

  platform::SavePanelRequest saveRequest(const std::string& name) {
    auto* const accessory = new QWidget;
    kind_ = new QComboBox(accessory);
    kind_->addItems({"AIFF", "WAV"});
    return {.window = &window_,
            .title = "Save",
            .directory = folder_.path(),
            .suggestedName = name,
            .accessoryView = accessory,
            .acceptedSuffixes = [this]() -> std::vector<std::string> {
              return kind_->currentIndex() == 0 ? std::vector<std::string>{"aiff", "aif"}
                                                : std::vector<std::string>{"wav"};
            }};
  }

  QLineEdit* beginSave(const std::string& name) {
    panels_.beginSavePanel(saveRequest(name), [this](const std::optional<std::string>& path) {
      ++answers_;
      saved_ = path;
    });
    panel_ = shown<QFileDialog>("savePanel");
    return panel_->findChild<QLineEdit*>("fileNameEdit");
  }

  void acceptPanel() { QMetaObject::invokeMethod(panel_, "accept"); }

  QPushButton* saveButton() {
    return panel_->findChild<QDialogButtonBox*>("buttonBox")->button(QDialogButtonBox::Save);
  }

  /// Presses a button of the question whether to replace a file as soon as it is shown; the
  /// question must name the file.
  void answerQuestion(QMessageBox::StandardButton button, const std::string& fileName) {
    QTimer::singleShot(0, &window_, [this, button, fileName] {
      auto* const question = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
      if (question == nullptr) {
        answerQuestion(button, fileName);
        return;
      }
      ++questions_;
      EXPECT_TRUE(question->text().contains(QString::fromStdString(fileName)));
      for (const QLabel* const label : question->findChildren<QLabel*>()) {
        EXPECT_EQ(label->textFormat(), Qt::PlainText);
      }
      question->button(button)->click();
    });
  }

  support::TemporaryFolder folder_;
  QWidget window_;
  QtFileDialogs panels_;
  QFileDialog* panel_ = nullptr;
  QComboBox* kind_ = nullptr;
  int answers_ = 0;
  int questions_ = 0;
  std::optional<std::string> saved_;
};

TEST(QtFileDialogsSuffixTest, AppendsTheFirstUnlessOneIsThere) {
  EXPECT_EQ(withSuffix("take", {"aiff", "aif"}), "take.aiff");
  EXPECT_EQ(withSuffix("take.aif", {"aiff", "aif"}), "take.aif");
  EXPECT_EQ(withSuffix("take.AIFF", {"aiff", "aif"}), "take.AIFF");
  EXPECT_EQ(withSuffix("take.wav", {"aiff", "aif"}), "take.wav.aiff");
  EXPECT_EQ(withSuffix("take 1.2", {"wav"}), "take 1.2.wav");
  EXPECT_EQ(withSuffix("take", {}), "take");
}

TEST_F(QtFileDialogsTest, TheSuffixOfTheNameFollowsTheKind) {
  QLineEdit* const name = beginSave("take 1");
  EXPECT_EQ(name->text(), "take 1.aiff");
  kind_->setCurrentIndex(1);
  EXPECT_EQ(name->text(), "take 1.wav");
  name->setText("TAKE.WAV");
  kind_->setCurrentIndex(0);
  EXPECT_EQ(name->text(), "TAKE.aiff");
  panel_->reject();
  EXPECT_EQ(answers_, 1);
  EXPECT_EQ(saved_, std::nullopt);
}

TEST_F(QtFileDialogsTest, TheSavePanelOffersTheKindsOfItsAccessoryAndNoOthers) {
  beginSave("x");
  EXPECT_FALSE(panel_->findChild<QComboBox*>("fileTypeCombo")->isVisible());
  EXPECT_FALSE(panel_->findChild<QWidget*>("fileTypeLabel")->isVisible());
  EXPECT_TRUE(kind_->isVisible());
  panel_->reject();
}

TEST_F(QtFileDialogsTest, ANameWithoutItsSuffixGetsIt) {
  beginSave("x")->setText("my take.mp3");
  acceptPanel();
  EXPECT_EQ(answers_, 1);
  EXPECT_EQ(saved_, folder_.file("my take.mp3.aiff"));
}

TEST_F(QtFileDialogsTest, AnotherKindForAFileThatExistsNamesAnotherFile) {
  std::ofstream(folder_.file("take.aiff")) << "old";
  const QLineEdit* const name = beginSave("take");
  // On a real screen the panel selects the file with the proposed name.
  const auto* const list = panel_->findChild<QAbstractItemView*>("listView");
  ASSERT_TRUE(runMainLoopUntil([&] { return list->model()->rowCount(list->rootIndex()) == 1; }));
  list->selectionModel()->select(list->model()->index(0, 0, list->rootIndex()),
                                 QItemSelectionModel::Select | QItemSelectionModel::Rows);
  ASSERT_EQ(panel_->selectedFiles(),
            QStringList(QString::fromStdString(folder_.file("take.aiff"))));
  kind_->setCurrentIndex(1);
  EXPECT_EQ(name->text(), "take.wav");
  QTimer refusal;  // of a question that would wait forever
  QObject::connect(&refusal, &QTimer::timeout, [] {
    if (auto* const question = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
      question->reject();
    }
  });
  refusal.start(0);
  acceptPanel();
  EXPECT_EQ(answers_, 1) << "nothing is to be replaced";
  EXPECT_EQ(saved_, folder_.file("take.wav"));
}

TEST_F(QtFileDialogsTest, ReplacingAFileIsAskedForUnderItsFullName) {
  std::ofstream(folder_.file("take.aiff")) << "old";
  beginSave("x")->setText("take");
  answerQuestion(QMessageBox::No, "take.aiff");
  acceptPanel();
  EXPECT_TRUE(runMainLoopUntil([&] { return questions_ == 1; }));
  EXPECT_EQ(answers_, 0);
  EXPECT_TRUE(panel_->isVisible());
  answerQuestion(QMessageBox::Yes, "take.aiff");
  acceptPanel();
  EXPECT_TRUE(runMainLoopUntil([&] { return answers_ == 1; }));
  EXPECT_EQ(saved_, folder_.file("take.aiff"));
}

TEST_F(QtFileDialogsTest, TheQuestionBeforeReplacingShowsANameAsItStands) {
  std::ofstream(folder_.file("<b>a \"b\".aiff")) << "old";
  beginSave("x")->setText("<b>a \"b\"");
  answerQuestion(QMessageBox::Yes, "<b>a \"b\".aiff");
  acceptPanel();
  EXPECT_TRUE(runMainLoopUntil([&] { return answers_ == 1; }));
  EXPECT_EQ(questions_, 1);
  EXPECT_EQ(saved_, folder_.file("<b>a \"b\".aiff"));
}

TEST_F(QtFileDialogsTest, NamesAreTakenLetterByLetter) {
  for (const char* const name :
       {"say \"hi\"", "\"", "\"a\" \"b\"", "two\nlines", " a ", "x..", "a\\b", "100% %1"}) {
    answers_ = 0;
    beginSave(name);
    acceptPanel();
    EXPECT_TRUE(runMainLoopUntil([&] { return answers_ == 1; })) << name;
    EXPECT_EQ(saved_, folder_.file(std::string(name) + ".aiff"));
    EXPECT_TRUE(
        runMainLoopUntil([&] { return window_.findChild<QFileDialog*>("savePanel") == nullptr; }));
  }
}

// The caller reports the file system's error for such a name.
TEST_F(QtFileDialogsTest, ANameThatIsTooLongIsHandedOn) {
  for (const std::size_t length : {251U, 255U, 256U, 400U}) {
    answers_ = 0;
    const std::string name(length, 'x');
    beginSave("x")->setText(QString::fromStdString(name));
    EXPECT_TRUE(saveButton()->isEnabled());
    saveButton()->click();
    EXPECT_TRUE(runMainLoopUntil([&] { return answers_ == 1; })) << length;
    EXPECT_EQ(saved_, folder_.file(name + ".aiff"));
    EXPECT_TRUE(
        runMainLoopUntil([&] { return window_.findChild<QFileDialog*>("savePanel") == nullptr; }));
  }
}

TEST_F(QtFileDialogsTest, APathLeadsElsewhereAndAFoldersNameIntoIt) {
  folder_.makeFolder("in \"it\"");
  QLineEdit* const name = beginSave("x");
  name->setText("in \"it\"");
  acceptPanel();
  EXPECT_EQ(answers_, 0);
  EXPECT_EQ(panel_->directory().absolutePath().toStdString(), folder_.file("in \"it\""));
  name->setText("..");
  acceptPanel();
  EXPECT_EQ(panel_->directory().absolutePath().toStdString(), folder_.path());
  name->setText("in \"it\"/take");
  acceptPanel();
  EXPECT_EQ(answers_, 1);
  EXPECT_EQ(saved_, folder_.file("in \"it\"/take.aiff"));
}

TEST_F(QtFileDialogsTest, AnAbsolutePathAndTheHomeFolderAreUnderstood) {
  beginSave("x")->setText(QString::fromStdString(folder_.file("else")));
  acceptPanel();
  EXPECT_EQ(saved_, folder_.file("else.aiff"));
  EXPECT_TRUE(
      runMainLoopUntil([&] { return window_.findChild<QFileDialog*>("savePanel") == nullptr; }));
  beginSave("x")->setText("~/no such folder/take");
  acceptPanel();
  EXPECT_EQ(saved_, QDir::homePath().toStdString() + "/no such folder/take.aiff");
}

TEST_F(QtFileDialogsTest, WithoutANameNothingCanBeSaved) {
  beginSave("x")->clear();
  EXPECT_FALSE(saveButton()->isEnabled());
  acceptPanel();
  EXPECT_EQ(answers_, 0);
  EXPECT_TRUE(panel_->isVisible());
}

TEST_F(QtFileDialogsTest, APanelWhoseWindowGoesAnswersNothing) {
  auto window = std::make_unique<QWidget>();
  window->show();
  auto request = saveRequest("take");
  request.window = window.get();
  panels_.beginSavePanel(request, [this](const auto&) { ++answers_; });
  window.reset();
  EXPECT_TRUE(drainMainQueue());
  EXPECT_EQ(answers_, 0);
}

TEST_F(QtFileDialogsTest, TheOpenPanelOffersTheFileTypesInCapitalsToo) {
  panels_.beginOpenPanel({.window = &window_,
                          .title = "Open",
                          .acceptLabel = "Open",
                          .allowsMultipleSelection = true,
                          .fileTypes = {"caf", "wav"}},
                         [this](const auto&) { ++answers_; });
  auto* const panel = shown<QFileDialog>("openPanel");
  EXPECT_EQ(panel->fileMode(), QFileDialog::ExistingFiles);
  EXPECT_TRUE(panel->nameFilters().front().endsWith("(*.caf *.CAF *.wav *.WAV)"));
  panel->reject();
  EXPECT_EQ(answers_, 1);
}

TEST_F(QtFileDialogsTest, TheOpenPanelShowsItsAccessoryAndReportsTheSelection) {
  std::ofstream(folder_.file("one.wav")) << "1";
  std::vector<std::string> selections;
  const QPointer<QLabel> accessory(new QLabel("Goes in at the end."));
  panels_.beginOpenPanel(
      {.window = &window_,
       .title = "Import",
       .acceptLabel = "Import",
       .fileTypes = {"wav"},
       .accessoryView = accessory,
       .selectionChanged = [&](const std::string& path) { selections.push_back(path); }},
      [this](const auto&) { ++answers_; });
  auto* const panel = shown<QFileDialog>("openPanel");
  EXPECT_TRUE(accessory->isVisibleTo(panel));
  EXPECT_EQ(panel->labelText(QFileDialog::Accept), "Import");
  EXPECT_EQ(accessory->mapTo(panel, QPoint(0, 0)).y() + accessory->height() <= panel->height(),
            true);
  panel->setDirectory(QString::fromStdString(folder_.path()));
  panel->selectFile("one.wav");
  ASSERT_TRUE(runMainLoopUntil(
      [&] { return !selections.empty() && selections.back() == folder_.file("one.wav"); }));
  auto* const field = panel->findChild<QLineEdit*>("fileNameEdit");
  field->setText("/elsewhere/two.wav");
  EXPECT_EQ(selections.back(), "/elsewhere/two.wav");
  field->clear();
  EXPECT_EQ(selections.back(), "");
  panel->reject();
  EXPECT_EQ(answers_, 1);
  EXPECT_TRUE(runMainLoopUntil([&] { return accessory.isNull(); })) << "the panel owns it";
}

TEST_F(QtFileDialogsTest, ASheetAnswersWithTheCodeOfItsButton) {
  using Role = platform::SheetRequest::Button::Role;
  const platform::SheetRequest request{.window = &window_,
                                       .title = "Save?",
                                       .message = "It would be lost.",
                                       .buttons = {{"Save", 1, Role::accept},
                                                   {"Don't Save", 0, Role::destructive},
                                                   {"Cancel", -1, Role::reject}}};
  int answer = 99;
  const auto ask = [&](const std::function<void(QMessageBox*)>& act) {
    panels_.beginSheet(request, [&](int code) { answer = code; });
    act(shown<QMessageBox>("sheet"));
    EXPECT_TRUE(
        runMainLoopUntil([&] { return window_.findChild<QMessageBox*>("sheet") == nullptr; }));
    return answer;
  };
  EXPECT_EQ(ask([](QMessageBox* sheet) { sheet->defaultButton()->click(); }), 1);
  EXPECT_EQ(ask([](QMessageBox* sheet) { QTest::keyClick(sheet, Qt::Key_Escape); }), -1);
  EXPECT_EQ(ask([](QMessageBox* sheet) { sheet->close(); }), -1);
  EXPECT_EQ(ask([](QMessageBox* sheet) {
              for (QAbstractButton* const button : sheet->buttons()) {
                if (button->text() == "Don't Save") {
                  button->click();
                  return;
                }
              }
            }),
            0);
}

}  // namespace
