#include "controls/buttons/OVRoundedTransportButton.h"

#include <gtest/gtest.h>

#include "controls/ControlsWindow.h"
#include "controls/buttons/OVTransportArtwork.h"
#include "support/Pixels.h"

namespace {

const QRect kFrame(57, 13, 46, 32);

QImage roundedPicture(std::int32_t type, bool highlighted) {
  ControlsWindow window;
  auto* button = new OVRoundedTransportButton(window.bar());
  button->setGeometry(kFrame);
  button->setType(type);
  button->setIsHighlighted(highlighted);
  return window.picture(window.bar());
}

QImage expectedPicture(void (*draw)(QPainter&, const QRectF&, bool), bool highlighted) {
  ControlsWindow window;
  QImage picture = window.picture(window.bar());
  QPainter painter(&picture);
  painter.setRenderHint(QPainter::Antialiasing);
  draw(painter, QRectF(kFrame), highlighted);
  return picture;
}

TEST(OVRoundedTransportButtonTest, TypeOneRoundsTheLeftEndAndEveryOtherTypeTheRight) {
  EXPECT_EQ(OVRoundedTransportButton().type(), 0);
  for (const bool highlighted : {false, true}) {
    const QImage left = expectedPicture(drawLeftTypeButtonWithFrame, highlighted);
    const QImage right = expectedPicture(drawRightTypeButtonWithFrame, highlighted);
    EXPECT_LT(meanDistance(roundedPicture(1, highlighted), left), 0.01);
    for (const int type : {0, 2, -1}) {
      EXPECT_LT(meanDistance(roundedPicture(type, highlighted), right), 0.01) << type;
    }
    EXPECT_GT(meanDistance(left, right), 0.1);
  }
}

}  // namespace
