#include "platform/views/FocusRing.h"

#include <gtest/gtest.h>

#include "support/Pixels.h"

namespace {

bool handle(platform::FocusRing& ring, QEvent::Type type, Qt::FocusReason reason) {
  return ring.handle(QFocusEvent(type, reason));
}

const QColor kRing(39, 163, 173);

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
        ring.draw(painter, QRectF(0.0, 0.0, 40.0, 30.0), 5.0);
      });
    };
    EXPECT_EQ(drawn(), makePicture({40, 30}, ratio, Qt::white));
    ASSERT_TRUE(handle(ring, QEvent::FocusIn, Qt::TabFocusReason));
    const QImage picture = drawn();
    for (int x = 0; x < 2 * ratio; ++x) {
      EXPECT_EQ(picture.pixelColor(x, 15 * ratio), kRing) << x;
    }
    EXPECT_EQ(picture.pixelColor(2 * ratio, 15 * ratio), QColor(Qt::white));
    EXPECT_EQ(picture.pixelColor(20 * ratio, 0), kRing);
    EXPECT_EQ(picture.pixelColor(0, 0), QColor(Qt::white)) << "a round corner";
  }
}
