#include "displays/OVFFTView.h"

#include <atomic>
#include <thread>

#include <gtest/gtest.h>
#include <QAccessible>
#include <QCoreApplication>
#include <QEvent>

#include "support/PaintCounter.h"
#include "support/Pixels.h"
#include "support/ViewOnScreen.h"

namespace {

const QColor kBackground(36, 54, 71);

/// The view as the screen shows it.
QImage pictureOf(OVFFTView& view) {
  return view.grab().toImage().convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

QImage expectedPicture(QSize size, const std::vector<float>& data, int ratio = 1) {
  OVFFTDrawing drawing;
  return drawnPicture(size, ratio, Qt::magenta,
                      [&](QPainter& painter) { drawing.drawSpectrum(painter, size, data); });
}

void show(OVFFTView& view, const std::vector<float>& data) {
  view.setSize(data.size());
  view.setData(data.data());
}

class OVFFTViewTest : public testing::Test {
 protected:
  OVFFTViewTest() { view_.resize(320, 100); }

  support::ViewOnScreen<OVFFTView> view_;
};

}  // namespace

TEST_F(OVFFTViewTest, GradientAndGridAreDrawnForTheViewsSize) {
  const QSize size = view_.size();
  EXPECT_EQ(
      drawnPicture(size, 1, Qt::magenta, [&](QPainter& painter) { view_.drawGradient(painter); }),
      drawnPicture(size, 1, Qt::magenta,
                   [&](QPainter& painter) { OVFFTDrawing::drawGradient(painter, size); }));
  EXPECT_EQ(drawnPicture(size, 1, Qt::magenta, [&](QPainter& painter) { view_.drawGrid(painter); }),
            drawnPicture(size, 1, Qt::magenta,
                         [&](QPainter& painter) { OVFFTDrawing::drawGrid(painter, size); }));
}

TEST_F(OVFFTViewTest, BeforeTheFirstDataShowsOnlyItsBackground) {
  EXPECT_EQ(view_.dataSize(), 0U);
  const QImage picture = pictureOf(view_);
  for (int y = 0; y < picture.height(); ++y) {
    for (int x = 0; x < picture.width(); ++x) {
      ASSERT_EQ(picture.pixelColor(x, y), kBackground) << x << ", " << y;
    }
  }
  view_.setSize(512);  // a size alone is no data
  EXPECT_EQ(pictureOf(view_), picture);
}

TEST_F(OVFFTViewTest, DrawsItsDataOverItsWholeSizeAtEveryPixelRatio) {
  for (const std::size_t count : {std::size_t{2048}, std::size_t{512}, std::size_t{3}}) {
    const std::vector<float> data(count, 0.4F);
    show(view_, data);
    for (const int ratio : {1, 2}) {
      view_.ratio = ratio;
      EXPECT_EQ(pictureOf(view_), expectedPicture({320, 100}, data, ratio)) << count;
    }
  }
}

TEST_F(OVFFTViewTest, WithASizeOfZeroShowsOnlyItsBackground) {
  const QImage blank = pictureOf(view_);
  show(view_, {0.5F, 0.25F});
  ASSERT_NE(pictureOf(view_), blank);
  view_.setSize(0);
  view_.setData(nullptr);
  EXPECT_EQ(pictureOf(view_), blank);
}

TEST_F(OVFFTViewTest, KeepsACopyOfItsOwn) {
  std::vector<float> data{0.1F, 0.9F, 0.3F};
  show(view_, data);
  const QImage before = pictureOf(view_);
  data.assign(3, 0.0F);
  EXPECT_EQ(pictureOf(view_), before);
}

TEST_F(OVFFTViewTest, CopiesAsManyValuesAsItsSizeTells) {
  const std::vector<float> data{0.1F, 0.9F, 0.3F, 0.7F};
  view_.setSize(2);
  view_.setData(data.data());
  EXPECT_EQ(view_.dataSize(), 2U);
  EXPECT_EQ(view_.magnitudes(), (std::vector{0.1F, 0.9F}));
  EXPECT_EQ(pictureOf(view_), expectedPicture({320, 100}, {0.1F, 0.9F}));
}

TEST_F(OVFFTViewTest, ASizeSetAheadOfItsDataChangesNothingYet) {
  show(view_, {0.1F, 0.9F});
  const QImage before = pictureOf(view_);
  view_.setSize(100000);
  EXPECT_EQ(pictureOf(view_), before);
}

TEST_F(OVFFTViewTest, DoesNotRedrawByItself) {
  view_.show();
  view_.repaint();
  QCoreApplication::processEvents();
  support::PaintCounter counter(&view_);
  show(view_, {0.1F, 0.9F});
  QCoreApplication::processEvents();
  EXPECT_EQ(counter.paints, 0);
  view_.update();
  QCoreApplication::processEvents();
  EXPECT_EQ(counter.paints, 1);
}

TEST_F(OVFFTViewTest, MayBeGivenDataByAnotherThreadWhileItIsDrawn) {
  std::atomic<bool> done = false;
  std::thread analyst([&] {
    const std::vector<float> recorded(512, 0.2F);
    const std::vector<float> played(2048, 0.6F);
    for (int round = 0; round < 300; ++round) {
      show(view_, round % 2 == 0 ? recorded : played);
    }
    show(view_, recorded);
    done = true;
  });
  while (!done) {
    static_cast<void>(pictureOf(view_));
  }
  analyst.join();
  EXPECT_EQ(pictureOf(view_), expectedPicture({320, 100}, std::vector<float>(512, 0.2F)));
}

TEST_F(OVFFTViewTest, HasANameForAssistiveTechnology) {
  QAccessibleInterface* const spoken = QAccessible::queryAccessibleInterface(&view_);
  ASSERT_NE(spoken, nullptr);
  EXPECT_EQ(spoken->text(QAccessible::Name), "Spectrum");
  EXPECT_EQ(spoken->role(), QAccessible::Graphic);
}
