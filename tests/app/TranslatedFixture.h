#pragma once

#include <iterator>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <QAbstractButton>
#include <QLabel>
#include <QMessageBox>

#include "app/AppFixture.h"
#include "app/OVTranslations.h"
#include "support/WholeDialogs.h"

/// The languages that the tests show everything in; empty for English.
inline constexpr const char* kTestedLanguages[] = {"", "de", "fr", "es", "ja", "zh_CN"};

inline auto everyTestedLanguage() {
  return testing::ValuesIn(
      std::vector<std::string>(std::begin(kTestedLanguages), std::end(kTestedLanguages)));
}
inline std::string nameOfTestedLanguage(const testing::TestParamInfo<std::string>& language) {
  return language.param.empty() ? std::string("en") : language.param;
}

inline QString translated(const QString& key) {
  return QCoreApplication::translate("Orvo", key.toUtf8().constData());
}

inline QStringList textsOf(const QList<QAction*>& actions) {
  QStringList texts;
  for (const QAction* const action : actions) {
    texts << action->text();
  }
  return texts;
}

/// A window of the whole application in a language.
///
/// Threads: main.
class TranslatedFixture : public AppFixture, public testing::WithParamInterface<std::string> {
 protected:
  TranslatedFixture() : window_(spawn()) {}

  [[nodiscard]] static QString language() { return QString::fromStdString(GetParam()); }

  template <typename Dialog>
  Dialog* shownDialog(const char* name) {
    return shownDialog<Dialog>(window_, name);
  }
  template <typename Dialog>
  static Dialog* shownDialog(const QWidget* owner, const char* name) {
    Dialog* dialog = nullptr;
    EXPECT_TRUE(runMainLoopUntil([&] {
      dialog = owner->findChild<Dialog*>(name);
      return dialog != nullptr && dialog->isVisible();
    }));
    return dialog;
  }

  /// Presses the button with this English text.
  static void press(const QMessageBox& question, const char* text) {
    for (QAbstractButton* const button : question.buttons()) {
      if (button->text() == translated(text)) {
        button->click();
        return;
      }
    }
    ADD_FAILURE() << "no button " << text;
  }

  OVTranslations translations_{{language().isEmpty() ? QStringLiteral("en") : language()}};
  OVRecorderWindow* window_;
};
