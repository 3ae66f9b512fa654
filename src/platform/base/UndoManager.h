#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <string>

namespace platform {

/// Two stacks of operations that take things back. While an operation of the undo side runs, what
/// it registers goes to the redo side, and the other way round; any other registration empties
/// the redo side.
///
/// Threads: main. Real-time: not safe.
class UndoManager {
 public:
  /// Most operations kept on each side, the oldest are dropped; 0 keeps all.
  void setLevelsOfUndo(std::size_t levels);
  [[nodiscard]] std::size_t levelsOfUndo() const { return levels_; }

  /// Registers an operation. It is not run if `target` has gone by then.
  void registerUndo(std::weak_ptr<void> target, std::function<void()> operation);

  /// Names the operation registered last, for the menu. What is registered during an undo or redo
  /// takes over the name of the operation that runs.
  void setActionName(std::string name);

  [[nodiscard]] bool canUndo() const { return !undoStack_.empty(); }
  [[nodiscard]] bool canRedo() const { return !redoStack_.empty(); }
  [[nodiscard]] bool isUndoing() const { return mode_ == Mode::undoing; }
  [[nodiscard]] bool isRedoing() const { return mode_ == Mode::redoing; }

  /// Runs the last operation of a side; nothing when it is empty or an operation is running. What
  /// an operation throws is passed on; it is off its side by then, and the manager goes on as
  /// before.
  void undo();
  void redo();

  /// Empty when there is nothing to undo or redo.
  [[nodiscard]] std::string undoActionName() const;
  [[nodiscard]] std::string redoActionName() const;

  /// Both sides as they are, for a step that may fail after its registration.
  class Sides;
  [[nodiscard]] Sides sides() const;
  /// Makes both sides as they were.
  void setSides(Sides sides);

  /// Called after every change of either side.
  void setChangeHandler(std::function<void()> handler) { changed_ = std::move(handler); }

 private:
  enum class Mode { normal, undoing, redoing };
  struct Action {
    std::weak_ptr<void> target;
    std::function<void()> operation;
    std::string name;
  };
  using Stack = std::deque<Action>;

  Stack& registrationStack();
  void run(Stack& stack, Mode mode);
  void endRun();
  void trim(Stack& stack) const;
  void tellChange() const;

  std::size_t levels_ = 0;
  Mode mode_ = Mode::normal;
  std::string runningName_;
  Stack undoStack_;
  Stack redoStack_;
  std::function<void()> changed_;
};

class UndoManager::Sides {
  friend class UndoManager;
  Stack undo_;
  Stack redo_;
};

}  // namespace platform
