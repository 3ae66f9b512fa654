// Alerts, the console and About in the whole application.
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <QAbstractButton>
#include <QApplication>
#include <QLabel>
#include <QMessageBox>

#include "app/AppFixture.h"
#include "app/OVApplicationServices.h"
#include "app/OVDiagnosticsWindow.h"
#include "support/TemporaryFolder.h"

namespace {

/// The alert on the screen; null for none.
QMessageBox* shownAlert() {
  for (QWidget* const widget : QApplication::topLevelWidgets()) {
    auto* const alert = qobject_cast<QMessageBox*>(widget);
    if (alert != nullptr && alert->isVisible() && alert->objectName() == "modalAlert") {
      return alert;
    }
  }
  return nullptr;
}

class ApplicationAlertsTest : public AppFixture {
 protected:
  ApplicationAlertsTest() {
    delegate_.setAlertsPendingCheck([real = real_] { return real->hasAlerts(); });
  }

  std::shared_ptr<OVApplicationServices> real_ =
      std::make_shared<OVApplicationServices>(OVApplicationServices::Receivers{
          .logToConsole = [this](const std::string& text) { delegate_.logToConsole(text); },
          .registerTempFile = [this](const std::string& path) { delegate_.registerTempFile(path); },
          .cancelTermination = [this] { delegate_.cancelTermination(); }});
  platform::Installed<platform::ApplicationServices>::Scope realInstallation_{real_};
  support::TemporaryFolder folder_;
};

// The window closes as soon as the file is complete, and the last one ends the program.
TEST_F(ApplicationAlertsTest, AnAlertOfTheLastWindowIsReadBeforeTheProgramEnds) {
  desktop_.knowsPrograms = false;
  OVRecorderWindow* const window = spawn();
  const std::vector<float> samples(2000, 0.5F);
  documentOf(window)->buffer()->writeData(samples.data(), 0, 8000);
  documentOf(window)->exportRingtone(nullptr);
  panels_->answerSave(folder_.file("tone.m4r"));
  window->performClose();
  bool wasRead = false;
  int quitsWhileShown = -1;
  // Does what Qt does when the last window has closed, even within the alert's own event loop.
  const std::function<void()> endAndRead = [&] {
    if (!windows().empty() || shownAlert() == nullptr) {
      platform::mainQueue().async(endAndRead);
      return;
    }
    delegate_.terminate();
    quitsWhileShown = quits_;
    wasRead = true;
    shownAlert()->buttons().front()->click();
  };
  platform::mainQueue().async(endAndRead);
  ASSERT_TRUE(runMainLoopUntil([&] { return wasRead; }));
  EXPECT_EQ(quitsWhileShown, 0);
  EXPECT_TRUE(runMainLoopUntil([&] { return quits_ == 1; }));
}

OVDiagnosticsWindow* diagnostics() {
  for (QWidget* const widget : QApplication::topLevelWidgets()) {
    if (auto* const window = qobject_cast<OVDiagnosticsWindow*>(widget)) {
      return window;
    }
  }
  return nullptr;
}

TEST_F(ApplicationAlertsTest, ALineOfAnyThreadStandsInTheDiagnosticsWindow) {
  std::thread([] { ConsoleLog("lost %d frames of %s", 7, "“take”"); }).join();
  EXPECT_TRUE(drainMainQueue());
  ConsoleLog("and %s", "<i>went on</i>");
  EXPECT_TRUE(drainMainQueue());
  OVRecorderWindow* const window = spawn();
  item(window, "Diagnostics")->trigger();
  ASSERT_NE(diagnostics(), nullptr);
  EXPECT_TRUE(diagnostics()->isVisible());
  EXPECT_EQ(diagnostics()->console()->toPlainText().toStdString(),
            "lost 7 frames of “take”\nand <i>went on</i>");
  ConsoleLog("later");
  EXPECT_TRUE(drainMainQueue());
  EXPECT_TRUE(diagnostics()->console()->toPlainText().endsWith("\nlater"));
}

TEST_F(ApplicationAlertsTest, TheDiagnosticsWindowNeitherCountsAsADocumentNorHoldsAQuit) {
  delegate_.showDiagnostics();
  ASSERT_NE(diagnostics(), nullptr);
  delegate_.terminate();
  EXPECT_EQ(quits_, 1);
}

TEST_F(ApplicationAlertsTest, AboutNamesTheProgramAndItsVersion) {
  QCoreApplication::setApplicationVersion("1.2.3");
  OVRecorderWindow* const window = spawn();
  QString shown;
  const std::function<void()> readAbout = [&] {
    if (auto* const about = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
      shown = about->windowTitle() + "\n" + about->text() + "\n" + about->informativeText();
      EXPECT_TRUE(about->findChild<QLabel*>("qt_msgbox_label")->font().bold());
      ASSERT_EQ(about->buttons().size(), 1);
      EXPECT_EQ(about->buttons().front()->text(), "&OK");
      EXPECT_TRUE(about->buttons().front()->icon().isNull());
      about->buttons().front()->click();
    } else {
      platform::mainQueue().async(readAbout);
    }
  };
  platform::mainQueue().async(readAbout);
  item(window, "About Orvo")->trigger();
  EXPECT_TRUE(runMainLoopUntil([&] { return !shown.isEmpty(); }));
  EXPECT_TRUE(shown.startsWith("About Orvo\nOrvo 1.2.3\nAn audio recorder")) << shown.toStdString();
  EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

}  // namespace
