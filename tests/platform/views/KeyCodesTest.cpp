#include "platform/views/KeyCodes.h"

#include <gtest/gtest.h>

namespace {

using platform::hardwareKeyCode;

QKeyEvent press(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
  return {QEvent::KeyPress, key, modifiers};
}

QKeyEvent release(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
  return {QEvent::KeyRelease, key, modifiers};
}

QKeyEvent pressAtPosition(int key, quint32 scanCode) {
  return {QEvent::KeyPress, key, Qt::NoModifier, scanCode, 0, 0};
}

TEST(KeyCodesTest, TheThreeTransportKeysHaveTheirHardwareCodes) {
  EXPECT_EQ(hardwareKeyCode(press(Qt::Key_R)), 15);
  EXPECT_EQ(hardwareKeyCode(press(Qt::Key_Return)), 36);
  EXPECT_EQ(hardwareKeyCode(press(Qt::Key_Space)), 49);
}

TEST(KeyCodesTest, EnterOfTheNumberPadCountsAsReturn) {
  EXPECT_EQ(hardwareKeyCode(press(Qt::Key_Enter, Qt::KeypadModifier)), 36);
}

TEST(KeyCodesTest, OtherKeysAreUnmapped) {
  for (const int key : {Qt::Key_A, Qt::Key_S, Qt::Key_Escape, Qt::Key_Tab, Qt::Key_Left}) {
    EXPECT_EQ(hardwareKeyCode(press(key)), 0xFFFF) << key;
  }
}

TEST(KeyCodesTest, ShiftDoesNotChangeAKey) {
  EXPECT_EQ(hardwareKeyCode(press(Qt::Key_R, Qt::ShiftModifier)), 15);
  EXPECT_EQ(hardwareKeyCode(press(Qt::Key_Space, Qt::ShiftModifier)), 49);
}

TEST(KeyCodesTest, APressWithACommandModifierIsUnmapped) {
  for (const auto modifier : {Qt::ControlModifier, Qt::AltModifier, Qt::MetaModifier}) {
    EXPECT_EQ(hardwareKeyCode(press(Qt::Key_R, modifier)), 0xFFFF);
    EXPECT_EQ(hardwareKeyCode(press(Qt::Key_Space, modifier)), 0xFFFF);
  }
}

TEST(KeyCodesTest, AReleaseKeepsItsCodeWhateverWasHeldMeanwhile) {
  EXPECT_EQ(hardwareKeyCode(release(Qt::Key_R, Qt::ControlModifier)), 15);
  EXPECT_EQ(hardwareKeyCode(release(Qt::Key_Space, Qt::AltModifier)), 49);
}

TEST(KeyCodesTest, ThePlainCodeTakesNoNoticeOfModifiers) {
  EXPECT_EQ(platform::plainKeyCode(press(Qt::Key_Space, Qt::ControlModifier)), 49);
  EXPECT_EQ(platform::plainKeyCode(press(Qt::Key_S, Qt::ControlModifier)), 0xFFFF);
}

TEST(KeyCodesTest, ANonLatinLetterIsReadByItsPosition) {
  EXPECT_EQ(hardwareKeyCode(pressAtPosition(0x041A, 27)), 15);  // Cyrillic Ka, on the R key
  EXPECT_EQ(hardwareKeyCode(pressAtPosition(0x041A, 28)), 0xFFFF);
}

TEST(KeyCodesTest, ALatinLayoutIsReadByItsLetters) {
  EXPECT_EQ(hardwareKeyCode(pressAtPosition(Qt::Key_P, 27)), 0xFFFF);  // another layout's R key
  EXPECT_EQ(hardwareKeyCode(pressAtPosition(Qt::Key_R, 32)), 15);
  EXPECT_EQ(hardwareKeyCode(pressAtPosition(Qt::Key_F1, 27)), 0xFFFF);
}

}  // namespace
