#include "waveform/views/OVRecordingTickView.h"

#include <gtest/gtest.h>
#include <QAccessible>
#include <QCoreApplication>

#include "support/MainLoop.h"
#include "support/PaintCounter.h"
#include "support/Pixels.h"
#include "waveform/views/OVRecordingTickDrawing.h"

namespace {

QImage drawnOver(OVRecordingTickView& view, const QColor& paper) {
  QImage screen = makePicture(view.size(), 1.0, paper);
  view.render(&screen, QPoint(), QRegion(), QWidget::RenderFlags());
  return screen;
}

}  // namespace

TEST(OVRecordingTickViewTest, DrawsTheTickOverWhateverLiesBelow) {
  OVRecordingTickView view;
  view.resize(200, 60);
  view.setPosition(0.25);
  const QColor paper(40, 80, 120);
  const QImage expected = drawnPicture(view.size(), 1.0, paper, [&](QPainter& painter) {
    drawRecordingTick(painter, view.size(), 0.25);
  });
  EXPECT_EQ(drawnOver(view, paper), expected);
}

TEST(OVRecordingTickViewTest, RedrawsOnlyWhenItMoves) {
  OVRecordingTickView view;
  view.resize(200, 60);
  view.show();
  view.setPosition(0.25);
  EXPECT_TRUE(drainMainQueue());
  QCoreApplication::processEvents();
  support::PaintCounter counter(&view);
  view.setPosition(0.25);
  view.setPlaceText("00:00:01.00");
  EXPECT_TRUE(drainMainQueue());
  QCoreApplication::processEvents();
  EXPECT_EQ(counter.paints, 0);
  view.setPosition(0.5);
  EXPECT_TRUE(runMainLoopUntil([&] { return counter.paints > 0; }));
}

TEST(OVRecordingTickViewTest, LetsTheMouseThrough) {
  const OVRecordingTickView view;
  EXPECT_TRUE(view.testAttribute(Qt::WA_TransparentForMouseEvents));
}

TEST(OVRecordingTickViewTest, ReadsItsPlaceOutToAssistiveTechnology) {
  OVRecordingTickView view;
  view.setPlaceText("00:00:01.76");
  auto* const accessible = QAccessible::queryAccessibleInterface(&view);
  EXPECT_EQ(accessible->text(QAccessible::Name), "Recording position");
  EXPECT_EQ(accessible->text(QAccessible::Value), "00:00:01.76");
  EXPECT_EQ(accessible->role(), QAccessible::Indicator);
}
