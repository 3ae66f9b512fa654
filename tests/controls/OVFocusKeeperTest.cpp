#include "controls/OVFocusKeeper.h"

#include <memory>
#include <vector>

#include <gtest/gtest.h>

namespace {

class OVFocusKeeperTest : public testing::Test {
 protected:
  OVFocusKeeperTest() {
    for (QWidget* const view : {first_.get(), second_.get()}) {
      view->setFocusPolicy(Qt::TabFocus);
    }
    window_.show();
    first_->setFocus();
  }

  void disable(QWidget* view) {
    keeper_.takeFrom(&window_, std::vector<QWidget*>{nullptr, view});
    view->setEnabled(false);
  }

  QWidget window_;
  std::unique_ptr<QWidget> first_ = std::make_unique<QWidget>(&window_);
  std::unique_ptr<QWidget> second_ = std::make_unique<QWidget>(&window_);
  OVFocusKeeper keeper_;
};

TEST_F(OVFocusKeeperTest, AControlThatWasDisabledGetsTheKeyboardBackAndNobodyHasItMeanwhile) {
  disable(first_.get());
  EXPECT_EQ(window_.focusWidget(), nullptr);
  first_->setEnabled(true);
  keeper_.giveBack(&window_);
  EXPECT_EQ(window_.focusWidget(), first_.get());
}

TEST_F(OVFocusKeeperTest, DisablingASecondTimeForgetsNothing) {
  disable(first_.get());
  disable(first_.get());
  first_->setEnabled(true);
  keeper_.giveBack(&window_);
  EXPECT_EQ(window_.focusWidget(), first_.get());
}

TEST_F(OVFocusKeeperTest, AnotherControlKeepsTheKeyboardAllTheTime) {
  disable(second_.get());
  EXPECT_EQ(window_.focusWidget(), first_.get());
  first_->clearFocus();
  keeper_.giveBack(&window_);
  EXPECT_EQ(window_.focusWidget(), nullptr);
}

TEST_F(OVFocusKeeperTest, AKeyboardThatWasMovedMeanwhileStays) {
  disable(first_.get());
  second_->setFocus();
  first_->setEnabled(true);
  keeper_.giveBack(&window_);
  EXPECT_EQ(window_.focusWidget(), second_.get());
}

TEST_F(OVFocusKeeperTest, AControlThatIsGoneGetsNothing) {
  disable(first_.get());
  first_.reset();
  keeper_.giveBack(&window_);
  EXPECT_EQ(window_.focusWidget(), nullptr);
}

TEST_F(OVFocusKeeperTest, WithoutAWindowItDoesNothing) {
  keeper_.takeFrom(nullptr, std::vector<QWidget*>{first_.get()});
  keeper_.giveBack(nullptr);
  EXPECT_EQ(window_.focusWidget(), first_.get());
}

TEST_F(OVFocusKeeperTest, ItGivesBackOnce) {
  disable(first_.get());
  first_->setEnabled(true);
  keeper_.giveBack(&window_);
  first_->clearFocus();
  keeper_.giveBack(&window_);
  EXPECT_EQ(window_.focusWidget(), nullptr);
}

}  // namespace
