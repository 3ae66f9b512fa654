#include "controls/OVSpectrumStrip.h"

#include <gtest/gtest.h>
#include <QGuiApplication>
#include <QProxyStyle>
#include <QScreen>
#include <QVBoxLayout>

#include "support/MainLoop.h"

namespace {

constexpr int kBarHeight = 58;
constexpr int kStripHeight = OVSpectrumStrip::kHeight;

/// Counts how often it is painted at a different size than before.
class CountingView : public QWidget {
 public:
  int renderings = 0;

 protected:
  void paintEvent(QPaintEvent* /*event*/) override {
    renderings += size() != rendered_ ? 1 : 0;
    rendered_ = size();
  }

 private:
  QSize rendered_;
};

/// A window like the recorder's: a view that takes the remaining height, a bar, and the strip.
class Window : public QMainWindow {
 public:
  Window() {
    auto* const content = new QWidget;
    content->setMinimumSize(300, 240);
    auto* const layout = new QVBoxLayout(content);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(view, 1);
    layout->addWidget(bar);
    layout->addWidget(strip);
    bar->setFixedHeight(kBarHeight);
    setCentralWidget(content);
    reveal = std::make_unique<OVSpectrumStrip>(this, strip);
  }

  CountingView* view = new CountingView;
  QWidget* bar = new QWidget;
  QWidget* strip = new QWidget;
  std::unique_ptr<OVSpectrumStrip> reveal;
};

class OVSpectrumStripTest : public testing::Test {
 protected:
  OVSpectrumStripTest() { open({50, 60, 400, 330}); }

  void open(const QRect& frame) {
    window_.setGeometry(frame);
    window_.show();
    QCoreApplication::processEvents();
    ASSERT_EQ(window_.geometry(), frame);
  }

  void arrive() {
    ASSERT_TRUE(runMainLoopUntil([&] { return !window_.reveal->isMoving(); }));
    QCoreApplication::processEvents();
  }

  void setShown(bool shown) {
    window_.reveal->setShown(shown);
    arrive();
  }

  void reachOnTheWay(int height) {
    ASSERT_TRUE(runMainLoopUntil([&] {
      const bool past = window_.reveal->isShown() ? window_.strip->height() >= height
                                                  : window_.strip->height() <= height;
      return past || !window_.reveal->isMoving();
    }));
  }

  /// The part of the screen that a window's content can fill, without its decorations.
  QRect room() const {
    const QRect outer = window_.frameGeometry();
    const QRect inner = window_.geometry();
    return QGuiApplication::primaryScreen()->availableGeometry().adjusted(
        inner.left() - outer.left(), inner.top() - outer.top(), inner.right() - outer.right(),
        inner.bottom() - outer.bottom());
  }

  /// Fills the screen and returns the window's geometry there.
  QRect maximise() {
    window_.showMaximized();
    EXPECT_TRUE(runMainLoopUntil([&] { return window_.height() > 600; }));
    return window_.geometry();
  }

  /// Leaves the maximised or full-screen state.
  void expectToReturnTo(const QRect& frame) {
    window_.showNormal();
    EXPECT_TRUE(runMainLoopUntil([&] { return window_.geometry() == frame; }));
    QCoreApplication::processEvents();
    EXPECT_EQ(window_.geometry(), frame);
  }

  Window window_;
};

}  // namespace

TEST_F(OVSpectrumStripTest, IsHiddenAtFirst) {
  EXPECT_FALSE(window_.reveal->isShown());
  EXPECT_FALSE(window_.strip->isVisible());
  EXPECT_EQ(window_.view->height(), 330 - kBarHeight);
}

TEST_F(OVSpectrumStripTest, ShowingGrowsTheWindowDownwardByTwoHundredPoints) {
  setShown(true);
  EXPECT_EQ(window_.geometry(), QRect(50, 60, 400, 530));
  EXPECT_TRUE(window_.strip->isVisible());
  EXPECT_EQ(window_.strip->geometry(), QRect(0, 330, 400, kStripHeight));
  EXPECT_EQ(window_.view->height(), 330 - kBarHeight);
}

TEST_F(OVSpectrumStripTest, ShowingAndHidingGivesBackTheFormerFrame) {
  setShown(true);
  setShown(false);
  EXPECT_EQ(window_.geometry(), QRect(50, 60, 400, 330));
  EXPECT_FALSE(window_.strip->isVisible());
  EXPECT_EQ(window_.view->height(), 330 - kBarHeight);
}

TEST_F(OVSpectrumStripTest, StripAndWindowMoveTogetherSoThatTheViewAboveIsNotRenderedAnew) {
  window_.view->renderings = 0;
  window_.reveal->setShown(true);
  ASSERT_TRUE(window_.reveal->isMoving());
  EXPECT_LT(window_.height(), 530);
  ASSERT_TRUE(runMainLoopUntil([&] {
    EXPECT_EQ(window_.height(), 330 + window_.strip->height());
    return !window_.reveal->isMoving();
  }));
  setShown(false);
  EXPECT_EQ(window_.view->renderings, 0);
}

TEST_F(OVSpectrumStripTest, TogglingQuicklyTurnsRoundAndEndsAtTheFormerFrame) {
  window_.reveal->setShown(true);
  reachOnTheWay(60);
  window_.reveal->setShown(false);
  EXPECT_GT(window_.height(), 330);
  reachOnTheWay(30);
  window_.reveal->setShown(true);
  window_.reveal->setShown(false);
  arrive();
  EXPECT_EQ(window_.geometry(), QRect(50, 60, 400, 330));
  EXPECT_FALSE(window_.strip->isVisible());
}

TEST_F(OVSpectrumStripTest, TogglingQuicklyThreeTimesEndsShown) {
  for (const bool shown : {true, false, true}) {
    window_.reveal->setShown(shown);
    reachOnTheWay(100);
  }
  arrive();
  EXPECT_EQ(window_.geometry(), QRect(50, 60, 400, 530));
  setShown(false);
  EXPECT_EQ(window_.geometry(), QRect(50, 60, 400, 330));
}

TEST_F(OVSpectrumStripTest, ShowingWhatIsShownDoesNothing) {
  setShown(true);
  window_.reveal->setShown(true);
  EXPECT_FALSE(window_.reveal->isMoving());
  EXPECT_EQ(window_.height(), 530);
}

TEST_F(OVSpectrumStripTest, TheMinimumHeightIsTwoHundredPointsMoreWhileShown) {
  setShown(true);
  window_.resize(400, 100);
  EXPECT_EQ(window_.height(), 440);
  EXPECT_EQ(window_.strip->height(), kStripHeight);
  EXPECT_EQ(window_.view->height(), 240 - kBarHeight);
  setShown(false);
  EXPECT_EQ(window_.height(), 240);
  window_.resize(400, 100);
  EXPECT_EQ(window_.height(), 240);
}

TEST_F(OVSpectrumStripTest, AWindowAtItsMinimumComesBackToIt) {
  window_.resize(400, 240);
  setShown(true);
  EXPECT_EQ(window_.height(), 440);
  setShown(false);
  EXPECT_EQ(window_.geometry(), QRect(50, 60, 400, 240));
}

TEST_F(OVSpectrumStripTest, AWindowMovedAndResizedWhileShownShrinksWhereItIs) {
  setShown(true);
  window_.setGeometry(80, 20, 500, 600);
  setShown(false);
  EXPECT_EQ(window_.geometry(), QRect(80, 20, 500, 400));
}

TEST_F(OVSpectrumStripTest, AtTheBottomOfTheScreenTheWindowMovesUpAndComesBack) {
  const QRect frame(50, room().bottom() + 1 - 360, 400, 330);  // 30 points of room below
  open(frame);
  setShown(true);
  EXPECT_EQ(window_.geometry(), QRect(50, frame.top() - 170, 400, 530));
  EXPECT_EQ(window_.geometry().bottom(), room().bottom());
  EXPECT_EQ(window_.view->height(), 330 - kBarHeight);
  setShown(false);
  EXPECT_EQ(window_.geometry(), frame);
}

TEST_F(OVSpectrumStripTest, AWindowThatMovedUpAndWasThenMovedStaysWhereItIs) {
  open({50, room().bottom() + 1 - 330, 400, 330});
  setShown(true);
  window_.move(70, 10);
  const QPoint moved = window_.geometry().topLeft();
  setShown(false);
  EXPECT_EQ(window_.geometry(), QRect(moved, QSize(400, 330)));
}

TEST_F(OVSpectrumStripTest, WithoutRoomOnTheScreenTheRestComesOffTheViewAbove) {
  const int height = room().height() - 120;
  open({50, room().top() + 20, 400, height});
  setShown(true);
  EXPECT_EQ(window_.geometry(), QRect(50, room().top(), 400, room().height()));
  EXPECT_EQ(window_.strip->height(), kStripHeight);
  EXPECT_EQ(window_.view->height(), room().height() - kStripHeight - kBarHeight);
  setShown(false);
  EXPECT_EQ(window_.geometry(), QRect(50, room().top() + 20, 400, height));
}

TEST_F(OVSpectrumStripTest, AWindowLargerThanTheScreenKeepsItsSize) {
  const QRect frame(50, room().top(), 400, room().height() + 100);
  open(frame);
  setShown(true);
  EXPECT_EQ(window_.geometry(), frame);
  EXPECT_EQ(window_.strip->height(), kStripHeight);
  setShown(false);
  EXPECT_EQ(window_.geometry(), frame);
}

TEST_F(OVSpectrumStripTest, AMaximisedWindowKeepsItsSizeAndGivesTheStripPartOfTheView) {
  const QRect maximised = maximise();
  const int viewHeight = window_.view->height();
  window_.reveal->setShown(true);
  QCoreApplication::processEvents();
  EXPECT_FALSE(window_.reveal->isMoving());
  EXPECT_EQ(window_.geometry(), maximised);
  EXPECT_EQ(window_.strip->height(), kStripHeight);
  EXPECT_EQ(window_.view->height(), viewHeight - kStripHeight);
  setShown(false);
  EXPECT_EQ(window_.geometry(), maximised);
  EXPECT_EQ(window_.view->height(), viewHeight);
}

TEST_F(OVSpectrumStripTest, AFullScreenWindowKeepsItsSizeToo) {
  window_.showFullScreen();
  ASSERT_TRUE(runMainLoopUntil([&] { return window_.width() > 400; }));
  const QRect full = window_.geometry();
  setShown(true);
  EXPECT_EQ(window_.geometry(), full);
  EXPECT_TRUE(window_.strip->isVisible());
}

TEST_F(OVSpectrumStripTest, ShownWhileMaximisedTheWindowComesBackHigher) {
  maximise();
  setShown(true);
  expectToReturnTo(QRect(50, 60, 400, 530));
  EXPECT_EQ(window_.view->height(), 330 - kBarHeight);
  setShown(false);
  EXPECT_EQ(window_.geometry(), QRect(50, 60, 400, 330));
}

TEST_F(OVSpectrumStripTest, ShownWhileMaximisedTheWindowComesBackWhereTheDesktopPutsIt) {
  maximise();
  setShown(true);
  window_.showNormal();
  // As when its title bar is dragged down.
  window_.setGeometry(QRect(QPoint(90, 80), window_.size()));
  EXPECT_TRUE(runMainLoopUntil([&] { return window_.height() == 530; }));
  EXPECT_EQ(window_.geometry(), QRect(90, 80, 400, 530));
  setShown(false);
  EXPECT_EQ(window_.geometry(), QRect(90, 80, 400, 330));
}

TEST_F(OVSpectrumStripTest, HiddenWhileMaximisedTheWindowComesBackAsItWasBefore) {
  setShown(true);
  maximise();
  EXPECT_TRUE(window_.strip->isVisible());
  setShown(false);
  expectToReturnTo(QRect(50, 60, 400, 330));
  EXPECT_EQ(window_.view->height(), 330 - kBarHeight);
}

TEST_F(OVSpectrumStripTest, ToggledTwiceWhileMaximisedTheWindowComesBackUnchanged) {
  maximise();
  setShown(true);
  setShown(false);
  expectToReturnTo(QRect(50, 60, 400, 330));
}

TEST_F(OVSpectrumStripTest, MaximisedOnItsWayTheStripArrivesAndTheWindowComesBackWhereItWasGoing) {
  window_.reveal->setShown(true);
  reachOnTheWay(40);
  window_.showMaximized();
  EXPECT_FALSE(window_.reveal->isMoving());
  EXPECT_EQ(window_.strip->maximumHeight(), kStripHeight);
  expectToReturnTo(QRect(50, 60, 400, 530));
}

TEST_F(OVSpectrumStripTest, AWindowThatIsNotVisibleChangesAtOnce) {
  window_.hide();
  window_.reveal->setShown(true);
  EXPECT_FALSE(window_.reveal->isMoving());
  EXPECT_EQ(window_.height(), 530);
  window_.reveal->setShown(false);
  EXPECT_EQ(window_.height(), 330);
}

TEST_F(OVSpectrumStripTest, WhereAnimationsAreNotWantedItChangesAtOnce) {
  class Still : public QProxyStyle {
   public:
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* data) const override {
      return hint == SH_Widget_Animation_Duration
                 ? 0
                 : QProxyStyle::styleHint(hint, option, widget, data);
    }
  };
  Still still;
  window_.setStyle(&still);
  window_.reveal->setShown(true);
  EXPECT_FALSE(window_.reveal->isMoving());
  EXPECT_EQ(window_.geometry(), QRect(50, 60, 400, 530));
  window_.setStyle(nullptr);
}

TEST_F(OVSpectrumStripTest, MayGoWhileTheWindowIsOnItsWay) {
  window_.reveal->setShown(true);
  ASSERT_TRUE(window_.reveal->isMoving());
  window_.reveal.reset();
  QCoreApplication::processEvents();
  EXPECT_LT(window_.height(), 530);
}

TEST_F(OVSpectrumStripTest, OutlivesItsWindow) {
  auto window = std::make_unique<Window>();
  auto reveal = std::move(window->reveal);
  window->show();
  reveal->setShown(true);
  window.reset();
  EXPECT_TRUE(runMainLoopUntil([&] { return !reveal->isMoving(); }));
  reveal->setShown(false);
  EXPECT_TRUE(reveal->isShown());  // nothing is left to hide
}
