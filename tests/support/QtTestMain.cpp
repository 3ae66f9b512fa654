// main() of every test program that needs Qt, without a display and user settings.
#include <QApplication>
#include <QSettings>
#include <QTemporaryDir>

#include <gmock/gmock.h>

#ifndef ORVO_TEST_PLATFORM  // a test program may define its own screens
#define ORVO_TEST_PLATFORM "offscreen"
#endif

int main(int argc, char** argv) {
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
    qputenv("QT_QPA_PLATFORM", ORVO_TEST_PLATFORM);
  }
  testing::InitGoogleMock(&argc, argv);
  QApplication application(argc, argv);
  const QTemporaryDir settings;
  QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, settings.path());
  qputenv("XDG_DATA_HOME", settings.path().toUtf8());  // nor the user's list of recent files
  return RUN_ALL_TESTS();
}
