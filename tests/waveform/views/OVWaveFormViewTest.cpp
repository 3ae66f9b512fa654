#include "waveform/views/OVWaveFormView.h"

#include <cmath>
#include <memory>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <QAccessible>
#include <QtTest>

#include "support/MainLoop.h"
#include "support/PaintCounter.h"
#include "support/Pixels.h"
#include "support/ViewOnScreen.h"
#include "support/fakes/FakeWaveformSummary.h"
#include "waveform/views/OVPlaybackMarkerView.h"

namespace {

class RecordingDelegate final : public OVWaveFormViewDelegate {
 public:
  struct Call {
    OVWaveFormView* view = nullptr;
    QPointF position;
    double timeLinePosition = -1.0;
  };

  void waveFormViewReceivedClick(OVWaveFormView* view, QPointF atPosition,
                                 double timeLinePosition) override {
    clicks.push_back({view, atPosition, timeLinePosition});
  }
  void waveFormViewReceivedDrag(OVWaveFormView* view, QPointF atPosition,
                                double timeLinePosition) override {
    drags.push_back({view, atPosition, timeLinePosition});
  }

  double waveFormViewTimeLinePosition(OVWaveFormView*) override { return marker; }

  std::vector<Call> clicks;
  std::vector<Call> drags;
  double marker = 0.0;
};

class OVWaveFormViewTest : public testing::Test {
 protected:
  OVWaveFormViewTest() {
    view_.resize(240, 100);
    view_.setWaveForm(summary_);
    view_.setDelegate(delegate_);
    view_.setScrollBack(true);  // the grid's offset then counts the renderings
  }

  /// Redraws the whole view; the number of renderings it took.
  double renderingsOfARedraw() {
    const double before = view_.bg_scroll_x();
    screen_ = view_.grab().toImage();
    return view_.bg_scroll_x() - before;
  }

  void press(QPointF position, Qt::MouseButton button = Qt::LeftButton) {
    QMouseEvent event(QEvent::MouseButtonPress, position, view_.mapToGlobal(position), button,
                      button, Qt::NoModifier);
    QCoreApplication::sendEvent(&view_, &event);
  }

  void move(QPointF position, Qt::MouseButtons buttons = Qt::LeftButton) {
    QMouseEvent event(QEvent::MouseMove, position, view_.mapToGlobal(position), Qt::NoButton,
                      buttons, Qt::NoModifier);
    QCoreApplication::sendEvent(&view_, &event);
  }

  [[nodiscard]] QImage pictureWithoutWaveform() {
    const QSize size = view_.size();
    return drawnPicture(size, 1.0, Qt::black, [&](QPainter& painter) {
      OVWaveFormDrawing::drawGradient(painter, size);
      OVWaveFormDrawing::drawGrid(painter, size, view_.bg_scroll_x());
    });
  }

  std::shared_ptr<FakeWaveformSummary> summary_ =
      std::make_shared<FakeWaveformSummary>(std::vector<float>(64, 0.5F));
  std::shared_ptr<RecordingDelegate> delegate_ = std::make_shared<RecordingDelegate>();
  support::ViewOnScreen<OVWaveFormView> view_;
  QImage screen_;
};

}  // namespace

TEST_F(OVWaveFormViewTest, BeginsWithNothingRenderedAndARenderingDue) {
  const OVWaveFormView fresh;
  EXPECT_FALSE(fresh.scrollBack());
  EXPECT_EQ(fresh.prevBufsize(), 0U);
  EXPECT_EQ(fresh.prevImageSize(), QSizeF(0.0, 0.0));
  EXPECT_TRUE(fresh.shouldRedrawWaveform());
  EXPECT_FALSE(fresh.overrideRegenerationCheck());
  EXPECT_TRUE(fresh.isEnabled());
  EXPECT_TRUE(fresh.image().isNull());
  EXPECT_EQ(fresh.waveForm(), nullptr);
  EXPECT_TRUE(fresh.testAttribute(Qt::WA_OpaquePaintEvent));
}

TEST_F(OVWaveFormViewTest, EmptySummaryRendersGradientAndGridOnly) {
  summary_->setElements({});
  EXPECT_EQ(renderingsOfARedraw(), 1.0);
  EXPECT_EQ(view_.image(), pictureWithoutWaveform());
  EXPECT_EQ(view_.prevBufsize(), 0U);
}

TEST_F(OVWaveFormViewTest, NoSummaryRendersGradientAndGridOnly) {
  renderingsOfARedraw();
  ASSERT_NE(view_.image(), pictureWithoutWaveform());
  view_.setWaveForm(nullptr);
  EXPECT_EQ(renderingsOfARedraw(), 1.0) << "the number of elements went from 64 to 0";
  EXPECT_EQ(view_.image(), pictureWithoutWaveform());
}

TEST_F(OVWaveFormViewTest, ResizingForcesARenderingAtTheNewSize) {
  EXPECT_EQ(renderingsOfARedraw(), 1.0);
  EXPECT_EQ(view_.image().size(), QSize(240, 100));
  view_.resize(300, 120);
  EXPECT_EQ(renderingsOfARedraw(), 1.0);
  EXPECT_EQ(view_.image().size(), QSize(300, 120));
  EXPECT_EQ(view_.prevImageSize(), QSizeF(300.0, 120.0));
  EXPECT_EQ(renderingsOfARedraw(), 0.0);
}

TEST_F(OVWaveFormViewTest, AnotherPixelRatioForcesARenderingInDevicePixels) {
  renderingsOfARedraw();
  view_.ratio = 2;
  EXPECT_EQ(renderingsOfARedraw(), 1.0);
  EXPECT_EQ(view_.image().size(), QSize(480, 200));
  EXPECT_EQ(view_.image().devicePixelRatio(), 2.0);
  EXPECT_EQ(view_.image().deviceIndependentSize(), QSizeF(240.0, 100.0));
  EXPECT_EQ(renderingsOfARedraw(), 0.0);
  view_.ratio = 1;
  EXPECT_EQ(renderingsOfARedraw(), 1.0);
  EXPECT_EQ(view_.image().size(), QSize(240, 100));
}

// A partly covered pixel must not mix with what was in the bitmap before.
TEST_F(OVWaveFormViewTest, EveryPixelToTheLastRowAndColumnIsBackgroundAtEveryScale) {
  const QColor darkest(35, 37, 62);   // the upper end of the gradient
  const QColor lightest(37, 82, 91);  // the grid
  for (const double scale : {1.0, 1.25, 1.5, 1.75, 2.0}) {
    for (const QSize size : {QSize(813, 271), QSize(641, 273), QSize(239, 101), QSize(7, 5)}) {
      view_.ratio = scale;
      view_.resize(size);
      summary_->setElements({});
      renderingsOfARedraw();
      const QImage picture = view_.image();
      ASSERT_EQ(picture.width(), static_cast<int>(std::ceil(size.width() * scale)));
      ASSERT_EQ(picture.height(), static_cast<int>(std::ceil(size.height() * scale)));
      for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
          const bool isEdge = x == picture.width() - 1 || y == picture.height() - 1;
          const QColor pixel = picture.pixelColor(x, y);
          ASSERT_TRUE(!isEdge ||
                      (pixel.alpha() == 255 && pixel.blue() >= darkest.blue() - 1 &&
                       pixel.green() >= darkest.green() - 1 && pixel.blue() <= lightest.blue() + 1))
              << x << ", " << y << " of " << size.width() << " x " << size.height() << " at "
              << scale << ": " << pixel.name().toStdString();
        }
      }
    }
  }
}

TEST_F(OVWaveFormViewTest, RedrawsWithoutAChangeCopyTheCachedPicture) {
  renderingsOfARedraw();
  const QImage rendered = view_.image();
  EXPECT_EQ(renderingsOfARedraw(), 0.0);
  EXPECT_EQ(summary_->copiesTaken(), 1);
  EXPECT_EQ(screen_.convertToFormat(rendered.format()), rendered);
}

TEST_F(OVWaveFormViewTest, AChangedNumberOfElementsForcesARendering) {
  renderingsOfARedraw();
  summary_->setElements(std::vector<float>(65, 0.5F));
  EXPECT_EQ(renderingsOfARedraw(), 1.0);
  EXPECT_EQ(view_.prevBufsize(), 65U);
}

TEST_F(OVWaveFormViewTest, ElementsThatChangeInValueWaitUntilARenderingIsAskedFor) {
  renderingsOfARedraw();
  const QImage before = view_.image();
  summary_->setElements(std::vector<float>(64, 0.9F));
  EXPECT_EQ(renderingsOfARedraw(), 0.0);
  EXPECT_EQ(view_.image(), before);
  view_.setShouldRedrawWaveform(true);
  EXPECT_EQ(renderingsOfARedraw(), 1.0);
  EXPECT_FALSE(view_.shouldRedrawWaveform());
  EXPECT_NE(view_.image(), before);
}

TEST_F(OVWaveFormViewTest, AnotherThreadMayAskForARenderingAndExchangeTheSummary) {
  renderingsOfARedraw();
  const auto other = std::make_shared<FakeWaveformSummary>(std::vector<float>(64, 0.1F));
  std::thread generation([&] {
    view_.setWaveForm(other);
    view_.setShouldRedrawWaveform(true);
  });
  renderingsOfARedraw();
  generation.join();
  renderingsOfARedraw();
  EXPECT_FALSE(view_.shouldRedrawWaveform());
  EXPECT_EQ(view_.waveForm(), other);
}

TEST_F(OVWaveFormViewTest, KeepsTheLastPictureWhileTheSummaryRegenerates) {
  renderingsOfARedraw();
  const QImage before = view_.image();
  summary_->setRegenerating(true);
  summary_->setElements(std::vector<float>(10, 0.9F));
  view_.setShouldRedrawWaveform(true);
  EXPECT_EQ(renderingsOfARedraw(), 0.0);
  EXPECT_EQ(screen_.convertToFormat(before.format()), before);
  EXPECT_TRUE(view_.shouldRedrawWaveform()) << "still due when the summary is done";
  summary_->setRegenerating(false);
  EXPECT_EQ(renderingsOfARedraw(), 1.0);
}

TEST_F(OVWaveFormViewTest, RendersDuringARegenerationWhenToldTo) {
  renderingsOfARedraw();
  summary_->setRegenerating(true);
  summary_->setElements(std::vector<float>(10, 0.9F));
  view_.setOverrideRegenerationCheck(true);
  EXPECT_EQ(renderingsOfARedraw(), 1.0);
  EXPECT_EQ(view_.prevBufsize(), 10U);
}

TEST_F(OVWaveFormViewTest, AFirstRedrawDuringARegenerationLeavesNoPixelUnpainted) {
  summary_->setRegenerating(true);
  EXPECT_EQ(renderingsOfARedraw(), 0.0);
  EXPECT_TRUE(view_.image().isNull());
  EXPECT_LE(colorDistance(screen_.pixelColor(120, 99), QColor(36, 54, 71)), 1);
  EXPECT_LE(colorDistance(screen_.pixelColor(120, 0), QColor(35, 37, 62)), 1);
}

TEST_F(OVWaveFormViewTest, TheGridStandsStillUnlessItScrollsBack) {
  view_.setScrollBack(false);
  for (int i = 0; i < 3; ++i) {
    view_.setShouldRedrawWaveform(true);
    view_.grab();
  }
  EXPECT_EQ(view_.bg_scroll_x(), 0.0);
}

TEST_F(OVWaveFormViewTest, TheGridRepeatsEvery24Renderings) {
  summary_->setElements({});
  renderingsOfARedraw();
  const QImage first = view_.image();
  for (int i = 1; i <= 24; ++i) {
    view_.setShouldRedrawWaveform(true);
    view_.grab();
    EXPECT_EQ(view_.bg_scroll_x(), (i + 1) % 24);
    EXPECT_EQ(view_.image() == first, i == 24) << i;
  }
}

TEST_F(OVWaveFormViewTest, TakesElementsIntoTheSameMemoryAtEveryRendering) {
  renderingsOfARedraw();
  const float* memory = summary_->lastDestination();
  for (int i = 0; i < 3; ++i) {
    view_.setShouldRedrawWaveform(true);
    EXPECT_EQ(renderingsOfARedraw(), 1.0);
    EXPECT_EQ(summary_->lastDestination(), memory);
  }
}

TEST_F(OVWaveFormViewTest, AViewWithoutAreaDrawsNothingAndReports0) {
  view_.resize(0, 0);
  view_.setShouldRedrawWaveform(true);
  view_.grab();
  press({0.0, 0.0});
  ASSERT_EQ(delegate_->clicks.size(), 1U);
  EXPECT_EQ(delegate_->clicks[0].timeLinePosition, 0.0);
}

TEST_F(OVWaveFormViewTest, AClickIsReportedFromTheBottomLeftAndAsAFraction) {
  press({60.0, 30.0});
  ASSERT_EQ(delegate_->clicks.size(), 1U);
  EXPECT_EQ(delegate_->clicks[0].view, &view_);
  EXPECT_EQ(delegate_->clicks[0].position, QPointF(60.0, 70.0));
  EXPECT_EQ(delegate_->clicks[0].timeLinePosition, 0.25);
  EXPECT_TRUE(delegate_->drags.empty());
}

TEST_F(OVWaveFormViewTest, AClickAtTheRightEdgeReports1) {
  press({240.0, 50.0});
  ASSERT_EQ(delegate_->clicks.size(), 1U);
  EXPECT_EQ(delegate_->clicks[0].timeLinePosition, 1.0);
}

TEST_F(OVWaveFormViewTest, ADragIsReportedLikeAClick) {
  press({60.0, 30.0});
  move({120.0, 40.0});
  ASSERT_EQ(delegate_->drags.size(), 1U);
  EXPECT_EQ(delegate_->drags[0].view, &view_);
  EXPECT_EQ(delegate_->drags[0].position, QPointF(120.0, 60.0));
  EXPECT_EQ(delegate_->drags[0].timeLinePosition, 0.5);
  EXPECT_EQ(delegate_->clicks.size(), 1U);
}

TEST_F(OVWaveFormViewTest, ADragBeyondAnEdgeCountsAsTheNearestEdge) {
  press({60.0, 30.0});
  move({-50.0, 500.0});
  move({1000.0, -3.0});
  ASSERT_EQ(delegate_->drags.size(), 2U);
  EXPECT_EQ(delegate_->drags[0].position, QPointF(0.0, 0.0));
  EXPECT_EQ(delegate_->drags[0].timeLinePosition, 0.0);
  EXPECT_EQ(delegate_->drags[1].position, QPointF(240.0, 100.0));
  EXPECT_EQ(delegate_->drags[1].timeLinePosition, 1.0);
}

TEST_F(OVWaveFormViewTest, DisabledItPassesNeitherClicksNorDragsOn) {
  view_.setEnabled(false);
  press({60.0, 30.0});
  move({120.0, 40.0});
  EXPECT_TRUE(delegate_->clicks.empty());
  EXPECT_TRUE(delegate_->drags.empty());
  view_.setEnabled(true);
  press({60.0, 30.0});
  EXPECT_EQ(delegate_->clicks.size(), 1U);
}

TEST_F(OVWaveFormViewTest, OtherButtonsAndMovesWithoutAButtonAreNoInput) {
  press({60.0, 30.0}, Qt::RightButton);
  move({60.0, 30.0}, Qt::NoButton);
  move({60.0, 30.0}, Qt::RightButton);
  EXPECT_TRUE(delegate_->clicks.empty());
  EXPECT_TRUE(delegate_->drags.empty());
}

TEST_F(OVWaveFormViewTest, ADelegateThatIsGoneIsNotAsked) {
  delegate_.reset();
  press({60.0, 30.0});
  move({120.0, 40.0});
  EXPECT_TRUE(view_.delegate().expired());
}

TEST_F(OVWaveFormViewTest, ClicksReachItThroughTheMarkerLaidOverIt) {
  OVPlaybackMarkerView marker(&view_);
  marker.setGeometry(view_.rect());
  view_.show();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&view_));
  QTest::mouseClick(view_.window()->windowHandle(), Qt::LeftButton, Qt::NoModifier, {60, 30});
  ASSERT_EQ(delegate_->clicks.size(), 1U);
  EXPECT_EQ(delegate_->clicks[0].timeLinePosition, 0.25);
}

TEST_F(OVWaveFormViewTest, MovingTheMarkerDoesNotRenderTheWaveformAnew) {
  OVPlaybackMarkerView marker(&view_);
  marker.setGeometry(view_.rect());
  view_.show();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&view_));
  support::PaintCounter counter(&view_);
  ASSERT_TRUE(runMainLoopUntil([&] { return summary_->copiesTaken() == 1; }));
  for (int i = 1; i <= 10; ++i) {
    const int paintsBefore = counter.paints;
    const auto strip = [&] { return QRect(qRound(marker.position() * 240.0) - 4, 0, 8, 100); };
    marker.update(strip());
    marker.setPosition(i / 10.0);
    marker.update(strip());
    ASSERT_TRUE(runMainLoopUntil([&] { return counter.paints > paintsBefore; }));
  }
  EXPECT_EQ(summary_->copiesTaken(), 1);
  EXPECT_EQ(view_.bg_scroll_x(), 1.0);
}

TEST_F(OVWaveFormViewTest, SettingPropertiesDoesNotRedraw) {
  view_.show();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&view_));
  ASSERT_TRUE(runMainLoopUntil([&] { return summary_->copiesTaken() == 1; }));
  view_.setWaveForm(std::make_shared<FakeWaveformSummary>(std::vector<float>(3, 0.2F)));
  view_.setShouldRedrawWaveform(true);
  view_.setOverrideRegenerationCheck(true);
  QCoreApplication::processEvents();
  EXPECT_EQ(view_.prevBufsize(), 64U);
  view_.update();
  EXPECT_TRUE(runMainLoopUntil([&] { return view_.prevBufsize() == 3U; }));
}

TEST_F(OVWaveFormViewTest, APictureHandedOutStaysAsItWas) {
  renderingsOfARedraw();
  const QImage exported = view_.image();
  const QImage copy = exported.copy();
  summary_->setElements(std::vector<float>(20, 1.0F));
  EXPECT_EQ(renderingsOfARedraw(), 1.0);
  EXPECT_EQ(exported, copy);
}

TEST_F(OVWaveFormViewTest, TheTimeScaleIsNotPartOfItsOwnDrawing) {
  summary_->setElements({});
  renderingsOfARedraw();
  QImage withTimescale = view_.image();
  QPainter painter(&withTimescale);
  platform::useViewCoordinates(painter, view_.size());
  view_.drawTimescale(painter);
  painter.end();
  EXPECT_NE(withTimescale, view_.image());
}

TEST_F(OVWaveFormViewTest, IsNamedForAssistiveTechnology) {
  QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(&view_);
  ASSERT_NE(accessible, nullptr);
  EXPECT_EQ(accessible->text(QAccessible::Name), "Waveform");
  EXPECT_EQ(accessible->role(), QAccessible::Graphic);
}

TEST_F(OVWaveFormViewTest, ReadsPositionAndLengthOut) {
  const auto* const accessible = QAccessible::queryAccessibleInterface(&view_);
  EXPECT_EQ(accessible->text(QAccessible::Value), "");
  view_.setTimeLineText([] { return QStringLiteral("00:00:01.00 / 00:00:09.00"); });
  EXPECT_EQ(accessible->text(QAccessible::Value), "00:00:01.00 / 00:00:09.00");
  EXPECT_EQ(accessible->text(QAccessible::Description), "00:00:01.00 / 00:00:09.00");
  EXPECT_TRUE(view_.focusPolicy() == Qt::TabFocus);
}

namespace {

/// The waveform view of a document with its marker in the middle.
class OVWaveFormViewKeysTest : public OVWaveFormViewTest {
 protected:
  OVWaveFormViewKeysTest() { delegate_->marker = 0.5; }

  /// Where a key moves the marker to, reported as a drag; -1 when it is not reported.
  double reportedAfter(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    delegate_->drags.clear();
    QTest::keyClick(&view_, static_cast<Qt::Key>(key), modifiers);
    return delegate_->drags.size() == 1 ? delegate_->drags[0].timeLinePosition : -1.0;
  }
};

}  // namespace

TEST_F(OVWaveFormViewKeysTest, PagesMoveTheMarkerByATenthAndHomeAndEndToTheEnds) {
  EXPECT_DOUBLE_EQ(reportedAfter(Qt::Key_PageUp), 0.6);
  EXPECT_DOUBLE_EQ(reportedAfter(Qt::Key_PageDown), 0.4);
  EXPECT_DOUBLE_EQ(reportedAfter(Qt::Key_Home), 0.0);
  EXPECT_DOUBLE_EQ(reportedAfter(Qt::Key_End), 1.0);
}

TEST_F(OVWaveFormViewKeysTest, ArrowsAreReportedAsStepsByTheirModifiers) {
  using Length = OVMarkerStep::Length;
  std::vector<OVMarkerStep> steps;
  view_.setStepHandler([&](OVMarkerStep step) { steps.push_back(step); });
  const std::vector<std::pair<Qt::KeyboardModifiers, Length>> lengths{
      {Qt::NoModifier, Length::second},
      {Qt::ShiftModifier, Length::tenthOfSecond},
      {Qt::ControlModifier, Length::devicePixel},
      {Qt::KeypadModifier, Length::second}};
  for (const auto& [modifiers, length] : lengths) {
    for (const Qt::Key key : {Qt::Key_Left, Qt::Key_Right}) {
      steps.clear();
      EXPECT_EQ(reportedAfter(key, modifiers), -1.0) << "no fraction of the width";
      ASSERT_EQ(steps.size(), 1U);
      EXPECT_EQ(steps[0].length, length);
      EXPECT_EQ(steps[0].isForward, key == Qt::Key_Right);
    }
  }
}

TEST_F(OVWaveFormViewKeysTest, NoKeyMovesItPastTheEnds) {
  delegate_->marker = 0.05;
  EXPECT_EQ(reportedAfter(Qt::Key_PageDown), 0.0);
  delegate_->marker = 0.95;
  EXPECT_EQ(reportedAfter(Qt::Key_PageUp), 1.0);
}

TEST_F(OVWaveFormViewKeysTest, AKeyIsReportedAtItsPlaceInTheView) {
  static_cast<void>(reportedAfter(Qt::Key_Home));
  EXPECT_EQ(delegate_->drags.at(0).view, &view_);
  EXPECT_EQ(delegate_->drags.at(0).position, QPointF(0.0, 50.0));
  EXPECT_TRUE(delegate_->clicks.empty());
}

TEST_F(OVWaveFormViewKeysTest, OtherKeysAndThoseOfADisabledViewGoOnToTheWindow) {
  for (const int key : {Qt::Key_R, Qt::Key_Return, Qt::Key_Space, Qt::Key_Up}) {
    QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
    QCoreApplication::sendEvent(&view_, &event);
    EXPECT_FALSE(event.isAccepted()) << key;
  }
  int steps = 0;
  view_.setStepHandler([&](OVMarkerStep) { ++steps; });
  const std::vector<std::pair<Qt::Key, Qt::KeyboardModifiers>> commands{
      {Qt::Key_Left, Qt::AltModifier},
      {Qt::Key_Right, Qt::ControlModifier | Qt::ShiftModifier},
      {Qt::Key_Right, Qt::MetaModifier},
      {Qt::Key_Home, Qt::ControlModifier}};
  for (const auto& [key, modifiers] : commands) {
    QKeyEvent command(QEvent::KeyPress, key, modifiers);
    QCoreApplication::sendEvent(&view_, &command);
    EXPECT_FALSE(command.isAccepted()) << key;
  }
  view_.setEnabled(false);
  EXPECT_EQ(reportedAfter(Qt::Key_Home), -1.0);
  QTest::keyClick(&view_, Qt::Key_Left);
  EXPECT_EQ(steps, 0);
}

TEST_F(OVWaveFormViewKeysTest, WithoutAStepHandlerArrowsGoOnToTheWindow) {
  QKeyEvent event(QEvent::KeyPress, Qt::Key_Left, Qt::NoModifier);
  QCoreApplication::sendEvent(&view_, &event);
  EXPECT_FALSE(event.isAccepted());
}

TEST_F(OVWaveFormViewKeysTest, TheyMoveTheMarkerFromItsPlaceInTheDocumentNotFromWhereItWasDrawn) {
  auto* const drawn = new OVPlaybackMarkerView(&view_);
  drawn->setPosition(0.1);
  EXPECT_DOUBLE_EQ(reportedAfter(Qt::Key_PageUp), 0.6);
}
