#include <memory>

#include <QApplication>
#include <QDBusConnection>
#include <QIcon>

#include "app/OVApplicationServices.h"
#include "app/VelmarAppDelegate.h"
#include "platform/AudioQueue.h"
#include "platform/CubebAudioDevice.h"
#include "platform/DesktopColours.h"
#include "platform/DeviceAudioQueues.h"
#include "platform/Dispatch.h"

namespace {

// Background work that is still running at the end gets this long to finish.
constexpr double kLastWorkSeconds = 2.0;

std::shared_ptr<OVApplicationServices> servicesOf(VelmarAppDelegate& delegate) {
  return std::make_shared<OVApplicationServices>(OVApplicationServices::Receivers{
      .logToConsole = [&delegate](const std::string& text) { delegate.logToConsole(text); },
      .registerTempFile = [&delegate](const std::string& path) { delegate.registerTempFile(path); },
      .cancelTermination = [&delegate] { delegate.cancelTermination(); },
  });
}

}  // namespace

int main(int argc, char** argv) {
  // The microphone begins to open while everything else starts up.
  const auto queues =
      std::make_shared<platform::DeviceAudioQueues>(std::make_shared<platform::CubebAudioDevice>());
  queues->prepareInput();
  const platform::AudioQueuesInstallation installedQueues(queues);

  QApplication application(argc, argv);
  QApplication::setApplicationName("Orvo");
  QApplication::setApplicationVersion(ORVO_VERSION);
  QApplication::setDesktopFileName("orvo");
  QIcon icon;
  for (const int size : {16, 32, 48, 64, 128, 256}) {
    icon.addFile(QStringLiteral(":/images/orvo-%1.png").arg(size));
  }
  QApplication::setWindowIcon(icon);

  VelmarAppDelegate delegate([] { QCoreApplication::exit(0); });
  const platform::ApplicationServicesInstallation installedServices(servicesOf(delegate));
  delegate.applicationWillFinishLaunching();
  delegate.applicationDidFinishLaunching();
  const platform::DesktopColours colours(QDBusConnection::sessionBus());  // after the window is up
  const int result = QApplication::exec();

  delegate.applicationWillTerminate();
  platform::globalQueue().waitUntilIdle(kLastWorkSeconds);
  platform::mainQueue().shutDown();
  return result;
}
