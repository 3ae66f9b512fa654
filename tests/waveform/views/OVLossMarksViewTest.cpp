#include "waveform/views/OVLossMarksView.h"

#include <gtest/gtest.h>
#include <QAccessible>
#include <QCoreApplication>
#include <QHelpEvent>
#include <QToolTip>

#include "support/MainLoop.h"
#include "support/PaintCounter.h"
#include "support/Pixels.h"

namespace {

std::vector<OVLossMark> twoMarks() {
  return {{.atFrame = 250, .frames = 100, .text = "0.3 s were lost at 12:31"},
          {.atFrame = 750, .frames = 0, .text = "70.0 s were lost at 45:00"}};
}

class OVLossMarksViewTest : public testing::Test {
 protected:
  OVLossMarksViewTest() {
    below_.resize(200, 60);
    view_.resize(below_.size());
    view_.setMarks(twoMarks(), "Lost in this recording: 70.3 s, first at 12:31");
    view_.setLengthInFrames(1000);
  }

  /// Lets the pointer rest over the view below; the tooltip that follows.
  QString tooltipAt(QPoint point) {
    QToolTip::hideText();  // soon
    EXPECT_TRUE(runMainLoopUntil([] { return !QToolTip::isVisible(); }));
    QHelpEvent help(QEvent::ToolTip, point, below_.mapToGlobal(point));
    isTaken_ = QCoreApplication::sendEvent(&below_, &help) && help.isAccepted();
    return QToolTip::isVisible() ? QToolTip::text() : QString();
  }

  QWidget below_;
  OVLossMarksView view_{&below_};
  bool isTaken_ = false;
};

}  // namespace

TEST_F(OVLossMarksViewTest, DrawsEachMarkOverWhateverLiesBelow) {
  const QColor paper(40, 80, 120);
  const QImage expected = drawnPicture(view_.size(), 1.0, paper, [&](QPainter& painter) {
    for (const OVLossMark& mark : twoMarks()) {
      drawLossMark(painter, view_.size(), mark, 1000);
    }
  });
  QImage screen = makePicture(view_.size(), 1.0, paper);
  EXPECT_NE(screen, expected);
  view_.render(&screen, QPoint(), QRegion(), QWidget::RenderFlags());
  EXPECT_EQ(screen, expected);
}

TEST_F(OVLossMarksViewTest, RedrawsOnlyForAnotherMarkOrLength) {
  below_.show();
  QCoreApplication::processEvents();
  support::PaintCounter counter(&view_);
  view_.setMarks(twoMarks(), "another sum");
  view_.setLengthInFrames(1000);
  QCoreApplication::processEvents();
  EXPECT_EQ(counter.paints, 0);
  view_.setLengthInFrames(2000);
  QCoreApplication::processEvents();
  EXPECT_EQ(counter.paints, 1);
  view_.setMarks({}, {});
  QCoreApplication::processEvents();
  EXPECT_EQ(counter.paints, 2);
}

TEST_F(OVLossMarksViewTest, LetsTheMouseThroughAndNamesTheLossUnderThePointer) {
  EXPECT_TRUE(view_.testAttribute(Qt::WA_TransparentForMouseEvents));
  below_.show();
  EXPECT_EQ(tooltipAt({60, 2}), "0.3 s were lost at 12:31");
  EXPECT_TRUE(isTaken_);
  EXPECT_EQ(tooltipAt({152, 5}), "70.0 s were lost at 45:00");
  EXPECT_EQ(tooltipAt({100, 2}), "");
  EXPECT_EQ(tooltipAt({60, 30}), "");
  view_.hide();
  EXPECT_EQ(tooltipAt({60, 2}), "");
}

TEST_F(OVLossMarksViewTest, LossesSideBySideAreALineEachAndNeverTooMany) {
  std::vector<OVLossMark> many;
  for (std::uint64_t i = 0; i < 100; ++i) {
    many.push_back({.atFrame = 500 + i / 20, .frames = 1, .text = QString::number(i)});
  }
  view_.setMarks(many, {});
  EXPECT_EQ(view_.textAt({102, 1}), "0\n1\n2\n3\n4");
}

TEST_F(OVLossMarksViewTest, ReadsTheSumOutToAssistiveTechnology) {
  auto* const accessible = QAccessible::queryAccessibleInterface(&view_);
  EXPECT_EQ(accessible->text(QAccessible::Name), "Lost sound");
  EXPECT_EQ(accessible->text(QAccessible::Value), "Lost in this recording: 70.3 s, first at 12:31");
  EXPECT_EQ(accessible->role(), QAccessible::Indicator);
}
