#pragma once

#include <cstdint>
#include <functional>
#include <memory>

#include <QPointer>

#include "platform/base/UndoManager.h"
#include "platform/mainloop/Localization.h"

class OVDocumentAudio;
class OVDocumentSummaries;
class OVRecorderWindow;

/// The undoable steps of a document: for each the audio's waypoint, the summary that was shown, the
/// edited flag, and the entry in the undo manager, so that an undo, a redo, or a step that fails
/// gives all four back together. One step can be undone.
///
/// Threads: main. Real-time: not safe.
class OVEditHistory {
 public:
  OVEditHistory(OVDocumentAudio& audio, OVDocumentSummaries& summaries);

  /// `undo` and `redo` are what the undo manager runs, while `target` is there.
  void open(std::weak_ptr<void> target, std::function<void()> undo, std::function<void()> redo);
  /// Drops the undo manager.
  void close();

  /// Null before open() and after close().
  [[nodiscard]] std::shared_ptr<platform::UndoManager> undoManager() const { return undoManager_; }
  [[nodiscard]] bool canUndo() const { return undoManager_ && undoManager_->canUndo(); }
  [[nodiscard]] bool canRedo() const { return undoManager_ && undoManager_->canRedo(); }

  /// The edited flag, kept by the window where there is one.
  void setWindow(OVRecorderWindow* window);
  [[nodiscard]] bool isEdited() const;
  void setEdited(bool edited);
  /// Everything was saved.
  void saved();
  /// The file is the present audio: what an undo or a redo brings back differs from it.
  void fileReplaced() { prevSaveState_ = true; }

  /// Before the audio is changed. `name` is what the menu calls the step.
  void beginStep(platform::TextKey name);
  /// The step that was begun last has failed: all is as it was before it, what could be undone and
  /// redone then included.
  void rollBackStep();

  /// A step that leaves no waypoint: `operation` is its own inverse.
  void registerInverse(std::function<void()> operation, platform::TextKey name);

  /// The two operations of open(), between them the audio is restored. True if the summary that is
  /// shown now has to be generated from scratch.
  [[nodiscard]] bool undo();
  [[nodiscard]] bool redo();

  /// Changes with every step, undo and redo: tells whether the audio is still that of a moment.
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
  std::weak_ptr<void> target_;
  Operation undo_;
  Operation redo_;
  std::shared_ptr<platform::UndoManager> undoManager_;
  QPointer<OVRecorderWindow> window_;
  bool documentEdited_ = false;  // the flag of a document without a window
  bool prevSaveState_ = false;   // what the next undo or redo brings back
  std::uint64_t revision_ = 0;

  // As they were before the last step.
  Sides formerSides_;
  bool formerPrevSaveState_ = false;
};
