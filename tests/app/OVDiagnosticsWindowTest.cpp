#include "app/OVDiagnosticsWindow.h"

#include <gtest/gtest.h>
#include <QTest>

namespace {

TEST(OVDiagnosticsWindowTest, ShowsLinesAsTheyStandTheNewestLast) {
  OVDiagnosticsWindow window;
  window.console()->appendPlainText("one");
  window.console()->appendPlainText("<b>two</b> “%1”");
  EXPECT_EQ(window.console()->toPlainText(), "one\n<b>two</b> “%1”");
}

TEST(OVDiagnosticsWindowTest, SaysThatThereIsNothingWhileItIsEmpty) {
  OVDiagnosticsWindow window;
  EXPECT_EQ(window.console()->placeholderText(), "Nothing has been reported.");
  EXPECT_EQ(window.console()->toPlainText(), "") << "it is no line";
}

TEST(OVDiagnosticsWindowTest, CanBeReadAndCopiedButNotChanged) {
  OVDiagnosticsWindow window;
  window.console()->appendPlainText("one");
  window.show();
  QTest::keyClicks(window.console(), "typed");
  EXPECT_EQ(window.console()->toPlainText(), "one");
  EXPECT_TRUE(window.console()->textInteractionFlags().testFlag(Qt::TextSelectableByMouse));
}

TEST(OVDiagnosticsWindowTest, KeepsTheLastLinesOnly) {
  OVDiagnosticsWindow window;
  for (int i = 0; i <= OVDiagnosticsWindow::kMaximumLines; ++i) {
    window.console()->appendPlainText(QString::number(i));
  }
  EXPECT_EQ(window.console()->blockCount(), OVDiagnosticsWindow::kMaximumLines);
  EXPECT_TRUE(window.console()->toPlainText().startsWith("1\n"));
}

TEST(OVDiagnosticsWindowTest, IsAWindowThatDoesNotKeepTheProgram) {
  const OVDiagnosticsWindow window;
  EXPECT_TRUE(window.isWindow());
  EXPECT_FALSE(window.testAttribute(Qt::WA_QuitOnClose));
  EXPECT_EQ(window.windowTitle(), "Orvo Diagnostics");
}

}  // namespace
