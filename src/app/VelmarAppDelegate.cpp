#include "app/VelmarAppDelegate.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <iterator>
#include <utility>

#include <QApplication>
#include <QEventLoop>
#include <QFileInfo>
#include <QMessageBox>
#include <QUrl>

#include "app/OVAboutText.h"
#include "app/OVDiagnosticsWindow.h"
#include "app/OVHelpPage.h"
#include "audio/OVFileKinds.h"
#include "controls/OVRecorderWindow.h"
#include "document/VLRecorderWindowController.h"
#include "platform/base/ApplicationServices.h"
#include "platform/base/MainThread.h"
#include "platform/desktop/DesktopServices.h"
#include "platform/desktop/FileDialogs.h"
#include "platform/desktop/MessageBox.h"
#include "platform/files/AbsolutePath.h"
#include "platform/files/Descriptors.h"
#include "platform/mainloop/Localization.h"
#include "platform/mainloop/ShownName.h"

namespace {

constexpr double kTerminationInterval = 1.0 / 30.0;  // seconds
constexpr std::size_t kTempfilesCapacity = 10;
// Enough for the window, and afterwards for panels, saving, and the sound device to open again.
constexpr std::size_t kDescriptorsOfAWindow = 64;

std::shared_ptr<VLRecorderWindowController> documentOf(const OVRecorderWindow& window) {
  return std::dynamic_pointer_cast<VLRecorderWindowController>(window.delegate());
}

// Of the file of a window's document; empty for none.
std::string folderOfDocument(const QWidget* window) {
  const auto* const recorder = qobject_cast<const OVRecorderWindow*>(window);
  const auto document = recorder != nullptr ? documentOf(*recorder) : nullptr;
  return document ? std::filesystem::path(document->currentFilename()).parent_path().string()
                  : std::string();
}

}  // namespace

VelmarAppDelegate::VelmarAppDelegate(std::function<void()> quit)
    : quit_(std::move(quit)),
      recovered_(recoveredFolder(),
                 {.open = [this](const OVRecoveredFile& file) { openRecovered(file); },
                  .mayAsk = [this] { return mayAskNow(); }}) {
  awakeFromNib();
}

VelmarAppDelegate::~VelmarAppDelegate() = default;

// Launch ----------------------------------------------------------------------------------------

void VelmarAppDelegate::awakeFromNib() {
  spawn_rec_ = true;
}

void VelmarAppDelegate::applicationWillFinishLaunching() {
  const platform::MutexLock lock(tempfilesMutex_);
  tempfiles_.clear();
  tempfiles_.reserve(kTempfilesCapacity);
  spawn_rec_ = true;
}

void VelmarAppDelegate::applicationDidFinishLaunching() {
  if (spawn_rec_) {
    spawnNewRecorderWindow(nullptr);
  }
  recentFiles_.refresh();
}

void VelmarAppDelegate::spawnNewRecorderWindow(QObject*) {
  if (hasRoomForAWindow()) {
    makeWindow()->showWindow();
  }
}

bool VelmarAppDelegate::hasRoomForAWindow() const {
  if (recorderWindows().empty() || platform::hasFreeDescriptors(kDescriptorsOfAWindow)) {
    return true;
  }
  if (!hasPendingAlerts()) {  // files may be opened by the dozen
    platform::applicationServices()->postModalAlert(
        platform::localizedUtf8("There is no room for another window"),
        platform::localizedUtf8("Too many files are open. Close some windows, then try again."));
  }
  return false;
}

std::shared_ptr<VLRecorderWindowController> VelmarAppDelegate::makeWindow() {
  platform::assertMainThread();
  auto controller = VLRecorderWindowController::initWithWindowNibName("VNRecorderWindow");
  std::erase_if(windows_, [](const auto& window) { return window.isNull(); });
  windows_.emplace_back(controller->window());
  new OVMainMenu(controller, commands());  // belongs to the window
  controller->window()->setDropHandler(
      [this](const std::vector<std::string>& paths) { applicationOpenFiles(paths); });
  controller->setEvents(
      {.saved = [this](const std::string& path) { recentFiles_.note(path); },
       .nothingOpened = [this, window = windows_.back()] { closeUnlessTheOnlyOne(window); }});
  return controller;
}

OVMainMenu::ApplicationCommands VelmarAppDelegate::commands() {
  return {
      .spawnNewRecorderWindow = [this] { spawnNewRecorderWindow(nullptr); },
      .openFile = [this](QWidget* window) { openFile(window); },
      .recentFiles =
          [this] {
            recentFiles_.refresh();  // for the next call
            return recentFiles_.latest();
          },
      .openRecentFile = [this](const std::string& path) { applicationOpenFile(path); },
      .terminate = [this] { terminate(); },
      .openDocumentation = [this] { openDocumentation(nullptr); },
      .showRecovered = [this] { showRecovered(); },
      .showDiagnostics = [this] { showDiagnostics(); },
      .showAbout = [this] { showAbout(); },
  };
}

bool VelmarAppDelegate::applicationShouldHandleReopen(bool hasVisibleWindows) {
  if (!hasVisibleWindows) {
    spawnNewRecorderWindow(nullptr);
  }
  return true;
}

// Open ------------------------------------------------------------------------------------------

bool VelmarAppDelegate::applicationOpenFile(const std::string& path) {
  return applicationOpenFiles({path});
}

bool VelmarAppDelegate::applicationOpenFiles(const std::vector<std::string>& paths) {
  platform::assertMainThread();
  for (const std::string& path : paths) {
    spawn_rec_ = false;
    if (!openInNewWindow(path)) {
      break;
    }
  }
  return true;
}

bool VelmarAppDelegate::openInNewWindow(const std::string& path) {
  if (!hasRoomForAWindow()) {
    return false;
  }
  std::string absolute = platform::absolutePathOf(path);
  if (absolute.empty()) {
    absolute = path;  // an empty path, or no working directory: the reader reports it
  }
  const auto controller = makeWindow();
  if (!controller->buffer()) {  // nothing can be opened without storage, which was told
    closeUnlessTheOnlyOne(controller->window());
    return false;
  }
  recentFiles_.note(absolute);
  controller->showWindow();
  controller->window()->setTitle(
      VLRecorderWindowController::titleWithName(platform::shownName(lastPathComponent(absolute))));
  controller->setCurrentFilename(absolute);
  controller->setCurrentFiletype(-1);
  controller->openFileNamed(absolute);
  return true;
}

// The only window stays as an empty recorder.
void VelmarAppDelegate::closeUnlessTheOnlyOne(const QPointer<OVRecorderWindow>& window) {
  const auto others = recorderWindows();
  if (window && std::any_of(others.begin(), others.end(),
                            [&window](const auto& other) { return other != window; })) {
    window->performClose();
  } else if (window) {
    window->show();
  }
}

void VelmarAppDelegate::openRecovered(const OVRecoveredFile& file) {
  if (!hasRoomForAWindow()) {
    return;  // the file is kept, and listed
  }
  const auto controller = makeWindow();
  if (!controller->buffer()) {
    closeUnlessTheOnlyOne(controller->window());
    return;  // the file is kept, and listed
  }
  controller->showWindow();
  controller->openRecovered(file);
}

bool VelmarAppDelegate::mayAskNow() const {
  const auto windows = recorderWindows();
  return !isTerminating() && !(alertsPending_ && alertsPending_()) &&
         QApplication::activeModalWidget() == nullptr &&
         QApplication::activePopupWidget() == nullptr &&
         std::none_of(windows.begin(), windows.end(), [](const auto& window) {
           const auto document = documentOf(*window);
           return document && document->isFileIOActive();
         });
}

void VelmarAppDelegate::openFile(QWidget* window) {
  platform::fileDialogs()->beginOpenPanel(
      {.window = window,
       .title = platform::localized("Open"),
       .acceptLabel = platform::localized("&Open"),
       .directory = folderOfDocument(window),
       .allowsMultipleSelection = true,
       .fileTypes = readableFileTypes()},
      [this](const std::vector<std::string>& paths) { applicationOpenFiles(paths); });
}

// Quit ------------------------------------------------------------------------------------------

// A copy: a window that is asked to close may be destroyed.
std::vector<QPointer<OVRecorderWindow>> VelmarAppDelegate::recorderWindows() const {
  std::vector<QPointer<OVRecorderWindow>> shown;
  std::copy_if(windows_.begin(), windows_.end(), std::back_inserter(shown),
               [](const auto& window) { return window && window->isVisible(); });
  return shown;
}

// A window is asked when it becomes edited, not at every check: asking brings it to the front.
bool VelmarAppDelegate::askEditedWindows() {
  auto edited = recorderWindows();
  std::erase_if(edited, [](const auto& window) { return !window->isDocumentEdited(); });
  if (std::any_of(edited.begin(), edited.end(), [](const auto& window) {
        const auto document = documentOf(*window);
        return document && document->refusesQuit();
      })) {
    quitRefused_ = true;
    cancelTermination();
    return true;
  }
  if (!edited.empty()) {
    pollTermination();
  }
  const auto asked = std::exchange(askedWindows_, edited);
  for (const auto& window : edited) {
    if (window && std::find(asked.begin(), asked.end(), window) == asked.end()) {
      closeForQuit(*window);
    }
  }
  return !edited.empty();
}

void VelmarAppDelegate::closeForQuit(OVRecorderWindow& window) {
  const auto document = documentOf(window);
  if (document && !document->shouldCloseAfterSave()) {
    closedByQuit_.emplace_back(document);
  }
  window.performClose();
}

VelmarAppDelegate::TerminateReply VelmarAppDelegate::applicationShouldTerminate() {
  platform::assertMainThread();
  askedWindows_.clear();
  return askEditedWindows() ? TerminateReply::cancel : TerminateReply::now;
}

bool VelmarAppDelegate::hasEditedWindow() const {
  const auto windows = recorderWindows();
  return std::any_of(windows.begin(), windows.end(),
                     [](const auto& window) { return window->isDocumentEdited(); });
}

bool VelmarAppDelegate::isSaving() const {
  const auto windows = recorderWindows();
  return std::any_of(windows.begin(), windows.end(), [](const auto& window) {
    const auto document = documentOf(*window);
    return document && document->isSaving();
  });
}

bool VelmarAppDelegate::holdsSession() const {
  return isTerminating() || isSaving() || hasEditedWindow();
}

bool VelmarAppDelegate::applicationMayEndSession() {
  platform::assertMainThread();
  if (waitingSession_ != nullptr) {
    return false;
  }
  if (!holdsSession()) {
    return true;  // the session manager ends the program
  }
  QEventLoop waiting;
  waitingSession_ = &waiting;
  sessionMayEnd_.reset();
  if (!isTerminating()) {
    terminate();
  }
  if (!sessionMayEnd_) {
    waiting.exec();
  }
  waitingSession_ = nullptr;
  return sessionMayEnd_.value_or(false);
}

void VelmarAppDelegate::answerSession(bool mayEnd) {
  if (waitingSession_ != nullptr && !sessionMayEnd_) {
    sessionMayEnd_ = mayEnd;
    waitingSession_->quit();
  }
}

void VelmarAppDelegate::pollTermination() {
  if (!terminationTimer_) {
    terminationTimer_ =
        std::make_unique<platform::Timer>(kTerminationInterval, [this] { checkTermination(); });
  }
}

void VelmarAppDelegate::checkTermination() {
  platform::assertMainThread();
  if (terminationCanceled_) {
    terminationCanceled_ = false;
    return;
  }
  if (!askEditedWindows()) {
    terminate();
  }
}

void VelmarAppDelegate::cancelTermination() {
  platform::assertMainThread();
  terminationCanceled_ = true;
  terminationTimer_.reset();
  askedWindows_.clear();
  for (const auto& closing : std::exchange(closedByQuit_, {})) {
    if (const auto document = closing.lock()) {
      document->cancelClosing();
    }
  }
  terminationCanceled_ = false;
  answerSession(false);
}

void VelmarAppDelegate::terminationSignalled() {
  if (isTerminating() || (quitRefused_ && hasPendingAlerts())) {
    return;
  }
  quitRefused_ = false;
  terminate();
}

void VelmarAppDelegate::terminate() {
  if (applicationShouldTerminate() != TerminateReply::now) {
    return;
  }
  for (const auto& window : recorderWindows()) {
    if (window) {
      closeForQuit(*window);
    }
  }
  if (!recorderWindows().empty() || hasPendingAlerts()) {
    // A window that is being saved closes when its file is complete, an alert when it is dismissed.
    pollTermination();
    return;
  }
  terminationTimer_.reset();
  answerSession(true);
  quit_();
}

void VelmarAppDelegate::applicationWillTerminate() {
  platform::assertMainThread();
  for (const std::string& path : tempfiles()) {
    std::remove(path.c_str());
  }
}

// Temporary files -------------------------------------------------------------------------------

void VelmarAppDelegate::registerTempFile(const std::string& path) {
  const platform::MutexLock lock(tempfilesMutex_);
  tempfiles_.push_back(path);
}

std::vector<std::string> VelmarAppDelegate::tempfiles() const {
  const platform::MutexLock lock(tempfilesMutex_);
  return tempfiles_;
}

// Pages -----------------------------------------------------------------------------------------

void VelmarAppDelegate::openDocumentation(QObject*) {
  const QString page = OVHelpPage::pathFrom(QCoreApplication::applicationDirPath());
  openPage(QUrl::fromLocalFile(page));
}

// The address is localized like any text, so that a language can have its own page.
void VelmarAppDelegate::openWebsite(QObject*) {
  openPage(QUrl(platform::localized("https://orvo.example/")));
}

void VelmarAppDelegate::openPage(const QUrl& page) {
  const QString name = platform::shownName(page.toDisplayString(QUrl::PreferLocalFile));
  const bool isMissing = page.isLocalFile() && !QFileInfo::exists(page.toLocalFile());
  if (isMissing || !platform::desktopServices()->open(page)) {
    ShowModalAlert(platform::localizedUtf8("The page could not be opened"),
                   (isMissing ? platform::localized("%1 is missing. Install Orvo again.")
                              : platform::localized("No program was found that opens %1."))
                       .arg(name)
                       .toStdString());
  }
}

// Diagnostics and About -------------------------------------------------------------------------

// Created on first use: its text layout would delay startup.
void VelmarAppDelegate::makeDebugWindow() {
  auto window = std::make_unique<OVDiagnosticsWindow>();
  setDebugConsole(window->console());
  setDebugWindow(std::move(window));
}

void VelmarAppDelegate::logToConsole(const std::string& text) {
  platform::assertMainThread();
  if (!debugConsole_) {
    makeDebugWindow();
  }
  debugConsole_->appendPlainText(platform::shownName(text));  // it may hold names of files
}

void VelmarAppDelegate::showDiagnostics() {
  if (!debugWindow_) {
    makeDebugWindow();
  }
  debugWindow_->show();
  debugWindow_->raise();
}

void VelmarAppDelegate::showAbout() {
  const QString text = aboutText();  // its first paragraph is the title
  const QString paragraph = QStringLiteral("\n\n");
  auto* const about = new QMessageBox(QApplication::activeWindow());
  about->setObjectName("about");
  about->setAttribute(Qt::WA_DeleteOnClose);
  platform::fillMessageBox(*about, text.section(paragraph, 0, 0), text.section(paragraph, 1));
  about->setWindowTitle(platform::localized("About Orvo"));
  about->addButton(platform::localized("&OK"), QMessageBox::AcceptRole);
  about->open();
}
