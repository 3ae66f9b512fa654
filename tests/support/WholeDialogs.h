#pragma once

#include <gtest/gtest.h>
#include <QAbstractButton>
#include <QLabel>
#include <QRegularExpression>
#include <QStringList>
#include <QWidget>

/// What holds of every dialog, in every language.
///
/// Threads: main.
namespace support {

/// The mnemonic letters and digits of the texts, in capitals.
inline QStringList keyLettersOf(const QStringList& texts) {
  static const QRegularExpression kKeyLetter("(?<!&)&([\\p{L}\\p{Nd}])");
  QStringList letters;
  for (const QString& text : texts) {
    const auto match = kKeyLetter.match(text);
    if (match.hasMatch()) {
      letters << match.captured(1).toUpper();
    }
  }
  return letters;
}

inline bool areAllDifferent(QStringList letters) {
  return letters.removeDuplicates() == 0;
}

/// Every button with a text has a key letter and no picture, and no letter is there twice, those of
/// the labels included.
inline void expectKeyLetters(const QWidget& dialog) {
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
inline void expectNothingClipped(const QWidget& dialog) {
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

}  // namespace support
