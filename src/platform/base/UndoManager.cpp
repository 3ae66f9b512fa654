#include "platform/base/UndoManager.h"

#include <utility>

namespace platform {

void UndoManager::setLevelsOfUndo(std::size_t levels) {
  levels_ = levels;
  trim(undoStack_);
  trim(redoStack_);
  tellChange();
}

void UndoManager::registerUndo(std::weak_ptr<void> target, std::function<void()> operation) {
  if (mode_ == Mode::normal) {
    redoStack_.clear();
    runningName_.clear();
  }
  Stack& stack = registrationStack();
  stack.push_back({std::move(target), std::move(operation), runningName_});
  trim(stack);
  tellChange();
}

void UndoManager::setActionName(std::string name) {
  Stack& stack = registrationStack();
  if (!stack.empty()) {
    stack.back().name = std::move(name);
    tellChange();
  }
}

void UndoManager::undo() {
  run(undoStack_, Mode::undoing);
}
void UndoManager::redo() {
  run(redoStack_, Mode::redoing);
}

std::string UndoManager::undoActionName() const {
  return undoStack_.empty() ? std::string() : undoStack_.back().name;
}

std::string UndoManager::redoActionName() const {
  return redoStack_.empty() ? std::string() : redoStack_.back().name;
}

UndoManager::Sides UndoManager::sides() const {
  Sides sides;
  sides.undo_ = undoStack_;
  sides.redo_ = redoStack_;
  return sides;
}

void UndoManager::setSides(Sides sides) {
  undoStack_ = std::move(sides.undo_);
  redoStack_ = std::move(sides.redo_);
  tellChange();
}

UndoManager::Stack& UndoManager::registrationStack() {
  return mode_ == Mode::undoing ? redoStack_ : undoStack_;
}

void UndoManager::run(Stack& stack, Mode mode) {
  if (stack.empty() || mode_ != Mode::normal) {
    return;
  }
  const Action action = std::move(stack.back());
  stack.pop_back();
  mode_ = mode;
  runningName_ = action.name;
  try {
    if (const auto target = action.target.lock()) {
      action.operation();
    }
  } catch (...) {
    endRun();
    throw;
  }
  endRun();
}

void UndoManager::endRun() {
  mode_ = Mode::normal;
  tellChange();
}

void UndoManager::trim(Stack& stack) const {
  while (levels_ > 0 && stack.size() > levels_) {
    stack.pop_front();
  }
}

void UndoManager::tellChange() const {
  if (changed_) {
    changed_();
  }
}

}  // namespace platform
