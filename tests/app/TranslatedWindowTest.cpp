// The window in every language: its texts, and whether these fit.
#include <iterator>
#include <map>
#include <set>

#include <gmock/gmock.h>
#include <QAbstractButton>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QRegularExpression>
#include <QToolButton>

#include "app/TranslatedFixture.h"
#include "controls/OVLoadingPanel.h"
#include "platform/desktop/QtFileDialogs.h"

namespace {

using support::areAllDifferent;
using support::expectKeyLetters;
using support::expectNothingClipped;
using support::keyLettersOf;
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
      "Voulez‑vous enregistrer les modifications apportées à «\u00a0Sans titre\u00a0»\u00a0?",
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

class TranslatedWindowTest : public TranslatedFixture {
 protected:
  [[nodiscard]] static const Expected& expected() { return kExpected.at(GetParam()); }

  [[nodiscard]] std::string nameOf(const char* view) const {
    return window_->findChild<QWidget*>(view)->accessibleName().toStdString();
  }
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

TEST_P(TranslatedWindowTest, RecentFilesHaveDigitsOfTheirOwn) {
  for (const char* const name : {"a.wav", "b & c.wav", "3.wav"}) {
    recent_.noteNewRecentDocument(std::string("/music/") + name);
  }
  auto* const menu = window_->findChild<QMenu*>("Open Recent");
  ASSERT_NE(menu, nullptr);
  ASSERT_TRUE(runMainLoopUntil([&] {
    Q_EMIT qobject_cast<QMenu*>(menu->parentWidget())->aboutToShow();
    return menu->actions().size() == 3;
  }));
  EXPECT_EQ(keyLettersOf(textsOf(menu->actions())), QStringList({"1", "2", "3"}));
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

INSTANTIATE_TEST_SUITE_P(InEveryLanguage, TranslatedWindowTest, everyTestedLanguage(),
                         nameOfTestedLanguage);

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
  EXPECT_EQ(std::set<std::string>(std::begin(kTestedLanguages), std::end(kTestedLanguages)).size(),
            kExpected.size());
}

}  // namespace
