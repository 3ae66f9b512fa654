#pragma once

#include <cstdint>
#include <functional>
#include <memory>

#include <QPointer>

#include "document/editing/OVKeptDocument.h"
#include "platform/base/UndoManager.h"
#include "platform/mainloop/Localization.h"

class OVDocumentAudio;
class OVDocumentSummaries;
class OVRecorderWindow;

/// The undoable steps of a document. Each step holds the audio's waypoint, the shown summary, the
/// edited flag and the entry in the undo manager; an undo, a redo or a failed step restores all
/// four together. One step can be undone.
///
/// Threads: main. Real-time: not safe.
class OVEditHistory {
 public:
  OVEditHistory(OVDocumentAudio& audio, OVDocumentSummaries& summaries);

  /// The undo manager runs `undo` and `redo` while `target` exists.
  void open(std::weak_ptr<void> target, std::function<void()> undo, std::function<void()> redo);
  /// The document is closed: drops the undo manager, and the keeper lets go of the recording.
  void close();

  /// Null before open() and after close().
  [[nodiscard]] std::shared_ptr<platform::UndoManager> undoManager() const { return undoManager_; }
  [[nodiscard]] bool canUndo() const { return undoManager_ && undoManager_->canUndo(); }
  [[nodiscard]] bool canRedo() const { return undoManager_ && undoManager_->canRedo(); }

  /// The edited flag, kept by the window if there is one.
  void setWindow(OVRecorderWindow* window);
  [[nodiscard]] bool isEdited() const;
  void setEdited(bool edited);
  /// Everything was saved.
  void saved();
  /// The file matches the present audio: the next undo or redo marks the document as edited.
  void fileReplaced() { prevSaveState_ = true; }

  /// The recording, as the keeper knows it.
  [[nodiscard]] OVKeptDocument& kept() { return kept_; }

  /// Registers an undoable step. Call before changing the audio: cuts, recordings and imports do.
  /// `name` is the step's name in the menu.
  void beginStep(platform::TextKey name);
  /// The last step has failed: restores the state before it, including its undo and redo entries.
  void rollBackStep();

  /// A step that leaves no waypoint: `operation` is its own inverse.
  void registerInverse(const std::function<void()>& operation, platform::TextKey name);

  /// Restore the audio; called by the operations given to open(). True if the summary shown
  /// afterwards must be generated from scratch.
  [[nodiscard]] bool undo();
  [[nodiscard]] bool redo();

  /// Changes with every step, also one that is its own inverse, and with every undo and redo;
  /// compare two values to detect an edit in between.
  [[nodiscard]] std::uint64_t revision() const { return revision_; }

 private:
  using Operation = std::function<void()>;
  using Sides = platform::UndoManager::Sides;

  [[nodiscard]] bool exchange(const Operation& inverse, void (OVEditHistory::*restore)());
  void restoreWaypoint();
  void restoreRedo();
  void registerOperation(const Operation& operation);

  OVDocumentAudio& audio_;
  OVDocumentSummaries& summaries_;
  OVKeptDocument kept_{audio_};
  std::weak_ptr<void> target_;
  Operation undo_;
  Operation redo_;
  std::shared_ptr<platform::UndoManager> undoManager_;
  QPointer<OVRecorderWindow> window_;
  bool documentEdited_ = false;  // the flag of a document without a window
  bool prevSaveState_ = false;   // the flag that the next undo or redo restores
  std::uint64_t revision_ = 0;

  // As they were before the last step.
  Sides formerSides_;
  bool formerPrevSaveState_ = false;
};
