#include "platform/base/UndoManager.h"

#include <gtest/gtest.h>

#include <stdexcept>

using platform::UndoManager;

namespace {

// A number whose every change is undoable.
class UndoableNumber {
 public:
  explicit UndoableNumber(UndoManager& manager) : manager_(manager) {}

  void set(int value, const char* name) {
    swapIn(value);
    manager_.setActionName(name);
  }
  [[nodiscard]] int value() const { return *value_; }
  void dropTarget() { target_.reset(); }

 private:
  void swapIn(int value) {
    manager_.registerUndo(target_, [this, old = *value_] { swapIn(old); });
    *value_ = value;
  }

  UndoManager& manager_;
  std::shared_ptr<int> value_ = std::make_shared<int>(0);
  std::shared_ptr<int> target_ = std::make_shared<int>(0);
};

}  // namespace

TEST(UndoManagerTest, UndoAndRedoGoBackAndForthWithTheNameOfTheAction) {
  UndoManager manager;
  UndoableNumber number(manager);
  number.set(7, "Set Seven");
  EXPECT_TRUE(manager.canUndo());
  EXPECT_FALSE(manager.canRedo());
  EXPECT_EQ(manager.undoActionName(), "Set Seven");

  manager.undo();
  EXPECT_EQ(number.value(), 0);
  EXPECT_FALSE(manager.canUndo());
  EXPECT_EQ(manager.redoActionName(), "Set Seven");

  manager.redo();
  EXPECT_EQ(number.value(), 7);
  EXPECT_EQ(manager.undoActionName(), "Set Seven");
  EXPECT_FALSE(manager.canRedo());
}

TEST(UndoManagerTest, WithOneLevelOnlyTheLastActionCanBeUndone) {
  UndoManager manager;
  manager.setLevelsOfUndo(1);
  UndoableNumber number(manager);
  number.set(1, "One");
  number.set(2, "Two");
  manager.undo();
  EXPECT_EQ(number.value(), 1);
  EXPECT_FALSE(manager.canUndo());
}

TEST(UndoManagerTest, ANewActionEmptiesTheRedoSide) {
  UndoManager manager;
  UndoableNumber number(manager);
  number.set(1, "One");
  manager.undo();
  ASSERT_TRUE(manager.canRedo());
  number.set(2, "Two");
  EXPECT_FALSE(manager.canRedo());
}

TEST(UndoManagerTest, AnOperationWhoseTargetHasGoneIsNotRun) {
  UndoManager manager;
  UndoableNumber number(manager);
  number.set(1, "One");
  number.dropTarget();
  manager.undo();
  EXPECT_EQ(number.value(), 1);
  EXPECT_FALSE(manager.canUndo());
}

TEST(UndoManagerTest, UndoOnAnEmptySideDoesNothing) {
  UndoManager manager;
  manager.undo();
  manager.redo();
  EXPECT_EQ(manager.undoActionName(), "");
  EXPECT_EQ(manager.redoActionName(), "");
}

TEST(UndoManagerTest, TellsEveryChange) {
  UndoManager manager;
  int changes = 0;
  manager.setChangeHandler([&] { ++changes; });
  UndoableNumber number(manager);
  number.set(1, "One");
  const int afterSet = changes;
  EXPECT_GT(afterSet, 0);
  manager.undo();
  EXPECT_GT(changes, afterSet);
}

TEST(UndoManagerTest, SidesThatAreSetBackUndoAndRedoAsBefore) {
  UndoManager manager;
  UndoableNumber number(manager);
  number.set(1, "One");
  number.set(2, "Two");
  manager.undo();
  const auto sides = manager.sides();
  number.set(3, "Three");
  ASSERT_FALSE(manager.canRedo());
  manager.setSides(sides);
  EXPECT_EQ(manager.undoActionName(), "One");
  EXPECT_EQ(manager.redoActionName(), "Two");
  manager.redo();
  EXPECT_EQ(number.value(), 2);
}

TEST(UndoManagerTest, AnOperationThatThrowsIsTakenOffAndLeavesTheManagerUsable) {
  UndoManager manager;
  UndoableNumber number(manager);
  int changes = 0;
  manager.setChangeHandler([&] { ++changes; });
  number.set(1, "One");
  const auto target = std::make_shared<int>(0);
  manager.registerUndo(target, [] { throw std::runtime_error("no memory"); });
  const int before = changes;
  EXPECT_THROW(manager.undo(), std::runtime_error);
  EXPECT_FALSE(manager.isUndoing());
  EXPECT_GT(changes, before) << "what can be undone has changed all the same";
  EXPECT_EQ(manager.undoActionName(), "One");

  manager.undo();
  EXPECT_EQ(number.value(), 0);
  manager.redo();
  EXPECT_EQ(number.value(), 1);
}

TEST(UndoManagerTest, ARedoThatThrowsLeavesTheManagerUsable) {
  UndoManager manager;
  UndoableNumber number(manager);
  const auto target = std::make_shared<int>(0);
  manager.registerUndo(
      target, [&] { manager.registerUndo(target, [] { throw std::runtime_error("no memory"); }); });
  manager.undo();
  EXPECT_THROW(manager.redo(), std::runtime_error);
  EXPECT_FALSE(manager.isRedoing());
  EXPECT_FALSE(manager.canRedo());
  number.set(1, "One");
  manager.undo();
  EXPECT_EQ(number.value(), 0);
}
