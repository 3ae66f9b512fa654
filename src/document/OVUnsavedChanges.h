#pragma once

#include <functional>

#include <QPointer>

class OVDocumentFile;
class OVDocumentPanels;
class OVEditHistory;
class OVFileOperation;
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
  };

  /// `save` is the document's command, false if it began nothing; `answered` gets the answer and
  /// calls answer() with it.
  OVUnsavedChanges(const Parts& parts, std::function<bool()> save,
                   std::function<void(int)> answered);

  void setWindow(OVRecorderWindow* window);
  [[nodiscard]] State state() const { return state_; }

  /// Whether the window may close now. If not, waits for a save that runs, or asks, or, when a
  /// panel is open, brings it to the front. Recording is paused once the question is on the screen.
  [[nodiscard]] bool mayClose();
  /// Whether the question cannot be asked because another panel is open. If so, brings that to the
  /// front and alerts the user; the caller cancels the quit.
  [[nodiscard]] bool refusesQuit();
  /// The window stays open when the save that it waits for is complete; one that has not begun yet
  /// is not begun. A question on the screen stays.
  void cancelClosing();
  /// Handles the answer. Any code but an Answer is a programming error and ends the program.
  void answer(int returnCode);

  /// A load has ended: starts a save that waited for it.
  void loadEnded();
  /// A save has written everything, or (`saved` false) an export, which leaves the document
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
