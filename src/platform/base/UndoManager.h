#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <string>

namespace platform {

/// The undo stack and the redo stack. Operations registered during an undo go to the redo stack,
/// and those registered during a redo to the undo stack. Any other registration clears the redo
/// stack.
///
/// Threads: main. Real-time: not safe.
class UndoManager {
 public:
  /// Maximum number of operations on each stack; the oldest are dropped. 0 keeps all.
  void setLevelsOfUndo(std::size_t levels);
  [[nodiscard]] std::size_t levelsOfUndo() const { return levels_; }

  /// Registers an operation, which does nothing once `target` has expired.
  void registerUndo(std::weak_ptr<void> target, std::function<void()> operation);

  /// Names the last registered operation for the menu. An operation registered during an undo or
  /// redo inherits the name of the running one.
  void setActionName(std::string name);

  [[nodiscard]] bool canUndo() const { return !undoStack_.empty(); }
  [[nodiscard]] bool canRedo() const { return !redoStack_.empty(); }
  [[nodiscard]] bool isUndoing() const { return mode_ == Mode::undoing; }
  [[nodiscard]] bool isRedoing() const { return mode_ == Mode::redoing; }

  /// Runs the last operation of a stack. Does nothing when the stack is empty or an operation is
  /// running. Exceptions propagate; the operation has left its stack by then, and the manager stays
  /// usable.
  void undo();
  void redo();

  /// Empty when there is nothing to undo or redo.
  [[nodiscard]] std::string undoActionName() const;
  [[nodiscard]] std::string redoActionName() const;

  /// A copy of both stacks, for a step that may fail after its registration.
  class Sides;
  [[nodiscard]] Sides sides() const;
  /// Restores both stacks.
  void setSides(Sides sides);

  /// Called after every change of either stack.
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
