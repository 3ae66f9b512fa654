#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <QPlainTextEdit>
#include <QPointer>
#include <QWidget>

#include "app/OVMainMenu.h"
#include "app/OVRecentFiles.h"
#include "app/OVRecoveredRecordings.h"
#include "platform/base/Mutex.h"
#include "platform/mainloop/Localization.h"
#include "platform/mainloop/Timer.h"

class QEventLoop;
class QUrl;
class OVRecorderWindow;
class VLRecorderWindowController;

/// The application: opens recorder windows, keeps the list of temporary files to delete at the end,
/// and runs a quit, which waits for documents with unsaved changes.
///
/// Threads: main; any for registerTempFile() and tempfiles(). Real-time: not safe.
class VelmarAppDelegate {
 public:
  /// `quit` ends the main loop.
  explicit VelmarAppDelegate(std::function<void()> quit);
  ~VelmarAppDelegate();
  VelmarAppDelegate(const VelmarAppDelegate&) = delete;
  VelmarAppDelegate& operator=(const VelmarAppDelegate&) = delete;

  /// Called first, by the constructor: an empty window is wanted unless a file is opened.
  void awakeFromNib();
  void applicationWillFinishLaunching();
  /// Opens an empty recorder window unless a file was opened.
  void applicationDidFinishLaunching();
  /// Nothing but an alert, here and wherever a file is opened, if too many files are open.
  void spawnNewRecorderWindow(QObject* sender);

  /// Opens a file, or each of several in order, in a new window of its own, and lists it among the
  /// desktop's recent documents. Also called for the program's arguments, the desktop's open event
  /// and files dropped on a window. Always true: failures are shown as alerts, after which the
  /// window closes unless it is the only one.
  bool applicationOpenFile(const std::string& path);
  bool applicationOpenFiles(const std::vector<std::string>& paths);
  /// Asks for files and opens each in a new window. The panel belongs to `window`, which may be
  /// null.
  void openFile(QWidget* window);
  /// From now on asks what to do with recordings that were kept when the program ended
  /// unexpectedly: those that are there and those that appear. Waits while another question, an
  /// alert or a file operation is shown. Call it after the program's arguments were opened.
  void offerRecovered() { recovered_.begin(); }
  /// Opens a recovered file in a new window, which closes again if the file gives nothing and there
  /// is another window. It is listed nowhere.
  void openRecovered(const OVRecoveredFile& file);
  /// The Recovered Recordings command.
  void showRecovered() { recovered_.show(); }
  [[nodiscard]] const OVRecoveredRecordings& recovered() const { return recovered_; }
  /// The desktop activated the running program again: opens a new window if none is visible. Always
  /// true.
  bool applicationShouldHandleReopen(bool hasVisibleWindows);

  /// Opens the help page that is installed with the program.
  void openDocumentation(QObject* sender);
  void openWebsite(QObject* sender);

  enum class TerminateReply { cancel = 0, now = 1 };

  /// Asks every edited window to close, in the order of their creation; `now` if none is edited.
  /// Otherwise checkTermination() is called 30 times a second. If one of the windows shows another
  /// panel, none is asked: the quit is cancelled, with one alert.
  TerminateReply applicationShouldTerminate();
  /// Terminates once no window is edited any more. A window that has become edited since the last
  /// check is asked as well; one that is being saved is waited for.
  void checkTermination();
  /// A document's question was answered with Cancel, or its save failed: cancels the quit. A window
  /// that waits for a save because of the quit stays open; one that was closed before it does not.
  void cancelTermination();
  [[nodiscard]] bool isTerminating() const { return terminationTimer_ != nullptr; }
  /// The timer that calls checkTermination(); null while no quit is waiting.
  [[nodiscard]] const platform::Timer* terminationTimer() const { return terminationTimer_.get(); }
  /// Whether the end of the desktop's session has to wait for the user: something is unsaved or
  /// being saved, or a quit is under way.
  [[nodiscard]] bool holdsSession() const;
  /// The desktop's session is about to end: asks as a quit does, and returns when the user has
  /// answered and what was to be saved is saved. False if the quit was cancelled, or was asked for
  /// in the same way and is not answered yet. Runs the main loop.
  [[nodiscard]] bool applicationMayEndSession();
  /// Deletes every registered temporary file; failures are ignored.
  void applicationWillTerminate();

  /// The Quit command.
  void terminate();
  /// A termination signal came: quits, unless a quit is under way already or its refusal is still
  /// shown.
  void terminationSignalled();
  /// A quit waits while this reports an alert shown or pending.
  void setAlertsPendingCheck(std::function<bool()> check) { alertsPending_ = std::move(check); }

  /// Threads: any.
  void registerTempFile(const std::string& path);
  [[nodiscard]] std::vector<std::string> tempfiles() const;

  /// Appends a line to the debug console. Line breaks in it, as of a file's name, become spaces.
  void logToConsole(const std::string& text);
  void showDiagnostics();

  /// The diagnostics window and the text view inside it, both created for the first line or the
  /// first showing; null before, and once the text view is destroyed. The delegate owns the window.
  [[nodiscard]] QWidget* debugWindow() const { return debugWindow_.get(); }
  void setDebugWindow(std::unique_ptr<QWidget> window) { debugWindow_ = std::move(window); }
  [[nodiscard]] QPlainTextEdit* debugConsole() const { return debugConsole_; }
  void setDebugConsole(QPlainTextEdit* console) { debugConsole_ = console; }
  void showAbout();

 private:
  [[nodiscard]] std::vector<QPointer<OVRecorderWindow>> recorderWindows() const;
  std::shared_ptr<VLRecorderWindowController> makeWindow();
  /// False if no further file can be opened either, which was told.
  [[nodiscard]] bool openInNewWindow(const std::string& path);
  /// For a window whose file could not be opened.
  void closeUnlessTheOnlyOne(const QPointer<OVRecorderWindow>& window);
  /// Whether a question disturbs nothing now.
  [[nodiscard]] bool mayAskNow() const;
  /// Asks the edited windows that were not edited at the last call, or cancels the quit if one of
  /// them shows another panel. False if none is edited.
  bool askEditedWindows();
  /// cancelTermination() undoes it, unless the window was closing already.
  void closeForQuit(OVRecorderWindow& window);
  void pollTermination();
  /// Whether a further window can be made without running out of descriptors; else an alert says
  /// so.
  [[nodiscard]] bool hasRoomForAWindow() const;
  [[nodiscard]] bool hasEditedWindow() const;
  [[nodiscard]] bool isSaving() const;
  [[nodiscard]] bool hasPendingAlerts() const { return alertsPending_ && alertsPending_(); }
  /// Lets a session's end that waits for the quit go on, or refuses it.
  void answerSession(bool mayEnd);
  static void openPage(const QUrl& page);
  [[nodiscard]] OVMainMenu::ApplicationCommands commands();
  void makeDebugWindow();

  const std::function<void()> quit_;
  std::function<bool()> alertsPending_;
  std::vector<QPointer<OVRecorderWindow>> windows_;  // in order of creation; destroyed ones null
  bool spawn_rec_ = false;
  std::vector<QPointer<OVRecorderWindow>> askedWindows_;                 // by the current quit
  std::vector<std::weak_ptr<VLRecorderWindowController>> closedByQuit_;  // not by the user before
  std::unique_ptr<platform::Timer> terminationTimer_;
  bool terminationCanceled_ = false;
  bool quitRefused_ = false;              // by a panel; with an alert
  QEventLoop* waitingSession_ = nullptr;  // until the quit has ended
  std::optional<bool> sessionMayEnd_;     // the answer to it
  std::unique_ptr<QWidget> debugWindow_;
  QPointer<QPlainTextEdit> debugConsole_;
  OVRecentFiles recentFiles_;
  OVRecoveredRecordings recovered_;

  mutable platform::Mutex tempfilesMutex_;
  std::vector<std::string> tempfiles_ GUARDED_BY(tempfilesMutex_);
};
