#pragma once

#include <functional>

#include <QPointer>

class OVDocumentFile;
class OVDocumentPanels;
class OVEditHistory;
class OVFileOperation;
class OVRecoveredOrigin;
class OVRecorderWindow;
class OVTransport;

/// Decides whether the document's window may close: asks about unsaved changes and waits for the
/// save that the user chose.
///
///   idle --close--> asking --Don't Save--> confirmed
///   asking --Save--> savePending --saved--> confirmed
///   idle --close while a file is written--> savePending
///   asking --Cancel--> idle, savePending --save failed, or save or closing cancelled--> idle
///
/// Threads: main. Real-time: not safe.
class OVUnsavedChanges {
 public:
  enum class State {
    idle,
    asking,       ///< the question is on the screen
    savePending,  ///< the window closes when the running or pending save is complete
    confirmed,    ///< the window may close
  };

  /// Answers to the question.
  enum Answer : int { kCancelClosing = -1, kDontSave = 0, kSave = 1 };

  /// The parts of the document that it uses; they outlive it.
  struct Parts {
    const OVFileOperation& operation;
    const OVEditHistory& history;
    const OVDocumentFile& file;
    OVTransport& transport;
    OVDocumentPanels& panels;
    OVRecoveredOrigin& recovered;
  };

  /// `save` runs the document's save command and returns false if nothing was begun; `answered`
  /// receives the answer and calls answer() with it.
  OVUnsavedChanges(const Parts& parts, std::function<bool()> save,
                   std::function<void(int)> answered);

  void setWindow(OVRecorderWindow* window);
  [[nodiscard]] State state() const { return state_; }

  /// Whether the window may close now. If not, waits for a running save, or asks the user, or, if
  /// another panel is open, brings it to the front. Recording is paused once the question is on the
  /// screen.
  [[nodiscard]] bool mayClose();
  /// Whether the question cannot be asked because another panel is open. If so, brings the panel to
  /// the front and shows an alert; the caller cancels the quit.
  [[nodiscard]] bool refusesQuit();
  /// The window stays open after the save that it waits for; a save that has not begun is dropped.
  /// A question on the screen stays.
  void cancelClosing();
  /// Handles the answer. A code that is no Answer is a programming error and aborts the program.
  void answer(int returnCode);

  /// A load has ended: starts a save that waited for it.
  void loadEnded();
  /// A save has written everything; with `saved` false an export, which leaves the document
  /// unsaved.
  void written(bool saved);
  /// A save failed or was cancelled: the document stays open and a quit is cancelled.
  void saveFailed();

 private:
  void bringToFront();
  void save();
  void ask();
  void closeWindow();

  const Parts parts_;
  const std::function<bool()> save_;
  const std::function<void(int)> answered_;
  QPointer<OVRecorderWindow> window_;
  State state_ = State::idle;
};
