#include "platform/views/ViewRedraw.h"

#include <memory>
#include <thread>

#include <gtest/gtest.h>
#include <QPaintEvent>
#include <QtTest>

#include "support/MainLoop.h"

namespace {

class Painted : public QWidget {
 public:
  QRegion painted;
  int paints = 0;

 protected:
  void paintEvent(QPaintEvent* event) override {
    painted += event->region();
    ++paints;
  }
};

class ViewRedrawTest : public testing::Test {
 protected:
  ViewRedrawTest() {
    view_->resize(100, 50);
    view_->show();
    EXPECT_TRUE(QTest::qWaitForWindowExposed(view_.get()));
    EXPECT_TRUE(runMainLoopUntil([&] { return !view_->painted.isEmpty(); }));
    QCoreApplication::processEvents();
    view_->painted = QRegion();
  }

  std::unique_ptr<Painted> view_ = std::make_unique<Painted>();
};

TEST_F(ViewRedrawTest, AnotherThreadMayAskForAllOfAView) {
  std::thread([view = QPointer<Painted>(view_.get())] { requestRedraw(view); }).join();
  EXPECT_TRUE(view_->painted.isEmpty()) << "nothing is drawn before the main queue runs";
  EXPECT_TRUE(runMainLoopUntil([&] { return view_->painted == QRegion(0, 0, 100, 50); }));
}

TEST_F(ViewRedrawTest, APartIsWidenedToWholePoints) {
  requestRedraw(QPointer<Painted>(view_.get()), QRectF(10.5, 20.25, 3.0, 4.0));
  ASSERT_TRUE(runMainLoopUntil([&] { return !view_->painted.isEmpty(); }));
  EXPECT_EQ(view_->painted, QRegion(10, 20, 4, 5));
}

TEST_F(ViewRedrawTest, PartsAskedForTogetherAreDrawnTogether) {
  const int before = view_->paints;
  for (int i = 0; i < 4; ++i) {
    requestRedraw(QPointer<Painted>(view_.get()), QRectF(20.0 * i, 0.0, 5.0, 5.0));
  }
  ASSERT_TRUE(runMainLoopUntil([&] { return view_->painted.contains(QPoint(62, 2)); }));
  EXPECT_EQ(view_->paints, before + 1);
}

TEST_F(ViewRedrawTest, AViewThatHasGoneMeanwhileIsLeftAlone) {
  requestRedraw(QPointer<Painted>(view_.get()));
  requestRedraw(QPointer<Painted>(view_.get()), QRectF(0, 0, 1, 1));
  view_.reset();
  EXPECT_TRUE(drainMainQueue());
}

}  // namespace
