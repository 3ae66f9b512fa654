#include "app/OVDiagnosticsWindow.h"

#include <string>

#include <gtest/gtest.h>
#include <QTest>

namespace {

TEST(OVDiagnosticsWindow, ShowsLinesAsTheyStandTheNewestLast) {
  OVDiagnosticsWindow window;
  window.appendLine("one");
  window.appendLine("<b>two</b> “%1”");
  EXPECT_EQ(window.toPlainText(), "one\n<b>two</b> “%1”");
}

TEST(OVDiagnosticsWindow, CanBeReadAndCopiedButNotChanged) {
  OVDiagnosticsWindow window;
  window.appendLine("one");
  window.show();
  QTest::keyClicks(&window, "typed");
  EXPECT_EQ(window.toPlainText(), "one");
  EXPECT_TRUE(window.textInteractionFlags().testFlag(Qt::TextSelectableByMouse));
}

TEST(OVDiagnosticsWindow, KeepsTheLastLinesOnly) {
  OVDiagnosticsWindow window;
  for (int i = 0; i <= OVDiagnosticsWindow::kMaximumLines; ++i) {
    window.appendLine(std::to_string(i));
  }
  EXPECT_EQ(window.blockCount(), OVDiagnosticsWindow::kMaximumLines);
  EXPECT_TRUE(window.toPlainText().startsWith("1\n"));
}

TEST(OVDiagnosticsWindow, IsAWindowThatDoesNotKeepTheProgram) {
  const OVDiagnosticsWindow window;
  EXPECT_TRUE(window.isWindow());
  EXPECT_FALSE(window.testAttribute(Qt::WA_QuitOnClose));
  EXPECT_EQ(window.windowTitle(), "Orvo Diagnostics");
}

}  // namespace
