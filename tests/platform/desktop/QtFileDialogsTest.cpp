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
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QScopeGuard>
#include <QTest>
#include <QTimer>
#include <QTreeView>

#include "platform/base/MainThread.h"
#include "platform/desktop/OpenPanel.h"
#include "platform/desktop/SavePanel.h"
#include "support/FewDescriptors.h"
#include "support/MainLoop.h"
#include "support/TemporaryFolder.h"
#include "support/fakes/RecordingServices.h"

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
    panel_ = shown<platform::SavePanel>("savePanel");
    return panel_->findChild<QLineEdit*>("fileNameEdit");
  }

  /// Returns when the panel has looked what is there.
  void acceptPanel() {
    const QPointer<platform::SavePanel> panel = panel_;
    panel->accept();
    EXPECT_TRUE(runMainLoopUntil(
        [&] { return !panel || !panel->isVisible() || saveButton()->isEnabled() || isEmpty(); }));
  }
  bool isEmpty() { return panel_->findChild<QLineEdit*>("fileNameEdit")->text().isEmpty(); }

  void awaitEnd() {
    EXPECT_TRUE(runMainLoopUntil(
        [&] { return window_.findChild<platform::FilePanel*>("savePanel") == nullptr; }));
  }

  QPushButton* saveButton() {
    for (QAbstractButton* const button :
         panel_->findChild<QDialogButtonBox*>("buttonBox")->buttons()) {
      if (button->text() == "&Save") {
        return qobject_cast<QPushButton*>(button);
      }
    }
    return nullptr;
  }

  /// Presses a button of the question whether to replace a file as soon as it is shown; the
  /// question must name the file.
  void answerQuestion(const char* button, const std::string& fileName) {
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
      for (QAbstractButton* const each : question->buttons()) {
        if (each->text() == button) {
          each->click();
          return;
        }
      }
      ADD_FAILURE() << "no button " << button;
    });
  }

  support::TemporaryFolder folder_;
  QWidget window_;
  QtFileDialogs panels_;
  platform::SavePanel* panel_ = nullptr;
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
  EXPECT_EQ(panel_->findChild<QComboBox*>("fileTypeCombo"), nullptr);
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
  const auto* const list = panel_->findChild<QAbstractItemView*>("listView");
  ASSERT_TRUE(runMainLoopUntil([&] { return list->model()->rowCount() == 1; }));
  list->selectionModel()->select(list->model()->index(0, 0),
                                 QItemSelectionModel::Select | QItemSelectionModel::Rows);
  ASSERT_EQ(panel_->names(), std::vector<std::string>{"take.aiff"});
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
  answerQuestion("&Cancel", "take.aiff");
  acceptPanel();
  EXPECT_TRUE(runMainLoopUntil([&] { return questions_ == 1; }));
  EXPECT_EQ(answers_, 0);
  EXPECT_TRUE(panel_->isVisible());
  answerQuestion("&Replace", "take.aiff");
  acceptPanel();
  EXPECT_TRUE(runMainLoopUntil([&] { return answers_ == 1; }));
  EXPECT_EQ(saved_, folder_.file("take.aiff"));
}

TEST_F(QtFileDialogsTest, TheQuestionBeforeReplacingShowsANameAsItStands) {
  std::ofstream(folder_.file("<b>a \"b\".aiff")) << "old";
  beginSave("x")->setText("<b>a \"b\"");
  answerQuestion("&Replace", "<b>a \"b\".aiff");
  acceptPanel();
  EXPECT_TRUE(runMainLoopUntil([&] { return answers_ == 1; }));
  EXPECT_EQ(questions_, 1);
  EXPECT_EQ(saved_, folder_.file("<b>a \"b\".aiff"));
}

TEST_F(QtFileDialogsTest, TheQuestionBeforeReplacingSaysWhatGetsLost) {
  std::ofstream(folder_.file("take.aiff")) << "old";
  platform::SavePanelRequest request = saveRequest("take");
  request.lossOfReplacing = [](const std::string& path) {
    EXPECT_FALSE(platform::isMainThread()) << "the disk may not answer";
    return QString("Much of %1.").arg(QString::fromStdString(path));
  };
  panels_.beginSavePanel(request, [this](const auto&) { ++answers_; });
  panel_ = shown<platform::SavePanel>("savePanel");
  std::string loss;
  panel_->accept();
  ASSERT_TRUE(runMainLoopUntil([&] {
    auto* const question = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
    if (question == nullptr) {
      return false;
    }
    loss = question->informativeText().toStdString();
    for (QAbstractButton* const each : question->buttons()) {
      if (each->text() == "&Replace") {
        each->click();
      }
    }
    return true;
  }));
  EXPECT_EQ(loss, "Much of " + folder_.file("take.aiff") + ".");
  EXPECT_TRUE(runMainLoopUntil([&] { return answers_ == 1; }));
}

TEST_F(QtFileDialogsTest, ANewFileIsNotExaminedForWhatGetsLost) {
  platform::SavePanelRequest request = saveRequest("take");
  request.lossOfReplacing = [](const std::string& path) {
    ADD_FAILURE() << path;
    return QString();
  };
  panels_.beginSavePanel(request, [this](const auto&) { ++answers_; });
  panel_ = shown<platform::SavePanel>("savePanel");
  acceptPanel();
  EXPECT_TRUE(runMainLoopUntil([&] { return answers_ == 1; }));
}

TEST_F(QtFileDialogsTest, ANameThatWouldTurnTheDirectionOfTextIsShownWithoutThat) {
  const std::string name = "take\u202Efdp.aiff";
  std::ofstream(folder_.file(name)) << "old";
  beginSave("take\u202Efdp");
  const auto* const list = panel_->findChild<QAbstractItemView*>("listView");
  ASSERT_TRUE(runMainLoopUntil([&] { return list->model()->rowCount() == 1; }));
  EXPECT_EQ(list->model()->index(0, 0).data().toString(), "take fdp.aiff");
  answerQuestion("&Replace", "“take fdp.aiff”");
  acceptPanel();
  EXPECT_TRUE(runMainLoopUntil([&] { return answers_ == 1; }));
  EXPECT_EQ(saved_, folder_.file(name)) << "the file itself is found by its own name";
}

TEST_F(QtFileDialogsTest, NamesAreTakenLetterByLetter) {
  for (const char* const name :
       {"say \"hi\"", "\"", "\"a\" \"b\"", "two\nlines", " a ", "x..", "a\\b", "100% %1"}) {
    answers_ = 0;
    beginSave(name);
    acceptPanel();
    EXPECT_TRUE(runMainLoopUntil([&] { return answers_ == 1; })) << name;
    EXPECT_EQ(saved_, folder_.file(std::string(name) + ".aiff"));
    awaitEnd();
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
    awaitEnd();
  }
}

TEST_F(QtFileDialogsTest, APathLeadsElsewhereAndAFoldersNameIntoIt) {
  folder_.makeFolder("in \"it\"");
  QLineEdit* const name = beginSave("x");
  name->setText("in \"it\"");
  acceptPanel();
  EXPECT_EQ(answers_, 0);
  EXPECT_EQ(panel_->folder(), folder_.file("in \"it\""));
  name->setText("..");
  acceptPanel();
  EXPECT_EQ(panel_->folder(), folder_.path());
  name->setText("in \"it\"/take");
  acceptPanel();
  EXPECT_EQ(answers_, 1);
  EXPECT_EQ(saved_, folder_.file("in \"it\"/take.aiff"));
}

TEST_F(QtFileDialogsTest, AFolderWhoseNameIsNoTextIsSavedIntoAndAFileOfSuchANameReplaced) {
  const std::string folder = folder_.makeFolder("caf\xE9");
  auto request = saveRequest("t\xE9ke");
  request.directory = folder;
  panels_.beginSavePanel(request, [this](const auto& path) {
    ++answers_;
    saved_ = path;
  });
  panel_ = shown<platform::SavePanel>("savePanel");
  acceptPanel();
  EXPECT_EQ(saved_, folder + "/t\xE9ke.aiff");
}

TEST_F(QtFileDialogsTest, ThePanelBeginsWhereTheLastOneEnded) {
  const std::string folder = folder_.makeFolder("last");
  beginSave("x")->setText(QString::fromStdString(folder));
  acceptPanel();
  panel_->findChild<QLineEdit*>("fileNameEdit")->setText("take");
  acceptPanel();
  awaitEnd();
  auto request = saveRequest("y");
  request.directory.clear();
  panels_.beginSavePanel(request, [](const auto&) {});
  panel_ = shown<platform::SavePanel>("savePanel");
  EXPECT_EQ(panel_->folder(), folder);
  panel_->reject();
}

TEST_F(QtFileDialogsTest, TheFirstPanelBeginsInTheMusicFolderOrIfThereIsNoneAtHome) {
  const std::string music = folder_.file("sounds");
  std::ofstream(folder_.file("user-dirs.dirs")) << "XDG_MUSIC_DIR=\"" << music << "\"\n";
  const QByteArray before = qgetenv("XDG_CONFIG_HOME");
  qputenv("XDG_CONFIG_HOME", QByteArray::fromStdString(folder_.path()));
  const auto restored = qScopeGuard([&before] { qputenv("XDG_CONFIG_HOME", before); });
  for (const std::string& first : {QDir::homePath().toStdString(), music}) {
    for (const bool opens : {true, false}) {
      QtFileDialogs fresh;
      auto request = saveRequest("take");
      request.directory.clear();
      platform::FilePanel* panel = nullptr;
      if (opens) {
        delete request.accessoryView;
        fresh.beginOpenPanel(
            {.window = &window_, .title = "Open", .acceptLabel = "Open", .fileTypes = {"wav"}},
            [](const auto&) {});
        panel = shown<platform::FilePanel>("openPanel");
      } else {
        fresh.beginSavePanel(request, [](const auto&) {});
        panel = shown<platform::FilePanel>("savePanel");
      }
      EXPECT_TRUE(runMainLoopUntil([&] { return panel->folder() == first; })) << panel->folder();
      panel->reject();
      EXPECT_TRUE(
          runMainLoopUntil([&] { return window_.findChild<platform::FilePanel*>() == nullptr; }));
    }
    std::filesystem::create_directory(music);
  }
}

TEST_F(QtFileDialogsTest, APressOfSaveBeforeTheFolderIsKnownToBeGoneIsNotLost) {
  auto request = saveRequest("");
  request.directory = folder_.file("gone");
  panels_.beginSavePanel(request, [this](const std::optional<std::string>& path) {
    ++answers_;
    saved_ = path;
  });
  panel_ = shown<platform::SavePanel>("savePanel");
  panel_->findChild<QLineEdit*>("fileNameEdit")
      ->setText(QString::fromStdString(folder_.file("take.wav")));
  kind_->setCurrentIndex(1);
  panel_->accept();
  EXPECT_TRUE(runMainLoopUntil([&] { return answers_ == 1; }));
  EXPECT_EQ(saved_, folder_.file("take.wav"));
}

TEST_F(QtFileDialogsTest, AFolderThatIsGoneGivesTheHomeFolder) {
  auto request = saveRequest("take");
  request.directory = folder_.file("gone");
  panels_.beginSavePanel(request, [](const auto&) {});
  panel_ = shown<platform::SavePanel>("savePanel");
  EXPECT_TRUE(runMainLoopUntil([&] { return panel_->folder() == QDir::homePath().toStdString(); }));
  panel_->reject();
}

TEST_F(QtFileDialogsTest, TheSavePanelListsFilesOfTheTypesAskedForOrOfTheChosenKind) {
  for (const char* const name : {"a.wav", "b.aiff", "c.txt", "d.mp3"}) {
    std::ofstream(folder_.file(name)) << "x";
  }
  const auto awaitListed = [this](const QStringList& names) {
    const auto* const list = panel_->findChild<QAbstractItemView*>("listView");
    return runMainLoopUntil([&] {
      QStringList listed;
      for (int row = 0; row < list->model()->rowCount(); ++row) {
        listed << list->model()->index(row, 0).data().toString();
      }
      return listed == names;
    });
  };
  beginSave("take");
  EXPECT_TRUE(awaitListed({"b.aiff"}));
  kind_->setCurrentIndex(1);
  EXPECT_TRUE(awaitListed({"a.wav"}));
  panel_->reject();
  awaitEnd();
  auto request = saveRequest("take");
  request.fileTypes = {"wav", "aiff", "mp3"};
  panels_.beginSavePanel(request, [](const auto&) {});
  panel_ = shown<platform::SavePanel>("savePanel");
  EXPECT_TRUE(awaitListed({"a.wav", "b.aiff", "d.mp3"}));
  panel_->reject();
}

TEST_F(QtFileDialogsTest, TheColumnsOfTheListAreWideEnoughToRead) {
  const std::string name = "An ordinary name of a take, the second one.aiff";
  std::ofstream(folder_.file(name)) << std::string(1'234'567, 'x');
  beginSave("take");
  EXPECT_GE(panel_->minimumWidth(), 760);
  EXPECT_GE(panel_->minimumHeight(), 480);
  auto* const list = panel_->findChild<QTreeView*>("listView");
  ASSERT_TRUE(runMainLoopUntil([&] {
    return list->model()->rowCount() == 1 &&
           !list->model()->index(0, 2).data().toString().isEmpty();
  }));
  QCoreApplication::processEvents();
  panel_->resize(panel_->minimumSize());
  for (int column = 0; column < 3; ++column) {
    const QString text = list->model()->index(0, column).data().toString();
    EXPECT_GT(list->columnWidth(column), list->fontMetrics().horizontalAdvance(text) + 6)
        << text.toStdString();
  }
  panel_->reject();
}

TEST_F(QtFileDialogsTest, AnAbsolutePathAndTheHomeFolderAreUnderstood) {
  beginSave("x")->setText(QString::fromStdString(folder_.file("else")));
  acceptPanel();
  EXPECT_EQ(saved_, folder_.file("else.aiff"));
  awaitEnd();
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

TEST_F(QtFileDialogsTest, ASheetAnswersWithTheCodeOfItsButton) {
  using Role = platform::SheetRequest::Button::Role;
  const platform::SheetRequest request{.window = &window_,
                                       .title = "Save?",
                                       .message = "It would be lost.",
                                       .buttons = {{"Save", 1, Role::accept},
                                                   {"Don’t Save", 0, Role::destructive},
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
                if (button->text() == "Don’t Save") {
                  button->click();
                  return;
                }
              }
            }),
            0);
}

// With hardly any descriptors left ----------------------------------------------------------------

TEST_F(QtFileDialogsTest, APanelThatHasNoRoomIsRefusedInPlainWords) {
  const support::InstalledRecordingServices services;
  const support::FewDescriptors few(11);
  panels_.beginSavePanel(saveRequest("x"), [this](const auto& path) {
    ++answers_;
    saved_ = path;
  });
  panels_.beginOpenPanel(
      {.window = &window_, .title = "Open", .acceptLabel = "Open", .fileTypes = {"wav"}},
      [this](const auto& paths) { answers_ += paths.empty() ? 1 : 0; });
  EXPECT_EQ(answers_, 0) << "it is answered from the main loop";
  EXPECT_TRUE(runMainLoopUntil([&] { return answers_ == 2; }));
  EXPECT_EQ(saved_, std::nullopt);
  EXPECT_EQ(services->postedAlerts().size(), 2U);
  EXPECT_EQ(window_.findChild<QDialog*>(), nullptr);
}

// The numbers at which a panel would run out of them while it opens, and some around them.
class PanelWithFewDescriptorsTest : public QtFileDialogsTest,
                                    public testing::WithParamInterface<std::size_t> {};
INSTANTIATE_TEST_SUITE_P(Left, PanelWithFewDescriptorsTest, testing::Range<std::size_t>(14, 31));

TEST_P(PanelWithFewDescriptorsTest, IsShownAndCancelledOrRefusedInPlainWords) {
  const support::InstalledRecordingServices services;
  ASSERT_TRUE(std::ofstream(folder_.file("take.wav")) << "sound");
  const support::FewDescriptors few(GetParam());
  panels_.beginSavePanel(saveRequest("x"), [this](const auto& path) {
    ++answers_;
    saved_ = path;
  });
  platform::SavePanel* panel = nullptr;
  ASSERT_TRUE(runMainLoopUntil([&] {
    panel = window_.findChild<platform::SavePanel*>("savePanel");
    return answers_ == 1 || (panel != nullptr && panel->isVisible());
  }));
  EXPECT_EQ(services->postedAlerts().size(), answers_ == 1 ? 1U : 0U);
  if (answers_ == 0) {
    panel->reject();
    awaitEnd();
  }
  EXPECT_TRUE(runMainLoopUntil([&] { return answers_ == 1; }));
  EXPECT_EQ(saved_, std::nullopt);
  EXPECT_EQ(window_.findChild<QDialog*>(), nullptr);
}

}  // namespace
