#include "displays/OVTimeView.h"

#include <thread>

#include <gtest/gtest.h>
#include <QAccessible>
#include <QtTest>

#include "support/MainLoop.h"
#include "support/PaintCounter.h"
#include "support/Pixels.h"

namespace {

QImage drawnOver(OVTimeView& view, const QColor& paper) {
  QImage screen = makePicture(view.size(), 1.0, paper);
  view.render(&screen, QPoint(), QRegion(), QWidget::DrawChildren);
  return screen;
}

const QColor kPaper(36, 45, 66);

}  // namespace

TEST(OVTimeViewTest, BeginsAtZero) {
  const OVTimeView view;
  EXPECT_EQ(view.currentTimeInSeconds(), 0.0);
  EXPECT_EQ(view.durationInSeconds(), 0.0);
  EXPECT_EQ(view.text(), "00:00:00.00 / 00:00:00.00");
}

TEST(OVTimeViewTest, DrawsItsTextOverWhateverLiesBehind) {
  OVTimeView view;
  view.resize(150, 14);
  view.setCurrentTimeInSeconds(83.45);
  view.setDurationInSeconds(218.5);
  const OVTimeText text;
  const QImage expected = drawnPicture(view.size(), 1.0, kPaper, [&](QPainter& painter) {
    text.draw(painter, view.size(), "00:01:23.45 / 00:03:38.50");
  });
  EXPECT_EQ(drawnOver(view, kPaper), expected);
}

TEST(OVTimeViewTest, SettingATimeDoesNotRedraw) {
  OVTimeView view;
  view.resize(150, 14);
  support::PaintCounter counter(&view);
  view.show();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&view));
  ASSERT_TRUE(runMainLoopUntil([&] { return counter.paints > 0; }));
  QCoreApplication::processEvents();
  const int before = counter.paints;
  view.setCurrentTimeInSeconds(1.0);
  view.setDurationInSeconds(2.0);
  QCoreApplication::sendPostedEvents();
  QCoreApplication::processEvents();
  EXPECT_EQ(counter.paints, before);
  view.update();
  EXPECT_TRUE(runMainLoopUntil([&] { return counter.paints > before; }));
}

TEST(OVTimeViewTest, ALoadingJobMaySetTheDurationFromItsOwnThread) {
  OVTimeView view;
  view.resize(150, 14);
  std::thread job([&] {
    for (int i = 1; i <= 1000; ++i) {
      view.setDurationInSeconds(i);
    }
  });
  for (int i = 0; i < 20; ++i) {
    static_cast<void>(drawnOver(view, kPaper));
  }
  job.join();
  EXPECT_EQ(view.durationInSeconds(), 1000.0);
}

TEST(OVTimeViewTest, ReadsItsTimesOutToAssistiveTechnology) {
  OVTimeView view;
  view.setCurrentTimeInSeconds(3725.5);
  QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(&view);
  ASSERT_NE(accessible, nullptr);
  EXPECT_EQ(accessible->role(), QAccessible::StaticText);
  EXPECT_EQ(accessible->text(QAccessible::Name), "Position and length");
  EXPECT_EQ(accessible->text(QAccessible::Value), "01:02:05.50 / 00:00:00.00");
}
