#include "platform/views/FocusRing.h"

#include <algorithm>
#include <cmath>

#include <gtest/gtest.h>

#include "support/Pixels.h"

namespace {

bool handle(platform::FocusRing& ring, QEvent::Type type, Qt::FocusReason reason) {
  return ring.handle(QFocusEvent(type, reason));
}

using Ground = platform::FocusRing::Ground;

/// WCAG's contrast ratio.
double contrast(const QColor& a, const QColor& b) {
  const auto luminance = [](const QColor& color) {
    const auto channel = [](float value) {
      return value <= 0.04045F ? value / 12.92F : std::pow((value + 0.055F) / 1.055F, 2.4F);
    };
    return 0.2126 * channel(color.redF()) + 0.7152 * channel(color.greenF()) +
           0.0722 * channel(color.blueF());
  };
  const double light = std::max(luminance(a), luminance(b));
  const double dark = std::min(luminance(a), luminance(b));
  return (light + 0.05) / (dark + 0.05);
}

/// The colour of a ring, from its picture.
QColor colorOn(Ground ground) {
  platform::FocusRing ring;
  EXPECT_TRUE(handle(ring, QEvent::FocusIn, Qt::TabFocusReason));
  const QImage picture = drawnPicture({40, 30}, 1, Qt::white, [&](QPainter& painter) {
    ring.draw(painter, QRectF(0.0, 0.0, 40.0, 30.0), 5.0, ground);
  });
  return picture.pixelColor(20, 0);
}

}  // namespace

TEST(FocusRingTest, ShowsWhenTheKeyboardBroughtTheFocus) {
  for (const auto reason : {Qt::TabFocusReason, Qt::BacktabFocusReason, Qt::ShortcutFocusReason}) {
    platform::FocusRing ring;
    EXPECT_TRUE(handle(ring, QEvent::FocusIn, reason));
    EXPECT_TRUE(ring.isShown());
    EXPECT_TRUE(handle(ring, QEvent::FocusOut, Qt::TabFocusReason));
    EXPECT_FALSE(ring.isShown());
  }
}

TEST(FocusRingTest, DoesNotShowAfterAClickOrWhenAWindowComesToTheFront) {
  for (const auto reason :
       {Qt::MouseFocusReason, Qt::ActiveWindowFocusReason, Qt::OtherFocusReason}) {
    platform::FocusRing ring;
    EXPECT_FALSE(handle(ring, QEvent::FocusIn, reason));
    EXPECT_FALSE(ring.isShown());
  }
}

TEST(FocusRingTest, OutlastsAWindowInFrontAndAMenu) {
  platform::FocusRing ring;
  ASSERT_TRUE(handle(ring, QEvent::FocusIn, Qt::TabFocusReason));
  for (const auto reason : {Qt::ActiveWindowFocusReason, Qt::PopupFocusReason}) {
    EXPECT_TRUE(handle(ring, QEvent::FocusOut, reason));
    EXPECT_TRUE(handle(ring, QEvent::FocusIn, reason));
    EXPECT_TRUE(ring.isShown());
  }
}

TEST(FocusRingTest, ShowsAgainWhenTheProgramGivesBackTheKeyboardThatItTook) {
  platform::FocusRing ring;
  ASSERT_TRUE(handle(ring, QEvent::FocusIn, Qt::TabFocusReason));
  EXPECT_TRUE(handle(ring, QEvent::FocusOut, Qt::OtherFocusReason));
  EXPECT_FALSE(ring.isShown());
  EXPECT_TRUE(handle(ring, QEvent::FocusIn, Qt::OtherFocusReason));
  EXPECT_TRUE(ring.isShown());
}

TEST(FocusRingTest, DoesNotShowAgainWhenSomethingElseHappenedInBetween) {
  platform::FocusRing ring;
  ASSERT_TRUE(handle(ring, QEvent::FocusIn, Qt::TabFocusReason));
  ASSERT_TRUE(handle(ring, QEvent::FocusOut, Qt::OtherFocusReason));
  EXPECT_FALSE(handle(ring, QEvent::FocusIn, Qt::MouseFocusReason));
  EXPECT_FALSE(handle(ring, QEvent::FocusOut, Qt::OtherFocusReason));
  EXPECT_FALSE(handle(ring, QEvent::FocusIn, Qt::OtherFocusReason));
  EXPECT_FALSE(ring.isShown());
}

TEST(FocusRingTest, IsTwoPointsWideAlongTheInsideAndNothingWhileItIsNotShown) {
  for (const int ratio : {1, 2}) {
    platform::FocusRing ring;
    const auto drawn = [&] {
      return drawnPicture({40, 30}, ratio, Qt::white, [&](QPainter& painter) {
        ring.draw(painter, QRectF(0.0, 0.0, 40.0, 30.0), 5.0, Ground::light);
      });
    };
    EXPECT_EQ(drawn(), makePicture({40, 30}, ratio, Qt::white));
    ASSERT_TRUE(handle(ring, QEvent::FocusIn, Qt::TabFocusReason));
    const QImage picture = drawn();
    const QColor color = colorOn(Ground::light);
    EXPECT_NE(color, QColor(Qt::white));
    for (int x = 0; x < 2 * ratio; ++x) {
      EXPECT_EQ(picture.pixelColor(x, 15 * ratio), color) << x;
    }
    EXPECT_EQ(picture.pixelColor(2 * ratio, 15 * ratio), QColor(Qt::white));
    EXPECT_EQ(picture.pixelColor(20 * ratio, 0), color);
    EXPECT_EQ(picture.pixelColor(0, 0), QColor(Qt::white)) << "a round corner";
  }
}

TEST(FocusRingTest, StandsOutFromEveryGroundThatItIsDrawnOn) {
  const QColor onDark = colorOn(Ground::dark);
  for (const QColor& ground : {QColor(36, 54, 71), QColor(35, 37, 62)}) {  // waveform and well
    EXPECT_GE(contrast(onDark, ground), 3.0) << ground.name().toStdString();
  }
  // From the darkest shade of a pressed button to the white line of the bar.
  const QColor onLight = colorOn(Ground::light);
  for (int level = 150; level <= 255; ++level) {
    EXPECT_GE(contrast(onLight, QColor(level, level, level)), 3.0) << level;
  }
}
