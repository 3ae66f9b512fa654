#pragma once

#include <functional>

#include <QPointer>

class OVDocumentFile;
class OVDocumentPanels;
class OVEditHistory;
class OVFileOperation;
class OVRecorderWindow;
class OVTransport;

/// Whether the document's window may close: asks about unsaved changes, and waits for the save that
/// the answer asked for.
///
///   idle --close--> asking --Don't Save--> confirmed
///   asking --Save--> savePending --saved--> confirmed
///   idle --close while a file is written--> savePending
///   asking --Cancel--> idle, savePending --save failed or cancelled--> idle
///
/// Threads: main. Real-time: not safe.
class OVUnsavedChanges {
 public:
  enum class State {
    idle,
    asking,       ///< the question is on the screen
    savePending,  ///< the window closes when what is written, or has yet to be, is complete
    confirmed,    ///< the window may close
  };

  /// Answers of the question.
  enum Answer : int { kCancelClosing = -1, kDontSave = 0, kSave = 1 };

  /// The parts of the document that it asks; they outlive it.
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

  /// Whether the window may close now. Otherwise asks, or, where that cannot be now, ends a quit
  /// and says so. What is recorded is paused when the question is on the screen.
  [[nodiscard]] bool mayClose();
  /// The end of the question. Any code but an Answer is a programming error and ends the program.
  void answer(int returnCode);

  /// A file operation that wrote nothing has ended: a save that waited for it begins.
  void loadEnded();
  /// Everything was written: by a save, or by an export, which has saved nothing of the document.
  void written(bool saved);
  /// A save has failed or was cancelled: the document stays, and so does the program.
  void saveFailed();

 private:
  void bringToFront();
  void save();
  void ask();
  void sayThatAPanelIsOpen() const;
  void closeWindow();

  const Parts parts_;
  const std::function<bool()> save_;
  const std::function<void(int)> answered_;
  QPointer<OVRecorderWindow> window_;
  State state_ = State::idle;
};
