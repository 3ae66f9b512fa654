#include <cstdio>
#include <future>
#include <memory>
#include <string>
#include <vector>

#include <QApplication>
#include <QDBusConnection>
#include <QLocale>
#include <QSessionManager>

#include "app/OVApplicationEvents.h"
#include "app/OVApplicationServices.h"
#include "app/OVCommandLine.h"
#include "app/OVCommandLineText.h"
#include "app/OVFirstWindowWatcher.h"
#include "app/OVKeeper.h"
#include "app/OVSessionEnd.h"
#include "app/OVTranslations.h"
#include "app/VelmarAppDelegate.h"
#include "audio/OVFileKinds.h"
#include "platform/base/MemoryReserve.h"
#include "platform/desktop/DBusSleepInhibitor.h"
#include "platform/desktop/DesktopColours.h"
#include "platform/desktop/DialogStyle.h"
#include "platform/desktop/FileUri.h"
#include "platform/desktop/GLibRecentDocuments.h"
#include "platform/desktop/MessageBox.h"
#include "platform/desktop/QtDesktopServices.h"
#include "platform/desktop/QtFileDialogs.h"
#include "platform/files/Descriptors.h"
#include "platform/files/Terminal.h"
#include "platform/mainloop/FailedWriteSignals.h"
#include "platform/mainloop/FontPreparation.h"
#include "platform/mainloop/MainQueue.h"
#include "platform/mainloop/TerminationSignals.h"
#include "platform/media/FfmpegModule.h"
#include "platform/process/SessionManagerLoss.h"
#include "platform/sound/AudioQueue.h"
#include "platform/sound/DeviceAudioQueues.h"
#include "platform/sound/LateAudioDevice.h"

namespace {

// How long the program waits, at most, for background work to finish at the end.
constexpr double kLastWorkSeconds = 2.0;

std::shared_ptr<OVApplicationServices> servicesOf(VelmarAppDelegate& delegate) {
  return std::make_shared<OVApplicationServices>(OVApplicationServices::Receivers{
      .logToConsole = [&delegate](const std::string& text) { delegate.logToConsole(text); },
      .registerTempFile = [&delegate](const std::string& path) { delegate.registerTempFile(path); },
      .cancelTermination = [&delegate] { delegate.cancelTermination(); },
  });
}

// Arguments may be URIs, as in the desktop's list of recent files.
std::vector<std::string> pathsOf(const std::vector<std::string>& arguments) {
  std::vector<std::string> paths;
  paths.reserve(arguments.size());
  for (const std::string& argument : arguments) {
    paths.push_back(platform::pathOfFileUri(argument).value_or(argument));
  }
  return paths;
}

int print(std::FILE* stream, const QString& text) {
  std::fputs(qUtf8Printable(text), stream);
  return std::fflush(stream) == 0 && std::ferror(stream) == 0 ? 0 : 1;
}

// Answers what needs no window, and so no screen either. The exit code.
int answer(const OVCommandLine& commandLine) {
  int noArguments = 0;
  const QCoreApplication application(noArguments, nullptr);
  const OVTranslations translations(QLocale::system().uiLanguages());
  switch (commandLine.request()) {
    case OVCommandLine::Request::printHelp:
      return print(stdout, OVCommandLineText::help(platform::terminalColumns(stdout)));
    case OVCommandLine::Request::printVersion:
      return print(stdout, QStringLiteral("Orvo " ORVO_VERSION "\n"));
    default:
      print(stderr, OVCommandLineText::refusalOf(commandLine.unknownOption()));
      return 2;
  }
}

}  // namespace

int main(int argc, char** argv) {
  platform::failWritesWithoutSignals();
  platform::occupyStandardStreams();
  OVCommandLine commandLine(argc, argv);
  if (commandLine.request() != OVCommandLine::Request::openFiles) {
    return answer(commandLine);
  }
  const platform::MemoryReserve memoryReserve;
  platform::raiseDescriptorLimit();
  platform::FontPreparation fonts;
  int argumentsForQt = static_cast<int>(commandLine.forQt().size()) - 1;
  QApplication application(argumentsForQt, commandLine.forQt().data());
  platform::outliveSessionManager();
  platform::DialogStyle::install();
  fonts.finish();
  // Loading cubeb and opening the microphone takes as long as showing a window, so it starts after
  // the window is shown; the recorder does not wait for it.
  const auto queues = std::make_shared<platform::DeviceAudioQueues>(platform::lateAudioDevice());
  std::promise<void> firstWindowShown;
  queues->prepareInput(firstWindowShown.get_future());
  const platform::Installed<platform::AudioQueues>::Scope installedQueues(queues);
  const platform::Installed<platform::FileDialogs>::Scope installedDialogs(
      std::make_shared<platform::QtFileDialogs>(&QDBusConnection::sessionBus));
  const platform::Installed<platform::DesktopServices>::Scope installedDesktop(
      std::make_shared<platform::QtDesktopServices>());
  const platform::Installed<platform::SleepInhibitor>::Scope installedSleepInhibitor(
      std::make_shared<platform::DBusSleepInhibitor>(platform::DBusSleepInhibitor::usualBuses()));
  const platform::Installed<platform::RecentDocuments>::Scope installedDocuments(
      std::make_shared<platform::GLibRecentDocuments>(platform::GLibRecentDocuments::desktopFile(),
                                                      mimeTypeOfPath));
  QApplication::setApplicationName("Orvo");
  QApplication::setApplicationVersion(ORVO_VERSION);
  QApplication::setDesktopFileName(ORVO_APPLICATION_ID);
  const OVTranslations translations(QLocale::system().uiLanguages());

  VelmarAppDelegate delegate([] { QCoreApplication::exit(0); });
  const auto services = servicesOf(delegate);
  const platform::Installed<platform::ApplicationServices>::Scope installedServices(services);
  delegate.setAlertsPendingCheck([services] { return services->hasAlerts(); });
  OVKeeper keeper(OVKeeper::programPath(QCoreApplication::applicationDirPath()));
  delegate.applicationWillFinishLaunching();
  OVApplicationEvents events(
      {.openFile = [&delegate](const std::string& path) { delegate.applicationOpenFile(path); },
       .terminate = [&delegate] { delegate.terminate(); }});
  application.installEventFilter(&events);
  // The end of the session, and a termination signal, ask as Quit does.
  QObject::connect(
      &application, &QGuiApplication::commitDataRequest, &application,
      [&delegate](QSessionManager& session) {
        askAtSessionEnd(session, delegate.holdsSession(),
                        [&delegate] { return delegate.applicationMayEndSession(); });
      },
      Qt::DirectConnection);
  const platform::TerminationSignals signals([&delegate] { delegate.terminationSignalled(); });
  delegate.applicationOpenFiles(pathsOf(commandLine.files()));
  delegate.applicationDidFinishLaunching();
  std::unique_ptr<platform::DesktopColours> colours;
  const OVFirstWindowWatcher firstWindow([&] {
    firstWindowShown.set_value();
    keeper.start();
    QApplication::setWindowIcon(platform::programIcon());
    colours = std::make_unique<platform::DesktopColours>(QDBusConnection::sessionBus());
    // Needed for the first file or spectrum; loaded now that the window is shown.
    platform::globalQueue().async([] { static_cast<void>(platform::ffmpegModule()); });
    delegate.offerRecovered();
  });
  const int result = QApplication::exec();

  delegate.applicationWillTerminate();
  platform::mainQueue().shutDown();  // first, so that no thread waits for an alert any more
  platform::globalQueue().waitUntilIdle(kLastWorkSeconds);
  return result;
}
