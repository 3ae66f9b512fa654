#include "controls/OVLoadingIndicator.h"

#include <QTest>

#include <gtest/gtest.h>

namespace {

class OVLoadingIndicatorTest : public testing::Test {
 protected:
  void SetUp() override {
    QPalette palette;
    palette.setColor(QPalette::Window, Qt::black);
    parent_.setPalette(palette);
    parent_.resize(200, 20);
    indicator_ = new OVLoadingIndicator(&parent_);
    indicator_->setGeometry(20, 8, 160, 4);
  }

  [[nodiscard]] bool isFilled(int x) {
    return parent_.grab().toImage().pixelColor(20 + x, 9).green() > 100;
  }

  QWidget parent_;
  OVLoadingIndicator* indicator_ = nullptr;
};

TEST_F(OVLoadingIndicatorTest, FillsAsFarAsTheValueSays) {
  indicator_->setRange(0, 1000);
  indicator_->setValue(250);
  EXPECT_TRUE(isFilled(2));
  EXPECT_TRUE(isFilled(38));
  EXPECT_FALSE(isFilled(42));
  indicator_->setValue(1000);
  EXPECT_TRUE(isFilled(157));
  indicator_->setValue(0);
  EXPECT_FALSE(isFilled(2));
}

TEST_F(OVLoadingIndicatorTest, ABarThatWasNeverSetIsEmpty) {
  EXPECT_FALSE(isFilled(2));
  EXPECT_FALSE(isFilled(80));
}

TEST_F(OVLoadingIndicatorTest, TheTrackLightensWhatLiesBelow) {
  EXPECT_NEAR(parent_.grab().toImage().pixelColor(100, 9).green(), 26, 1);
}

TEST_F(OVLoadingIndicatorTest, AnUnknownAmountShowsAPieceThatMoves) {
  indicator_->setRange(0, 0);
  EXPECT_TRUE(isFilled(10));
  EXPECT_FALSE(isFilled(150));
  parent_.show();
  EXPECT_TRUE(QTest::qWaitFor([this] { return isFilled(150) && !isFilled(10); }));
}

TEST_F(OVLoadingIndicatorTest, TheTimerRunsOnlyWhileThereIsSomethingToMove) {
  parent_.show();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&parent_));
  EXPECT_FALSE(indicator_->isAnimating());
  indicator_->setRange(0, 0);
  EXPECT_TRUE(QTest::qWaitFor([this] { return indicator_->isAnimating(); }));
  indicator_->hide();
  EXPECT_FALSE(indicator_->isAnimating());
  indicator_->show();
  EXPECT_TRUE(indicator_->isAnimating());
  indicator_->setRange(0, 100);
  EXPECT_TRUE(QTest::qWaitFor([this] { return !indicator_->isAnimating(); }));
}

}  // namespace
