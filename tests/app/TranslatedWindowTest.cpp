// The window and its panels in every language: their texts, and whether these fit.
#include <fstream>
#include <map>
#include <set>

#include <gmock/gmock.h>
#include <QAbstractButton>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QRegularExpression>
#include <QToolButton>
#include <QTreeWidget>

#include "app/AppFixture.h"
#include "app/OVRecoveredPanel.h"
#include "app/OVTranslations.h"
#include "controls/OVLoadingPanel.h"
#include "platform/desktop/OpenPanel.h"
#include "platform/desktop/QtFileDialogs.h"
#include "platform/desktop/SavePanel.h"
#include "platform/mainloop/Localization.h"
#include "support/TemporaryFolder.h"

namespace {

using testing::ElementsAreArray;

/// The expected texts of a language, written here independently.
struct Expected {
  const char* title;
  std::vector<std::string> menus;
  const char* saveAs;
  const char* undoRecord;
  const char* toStart;  ///< with the key shown beside it
  const char* recordButton;
  const char* waveform;
  const char* question;  ///< about unsaved changes
  const char* dontSave;
};

const std::map<std::string, Expected> kExpected{
    {"",
     {"Orvo - Unnamed",
      {"&File", "&Edit", "&Transport", "&View", "&Help"},
      "Save &As…",
      "&Undo Record",
      "&To Start\tReturn",
      "Record",
      "Waveform",
      "Do you want to save the changes made to “Unnamed”?",
      "Do&n’t Save"}},
    {"de",
     {"Orvo - Unbenannt",
      {"&Datei", "&Bearbeiten", "&Transport", "&Ansicht", "&Hilfe"},
      "Speichern &unter\u00a0…",
      "&Rückgängig: Aufnahme",
      "Zum An&fang\tEingabetaste",
      "Aufnahme",
      "Wellenform",
      "Möchten Sie die Änderungen an „Unbenannt“ speichern?",
      "&Nicht speichern"}},
    {"fr",
     {"Orvo - Sans titre",
      {"&Fichier", "É&dition", "&Transport", "Affic&hage", "Aid&e"},
      "Enregistrer &sous…",
      "&Annuler\u00a0: Enregistrement",
      "Aller au &début\tEntrée",
      "Enregistrement",
      "Forme d’onde",
      "Voulez-vous enregistrer les modifications apportées à «\u00a0Sans titre\u00a0»\u00a0?",
      "Ne &pas enregistrer"}},
    {"es",
     {"Orvo - Sin título",
      {"&Archivo", "&Editar", "&Transporte", "&Ver", "A&yuda"},
      "Guardar &como…",
      "&Deshacer: Grabar",
      "Ir al &principio\tIntro",
      "Grabar",
      "Forma de onda",
      "¿Desea guardar los cambios realizados en «Sin título»?",
      "&No guardar"}},
    {"ja",
     {"Orvo - 名称未設定",
      {"ファイル(&F)", "編集(&E)", "トランスポート(&T)", "表示(&V)", "ヘルプ(&H)"},
      "名前を付けて保存(&A)…",
      "元に戻す(&U): 録音",
      "先頭へ(&T)\tReturn",
      "録音",
      "波形",
      "「名称未設定」への変更を保存しますか？",
      "保存しない(&N)"}},
    {"zh_CN",
     {"Orvo - 未命名",
      {"文件(&F)", "编辑(&E)", "走带(&T)", "视图(&V)", "帮助(&H)"},
      "另存为(&A)…",
      "撤销(&U)：录音",
      "转到开头(&T)\t回车",
      "录音",
      "波形",
      "要保存对“未命名”所做的更改吗？",
      "不保存(&N)"}}};

QString translated(const QString& key) {
  return QCoreApplication::translate("Orvo", key.toUtf8().constData());
}

/// The key of a menu item's text: its name, which lacks the key letter, with the letter.
QString keyOf(const QString& name) {
  for (qsizetype i = 0; i < name.size(); ++i) {
    QString key = name;
    key.insert(i, u'&');
    if (translated(key) != key) {
      return key;
    }
  }
  return name;
}

QString withoutKeyLetter(QString text) {
  return text.remove(u'&');
}

/// The mnemonic letters of the texts, in capitals.
QStringList keyLettersOf(const QStringList& texts) {
  static const QRegularExpression kKeyLetter("(?<!&)&(\\p{L})");
  QStringList letters;
  for (const QString& text : texts) {
    const auto match = kKeyLetter.match(text);
    if (match.hasMatch()) {
      letters << match.captured(1).toUpper();
    }
  }
  return letters;
}

bool areAllDifferent(QStringList letters) {
  return letters.removeDuplicates() == 0;
}

QStringList textsOf(const QList<QAction*>& actions) {
  QStringList texts;
  for (const QAction* const action : actions) {
    texts << action->text();
  }
  return texts;
}

/// Every button with a text has a key letter and no picture, and no letter is there twice, those of
/// the labels included.
void expectKeyLetters(const QWidget& dialog) {
  QStringList texts;
  for (const auto* const button : dialog.findChildren<QAbstractButton*>()) {
    if (!button->text().isEmpty()) {
      texts << button->text();
      EXPECT_TRUE(button->icon().isNull()) << button->text().toStdString();
    }
  }
  EXPECT_GT(texts.size(), 0);
  EXPECT_EQ(keyLettersOf(texts).size(), texts.size()) << texts.join(", ").toStdString();
  for (const auto* const label : dialog.findChildren<QLabel*>()) {
    if (label->buddy() != nullptr) {
      texts << label->text();
    }
  }
  EXPECT_TRUE(areAllDifferent(keyLettersOf(texts))) << texts.join(", ").toStdString();
}

/// Every widget with text is as large as it requests.
void expectNothingClipped(const QWidget& dialog) {
  for (const QAbstractButton* const button : dialog.findChildren<QAbstractButton*>()) {
    if (button->isVisible() && !button->text().isEmpty()) {
      EXPECT_GE(button->width(), button->minimumSizeHint().width()) << button->text().toStdString();
    }
  }
  for (const QLabel* const label : dialog.findChildren<QLabel*>()) {
    if (label->isVisible() && !label->text().isEmpty()) {
      const int height =
          label->wordWrap() ? label->heightForWidth(label->width()) : label->sizeHint().height();
      EXPECT_GE(label->height(), height) << label->text().toStdString();
      EXPECT_TRUE(label->wordWrap() || label->width() >= label->sizeHint().width())
          << label->text().toStdString();
    }
  }
}

class TranslatedWindowTest : public AppFixture, public testing::WithParamInterface<std::string> {
 protected:
  TranslatedWindowTest() : window_(spawn()) {}

  [[nodiscard]] static const Expected& expected() { return kExpected.at(GetParam()); }
  [[nodiscard]] static QString language() { return QString::fromStdString(GetParam()); }

  [[nodiscard]] std::string nameOf(const char* view) const {
    return window_->findChild<QWidget*>(view)->accessibleName().toStdString();
  }

  template <typename Dialog>
  Dialog* shownDialog(const char* name) {
    Dialog* dialog = nullptr;
    EXPECT_TRUE(runMainLoopUntil([&] {
      dialog = window_->findChild<Dialog*>(name);
      return dialog != nullptr && dialog->isVisible();
    }));
    return dialog;
  }

  OVTranslations translations_{{language().isEmpty() ? QStringLiteral("en") : language()}};
  OVRecorderWindow* window_;
};

TEST_P(TranslatedWindowTest, TitleMenusAndItemsAreInTheLanguage) {
  EXPECT_EQ(window_->title().toStdString(), expected().title);
  std::vector<std::string> menus;
  for (const QAction* const menu : window_->menuBar()->actions()) {
    menus.push_back(menu->text().toStdString());
  }
  EXPECT_THAT(menus, ElementsAreArray(expected().menus));
  EXPECT_EQ(item(window_, "Save As…")->text().toStdString(), expected().saveAs);
  EXPECT_EQ(item(window_, "To Start")->text().toStdString(), expected().toStart);
}

TEST_P(TranslatedWindowTest, EveryMenuItemIsTheTranslationOfItsName) {
  int items = 0;
  for (const QAction* const menu : window_->menuBar()->actions()) {
    for (const QAction* const action : menu->menu()->actions()) {
      const QString name =
          action->menu() != nullptr ? action->menu()->objectName() : action->objectName();
      if (!action->isSeparator()) {
        ++items;
        const QString text = action->text().section('\t', 0, 0);
        if (GetParam().empty()) {  // English
          EXPECT_EQ(withoutKeyLetter(text), name);
        } else {
          EXPECT_EQ(withoutKeyLetter(text), withoutKeyLetter(translated(keyOf(name))))
              << name.toStdString();
        }
      }
    }
  }
  EXPECT_EQ(items, 25);
}

TEST_P(TranslatedWindowTest, UndoNamesTheAction) {
  item(window_, "Record")->trigger();
  item(window_, "Record")->trigger();
  EXPECT_EQ(item(window_, "Undo")->text().toStdString(), expected().undoRecord);
}

TEST_P(TranslatedWindowTest, KeyLettersDoNotClashInAnyMenu) {
  const QStringList bar = keyLettersOf(textsOf(window_->menuBar()->actions()));
  EXPECT_EQ(bar.size(), window_->menuBar()->actions().size());
  EXPECT_TRUE(areAllDifferent(bar)) << bar.join(' ').toStdString();
  for (const QAction* const menu : window_->menuBar()->actions()) {
    const QStringList texts = textsOf(menu->menu()->actions());
    const QStringList letters = keyLettersOf(texts);
    EXPECT_EQ(letters.size(), texts.filter(QRegularExpression("\\S")).size())
        << menu->text().toStdString();
    EXPECT_TRUE(areAllDifferent(letters))
        << menu->text().toStdString() << ": " << letters.join(' ').toStdString();
  }
}

TEST_P(TranslatedWindowTest, MenusFitIntoTheNarrowestWindow) {
  window_->resize(window_->minimumSizeHint());
  ASSERT_TRUE(runMainLoopUntil([&] { return window_->width() <= 580; }));
  QMenuBar* const bar = window_->menuBar();
  for (QAction* const menu : bar->actions()) {
    EXPECT_TRUE(bar->rect().contains(bar->actionGeometry(menu))) << menu->text().toStdString();
  }
  for (const QToolButton* const more : bar->findChildren<QToolButton*>()) {
    EXPECT_FALSE(more->isVisible()) << "some menus are hidden";
  }
}

TEST_P(TranslatedWindowTest, AScreenReaderHearsTheLanguage) {
  EXPECT_EQ(nameOf("recButton"), expected().recordButton);
  const std::vector<std::pair<const char*, const char*>> tooltips{
      {"recButton", "Record (R)"},
      {"playButton", "Play (Space)"},
      {"prevButton", "To Start (Return)"},
      {"stopButton", "Stop"}};
  for (const auto& [button, key] : tooltips) {
    EXPECT_EQ(window_->findChild<QWidget*>(button)->toolTip(), translated(key)) << button;
  }
  EXPECT_EQ(nameOf("wfView"), expected().waveform);
  const std::vector<std::pair<const char*, const char*>> names{
      {"prevButton", "To Start"},
      {"stopButton", "Stop"},
      {"pauseButton", "Pause"},
      {"playButton", "Play"},
      {"nextButton", "To End"},
      {"fftButton", "Spectrum"},
      {"fftView", "Spectrum"},
      {"vuView", "Level meter"},
      {"timeView", "Position and length"},
      {"loadingIndicator", "Progress"},
      {"playbackMarkerView", "Playback marker"},
      {"lossMarksView", "Lost sound"},
      {"recordingTickView", "Recording position"},
      {"clippingLamp", "Clipping"}};
  for (const auto& [view, key] : names) {
    EXPECT_EQ(nameOf(view), translated(key).toStdString()) << view;
  }
}

TEST_P(TranslatedWindowTest, WhatGoesOnIsWholeBesideTheBarInTheNarrowestWindow) {
  window_->resize(window_->minimumSizeHint());
  auto* const panel = window_->findChild<OVLoadingPanel*>();
  auto* const label = window_->findChild<QLabel*>("loadingLabel");
  auto* const bar = window_->findChild<QWidget*>("loadingIndicator");
  bar->show();
  panel->show();
  std::set<std::string> different;
  for (const char* const key :
       {"Loading", "Importing", "Saving", "Exporting", "Drawing the waveform"}) {
    panel->setActivity(translated(key));
    QCoreApplication::sendPostedEvents();
    different.insert(label->text().toStdString());
    EXPECT_GE(label->width(), label->sizeHint().width()) << label->text().toStdString();
    EXPECT_LT(label->geometry().right(), bar->geometry().left());
    EXPECT_LT(panel->width(), 340) << "half the window at most";
  }
  EXPECT_EQ(different.size(), 5U);
}

TEST_P(TranslatedWindowTest, TheQuestionAboutUnsavedChangesIsWholeAndQuotesAsTheLanguageDoes) {
  platform::QtFileDialogs real;
  const platform::Installed<platform::FileDialogs>::Scope installation(real);
  window_->setDocumentEdited(true);
  window_->performClose();
  auto* const sheet = shownDialog<QMessageBox>("sheet");
  ASSERT_NE(sheet, nullptr);
  EXPECT_EQ(sheet->text().toStdString(), expected().question);
  expectNothingClipped(*sheet);
  expectKeyLetters(*sheet);
  QAbstractButton* dontSave = nullptr;
  for (QAbstractButton* const button : sheet->buttons()) {
    if (button->text().toStdString() == expected().dontSave) {
      dontSave = button;
    }
  }
  ASSERT_NE(dontSave, nullptr);
  dontSave->click();
}

TEST_P(TranslatedWindowTest, TheSavePanelIsWholeAndItsKeyLettersAreItsOwn) {
  platform::QtFileDialogs real;
  const platform::Installed<platform::FileDialogs>::Scope installation(real);
  item(window_, "Save As…")->trigger();
  auto* const panel = shownDialog<platform::SavePanel>("savePanel");
  ASSERT_NE(panel, nullptr);
  EXPECT_EQ(panel->windowTitle(), translated("Save As"));
  expectNothingClipped(*panel);
  expectKeyLetters(*panel);
  panel->reject();
}

TEST_P(TranslatedWindowTest, TheQuestionBeforeReplacingIsWhole) {
  platform::QtFileDialogs real;
  const platform::Installed<platform::FileDialogs>::Scope installation(real);
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

TEST_P(TranslatedWindowTest, TheOpenAndTheImportPanelAreWhole) {
  platform::QtFileDialogs real;
  const platform::Installed<platform::FileDialogs>::Scope installation(real);
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

TEST_P(TranslatedWindowTest, TheRuleOfRingtonesIsWhole) {
  platform::QtFileDialogs real;
  const platform::Installed<platform::FileDialogs>::Scope installation(real);
  item(window_, "Export Ringtone…")->trigger();
  auto* const panel = shownDialog<platform::SavePanel>("savePanel");
  ASSERT_NE(panel, nullptr);
  expectNothingClipped(*panel);
  panel->reject();
}

TEST_P(TranslatedWindowTest, TheQuestionAboutRecoveredRecordingsIsWhole) {
  std::vector<OVRecoveredFile> files(4);
  files[0].frames = 44100 * 7500ULL;
  files[0].start = QDateTime(QDate(2026, 11, 21), QTime(14, 2));
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
    for (int column = 0; column < list->columnCount(); ++column) {
      const QString text = list->topLevelItem(2)->text(column);
      EXPECT_GT(list->columnWidth(column), list->fontMetrics().horizontalAdvance(text))
          << text.toStdString();
    }
    EXPECT_LE(list->header()->length(), list->viewport()->width()) << "nothing to scroll";
  }
}

INSTANTIATE_TEST_SUITE_P(InEveryLanguage, TranslatedWindowTest,
                         testing::Values("", "de", "fr", "es", "ja", "zh_CN"),
                         [](const auto& language) {
                           return language.param.empty() ? std::string("en") : language.param;
                         });

TEST(TranslatedWindowListTest, EveryLanguageThatThereIsIsTested) {
  std::set<std::string> languages;
  for (const QString& language : OVTranslations::languages()) {
    languages.insert(language.toStdString());
  }
  std::set<std::string> tested;
  for (const auto& [language, texts] : kExpected) {
    if (!language.empty()) {  // English needs no file
      tested.insert(language);
    }
  }
  EXPECT_EQ(tested, languages);
}

}  // namespace
