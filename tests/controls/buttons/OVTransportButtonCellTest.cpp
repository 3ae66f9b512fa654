#include "controls/buttons/OVTransportButtonCell.h"

#include <algorithm>

#include <gtest/gtest.h>
#include <QAccessible>
#include <QSignalSpy>

#include "controls/ControlsWindow.h"
#include "controls/buttons/OVTransportArtwork.h"
#include "support/Pixels.h"

namespace {

using DrawBezel = void (*)(QPainter&, const QRectF&, bool);

constexpr QSize kSize(46, 32);
const QColor kPaper = QColor::fromRgb(200, 205, 210);

QImage expectedBezel(DrawBezel drawBezel, bool highlighted, int ratio) {
  QImage picture = makePicture(kSize, ratio, kPaper);
  QPainter painter(&picture);
  painter.setRenderHint(QPainter::Antialiasing);
  drawBezel(painter, QRectF(0.0, 0.0, kSize.width(), kSize.height()), highlighted);
  return picture;
}

class OVTransportButtonCellTest : public testing::TestWithParam<int> {
 protected:
  [[nodiscard]] static int ratio() { return GetParam(); }

  static QImage drawn(QWidget& button) {
    QImage picture = makePicture(button.size(), ratio(), kPaper);
    QPainter painter(&picture);
    button.render(&painter, QPoint(), QRegion(), QWidget::DrawChildren);
    return picture;
  }

  template <typename Cell>
  static void expectBezel(DrawBezel drawBezel) {
    Cell cell;
    cell.resize(kSize);
    for (const bool highlighted : {false, true, false}) {
      cell.setHighlighted(highlighted);
      EXPECT_EQ(cell.isHighlighted(), highlighted);
      EXPECT_EQ(drawn(cell), expectedBezel(drawBezel, highlighted, ratio())) << highlighted;
    }
  }
};

TEST_P(OVTransportButtonCellTest, ThePlainOneWearsThePlainBezelInBothStates) {
  expectBezel<OVTransportButtonCell>(drawBezelWithFrame);
}

TEST_P(OVTransportButtonCellTest, TheLeftOneHasARoundLeftEnd) {
  expectBezel<OVLeftTransportButtonCell>(drawLeftTypeButtonWithFrame);
}

TEST_P(OVTransportButtonCellTest, TheRightOneHasARoundRightEnd) {
  expectBezel<OVRightTransportButtonCell>(drawRightTypeButtonWithFrame);
}

TEST_P(OVTransportButtonCellTest, TheBezelGoesIntoTheFrameThatItIsGiven) {
  const OVTransportButtonCell cell;
  QImage picture = makePicture({80, 60}, ratio(), kPaper);
  QPainter painter(&picture);
  painter.setRenderHint(QPainter::Antialiasing);
  cell.drawBezelWithFrame(painter, QRectF(QPointF(20.0, 10.0), QSizeF(kSize)), &cell);
  painter.end();
  const QRect frame(QPoint(20, 10) * ratio(), kSize * ratio());
  EXPECT_LT(meanDistance(picture.copy(frame), expectedBezel(::drawBezelWithFrame, false, ratio())),
            0.01);
  EXPECT_EQ(picture.pixelColor(frame.topLeft() - QPoint(1, 1)), kPaper);
}

TEST_P(OVTransportButtonCellTest, ItsTextIsDarkWhateverTheDesktopsColours) {
  for (const QColor& desktopText : {QColor(Qt::white), QColor(Qt::black)}) {
    OVTransportButtonCell cell(QStringLiteral("MMM"));
    QPalette palette;
    palette.setColor(QPalette::ButtonText, desktopText);
    cell.setPalette(palette);
    cell.resize(kSize);
    const QImage picture = drawn(cell);
    int darkest = 255;
    for (int x = 8 * ratio(); x < 38 * ratio(); ++x) {
      darkest = std::min(darkest, picture.pixelColor(x, 16 * ratio()).green());
    }
    EXPECT_LT(darkest, 120);
  }
}

TEST_P(OVTransportButtonCellTest, DisabledItsTextIsFainter) {
  OVTransportButtonCell cell(QStringLiteral("MMM"));
  cell.resize(kSize);
  const QImage bezel = expectedBezel(drawBezelWithFrame, false, ratio());
  const double enabled = meanDistance(drawn(cell), bezel);
  cell.setEnabled(false);
  EXPECT_NEAR(meanDistance(drawn(cell), bezel), enabled / 2.0, enabled * 0.1);
}

INSTANTIATE_TEST_SUITE_P(AtOneAndTwoPixelsAPoint, OVTransportButtonCellTest, testing::Values(1, 2));

TEST(OVTransportButtonCellUseTest, OnlyThePlainOneSaysThatItIsOpaque) {
  EXPECT_TRUE(OVTransportButtonCell().isOpaque());
  EXPECT_FALSE(OVLeftTransportButtonCell().isOpaque());
  EXPECT_FALSE(OVRightTransportButtonCell().isOpaque());
}

TEST(OVTransportButtonCellUseTest, TheMouseAndTheKeyboardPressItAsAnyPlatformButton) {
  ControlsWindow window;
  auto* const cell = new OVTransportButtonCell(window.bar());
  cell->setGeometry(57, 13, 46, 32);
  window.show();
  const QSignalSpy clicks(cell, &QPushButton::clicked);
  window.press(cell, {20, 10});
  EXPECT_TRUE(cell->isHighlighted());
  window.release(cell, {20, 10});
  EXPECT_FALSE(cell->isHighlighted());
  EXPECT_EQ(clicks.count(), 1);
  cell->setFocus(Qt::TabFocusReason);
  QTest::keyPress(cell, Qt::Key_Space);
  EXPECT_TRUE(cell->isHighlighted());
  QTest::keyRelease(cell, Qt::Key_Space);
  EXPECT_EQ(clicks.count(), 2);
}

TEST(OVTransportButtonCellUseTest, AButtonTooSmallForTheInsetsIsDrawnWithoutHarm) {
  OVTransportButtonCell cell;
  for (const int side : {1, 3, 7}) {
    cell.resize(side, side);
    EXPECT_FALSE(cell.grab().isNull());
  }
}

TEST(OVTransportButtonCellUseTest, AssistiveTechnologySeesAButtonThatCanBePressed) {
  OVTransportButtonCell cell(QStringLiteral("Stop"));
  auto* const accessible = QAccessible::queryAccessibleInterface(&cell);
  ASSERT_NE(accessible, nullptr);
  EXPECT_EQ(accessible->role(), QAccessible::Button);
  EXPECT_EQ(accessible->text(QAccessible::Name), QStringLiteral("Stop"));
  ASSERT_NE(accessible->actionInterface(), nullptr);
  EXPECT_TRUE(accessible->actionInterface()->actionNames().contains(
      QAccessibleActionInterface::pressAction()));
}

}  // namespace
