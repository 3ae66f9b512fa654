#include "controls/OVNoticeView.h"

#include <gtest/gtest.h>
#include <QAccessible>
#include <QFontMetrics>
#include <QGridLayout>
#include <QtTest>

#include "platform/views/ViewDrawing.h"
#include "support/MainLoop.h"
#include "support/PaintCounter.h"
#include "support/Pixels.h"
#include "support/ViewOnScreen.h"
#include "support/fakes/RecordingAnnouncer.h"

namespace {

const QColor kBelow(41, 111, 125);  // the waveform

class OVNoticeViewTest : public testing::Test {
 protected:
  OVNoticeViewTest() {
    QPalette paper;
    paper.setColor(QPalette::Window, kBelow);
    window_.setPalette(paper);
    window_.resize(400, 60);
    view_->setGeometry(0, 30, 400, OVNoticeView::kHeight);
    window_.show();
  }

  /// Lets the running fade end.
  void endFade() {
    for (int i = 0; i < OVNoticeView::kFadeFrames && view_->isFading(); ++i) {
      view_->fade();
    }
  }

  [[nodiscard]] QColor pixel(QPoint place) {
    return window_.grab(view_->geometry()).toImage().pixelColor(place);
  }

  /// The lightest pixel of the panel: a letter.
  [[nodiscard]] int lightest() {
    const QImage shown = window_.grab(view_->geometry()).toImage();
    int green = 0;
    for (int y = 0; y < shown.height(); ++y) {
      for (int x = 0; x < view_->panel().width(); ++x) {
        green = std::max(green, shown.pixelColor(x, y).green());
      }
    }
    return green;
  }

  support::RecordingAnnouncer announcer_;
  QWidget window_;
  OVNoticeView* view_ = new OVNoticeView(&window_);
};

}  // namespace

TEST_F(OVNoticeViewTest, IsHiddenAtFirst) {
  EXPECT_FALSE(view_->isVisible());
  EXPECT_EQ(view_->opacity(), 0.0);
  EXPECT_FALSE(view_->isFading());
  EXPECT_TRUE(view_->panel().isEmpty());
}

TEST_F(OVNoticeViewTest, ATextFadesInOnAPanelAsWideAsItsWords) {
  view_->setText("No microphone");
  EXPECT_TRUE(view_->isVisible());
  EXPECT_TRUE(view_->isFading());
  endFade();
  EXPECT_EQ(view_->opacity(), 1.0);
  EXPECT_FALSE(view_->isFading());
  const QRect panel = view_->panel();
  EXPECT_EQ(panel.left(), 0);
  EXPECT_EQ(panel.height(), OVNoticeView::kHeight);
  const QFont font = platform::viewFont(11);
  EXPECT_EQ(panel.width(), QFontMetrics(font).horizontalAdvance("No microphone") + 20);
}

TEST_F(OVNoticeViewTest, ThePanelHidesWhatLiesBelowAndLeavesTheRestAlone) {
  view_->setText("No microphone");
  endFade();
  const QColor ground = blended(kBelow, QColor(36, 50, 69), 230.0 / 255.0);
  const QColor expected = blended(ground, Qt::white, 0.1);
  EXPECT_LE(colorDistance(pixel({view_->panel().width() / 2, 1}), expected), 2);
  EXPECT_EQ(pixel({0, 0}), kBelow) << "a round corner";
  EXPECT_EQ(pixel({view_->panel().width() + 1, 10}), kBelow);
  EXPECT_GT(lightest(), 170) << "the words";
}

TEST_F(OVNoticeViewTest, LooksTheSameAt2xInMorePixels) {
  QWidget holder;
  auto& view = *new support::ViewOnScreen<OVNoticeView>;
  view.setParent(&holder);
  view.ratio = 2;
  view.resize(200, OVNoticeView::kHeight);
  view.setText("No microphone");  // not on the screen: without a fade
  ASSERT_EQ(view.opacity(), 1.0);
  QImage picture = makePicture(view.size(), 2.0, kBelow);
  view.render(&picture, QPoint(), QRegion(), QWidget::RenderFlags());
  const QColor ground = blended(kBelow, QColor(36, 50, 69), 230.0 / 255.0);
  EXPECT_LE(
      colorDistance(picture.pixelColor(view.panel().width(), 2), blended(ground, Qt::white, 0.1)),
      2);
  EXPECT_EQ(picture.pixelColor(2 * view.panel().width() + 1, 20), kBelow);
}

TEST_F(OVNoticeViewTest, AFadeTakesFewFramesAndEndsItsTimer) {
  view_->setText("No microphone");
  endFade();
  view_->setText("");
  EXPECT_EQ(view_->text(), "");
  EXPECT_TRUE(view_->isVisible()) << "the words fade";
  EXPECT_GT(view_->panel().width(), 0);
  const int before = lightest();
  view_->fade();
  view_->fade();
  EXPECT_LT(lightest(), before);
  endFade();
  EXPECT_FALSE(view_->isVisible());
  EXPECT_FALSE(view_->isFading());
  EXPECT_TRUE(view_->panel().isEmpty());
  view_->fade();
  EXPECT_EQ(view_->opacity(), 0.0);
}

TEST_F(OVNoticeViewTest, ItsOwnTimerShowsAndHidesItAndThenRestsWithoutARedraw) {
  view_->setText("No microphone");
  ASSERT_TRUE(runMainLoopUntil([this] { return view_->opacity() == 1.0; }));
  EXPECT_FALSE(view_->isFading());
  view_->setText("");
  ASSERT_TRUE(runMainLoopUntil([this] { return !view_->isVisible(); }));
  EXPECT_FALSE(view_->isFading());
}

TEST_F(OVNoticeViewTest, AnotherTextTakesThePlaceAtOnce) {
  view_->setText("No microphone");
  endFade();
  view_->setText("Nothing is coming in");
  EXPECT_EQ(view_->opacity(), 1.0);
  EXPECT_FALSE(view_->isFading());
  EXPECT_EQ(view_->accessibleName(), "Nothing is coming in");
}

TEST_F(OVNoticeViewTest, ATextThatComesWhileTheFormerFadesTurnsTheFadeRound) {
  view_->setText("No microphone");
  endFade();
  view_->setText("");
  view_->fade();
  view_->setText("Nothing is coming in");
  const double faded = view_->opacity();
  view_->fade();
  EXPECT_GT(view_->opacity(), faded);
  endFade();
  EXPECT_EQ(view_->opacity(), 1.0);
}

TEST_F(OVNoticeViewTest, TheSameTextAgainRedrawsNothing) {
  view_->setText("No microphone");
  endFade();
  QCoreApplication::processEvents();
  support::PaintCounter counter(view_);
  view_->setText("No microphone");
  QCoreApplication::processEvents();
  EXPECT_EQ(counter.paints, 0);
}

TEST_F(OVNoticeViewTest, ALongTextIsElidedAndReadOutWhole) {
  const QString text = "Recording from " + QString(300, QLatin1Char('x'));
  view_->setText(text);
  endFade();
  EXPECT_LE(view_->panel().right(), view_->width() - 1);
  EXPECT_GT(view_->panel().width(), view_->width() - 20) << "as much of it as there is room for";
  EXPECT_EQ(view_->accessibleName(), text);
  view_->resize(30, OVNoticeView::kHeight);
  EXPECT_LE(view_->panel().right(), 29);
}

TEST_F(OVNoticeViewTest, MarkupIsShownAsItIs) {
  view_->setText("Recording from <b>Mic</b> & Co");
  endFade();
  const QFont font = platform::viewFont(11);
  EXPECT_EQ(view_->panel().width(),
            QFontMetrics(font).horizontalAdvance("Recording from <b>Mic</b> & Co") + 20);
}

TEST_F(OVNoticeViewTest, AWindowThatIsNotOnTheScreenSeesNoFade) {
  window_.hide();
  view_->setText("No microphone");
  EXPECT_FALSE(view_->isFading());
  window_.show();
  EXPECT_TRUE(view_->isVisible());
  EXPECT_EQ(view_->opacity(), 1.0);
  window_.hide();
  view_->setText("");
  EXPECT_FALSE(view_->isFading());
  window_.show();
  EXPECT_FALSE(view_->isVisible());
}

TEST_F(OVNoticeViewTest, LetsTheMouseThrough) {
  EXPECT_TRUE(view_->testAttribute(Qt::WA_TransparentForMouseEvents));
}

TEST_F(OVNoticeViewTest, ItsTextIsItsNameAndOnlyNewsIsAnnounced) {
  view_->setText("No microphone");
  EXPECT_TRUE(announcer_.texts.empty());
  view_->setText("Nothing is coming in", true);
  EXPECT_EQ(announcer_.texts, std::vector<std::string>{"Nothing is coming in"});
  EXPECT_EQ(announcer_.last, view_);
  auto* const accessible = QAccessible::queryAccessibleInterface(view_);
  EXPECT_EQ(accessible->role(), platform::kAnnouncerRole);
  EXPECT_EQ(accessible->text(QAccessible::Name), "Nothing is coming in");
  view_->setText("", true);
  EXPECT_EQ(announcer_.texts.size(), 1U);
  endFade();
  EXPECT_EQ(accessible->text(QAccessible::Name), "");
}

TEST_F(OVNoticeViewTest, NothingElseMovesWhenItComesAndGoes) {
  QWidget holder;
  auto* const grid = new QGridLayout(&holder);
  auto* const beside = new QWidget(&holder);
  beside->setFixedSize(100, 30);
  auto* const notice = new OVNoticeView(&holder);
  grid->addWidget(notice, 0, 0);
  grid->addWidget(beside, 0, 1);
  grid->setColumnStretch(0, 1);
  holder.resize(400, 50);
  holder.show();
  const QRect before = beside->geometry();
  notice->setText("Recording from " + QString(300, QLatin1Char('x')));
  QCoreApplication::processEvents();
  EXPECT_EQ(beside->geometry(), before);
  EXPECT_LT(notice->geometry().right(), beside->geometry().left());
  EXPECT_EQ(holder.minimumSizeHint().width(), grid->minimumSize().width());
  EXPECT_LT(holder.minimumSizeHint().width(), 150) << "a long text asks for no room";
}
