#include "controls/buttons/OVTransportButton.h"

#include <algorithm>

#include <gtest/gtest.h>

#include "controls/ControlsWindow.h"
#include "controls/buttons/OVTransportArtwork.h"
#include "support/Pixels.h"

namespace {

const QRect kFrame(57, 13, 46, 32);

QColor plusDarker(const QColor& below, const QColor& icon) {
  const auto channel = [&](int b, int i) {
    return std::max(0, 255 - (255 - b) - (255 - i) * icon.alpha() / 255);
  };
  return QColor(channel(below.red(), icon.red()), channel(below.green(), icon.green()),
                channel(below.blue(), icon.blue()));
}

class OVTransportButtonTest : public testing::TestWithParam<int> {
 protected:
  void SetUp() override {
    button_ = new OVTransportButton(window_.bar());
    button_->setGeometry(kFrame);
  }

  [[nodiscard]] static int ratio() { return GetParam(); }

  // Compares the shown icon with `expected(bezel pixel, icon pixel)` everywhere.
  template <typename Expected>
  void expectIcon(const char* name, Expected expected) {
    button_->setOnImage({});
    button_->setOffImage({});
    const QImage bezel = window_.picture(button_, ratio());
    const platform::NamedImage named((QString::fromLatin1(name)));
    button_->setOnImage(QString::fromLatin1(name));
    button_->setOffImage(QString::fromLatin1(name));
    const QImage shown = window_.picture(button_, ratio());
    const QImage& icon = named.forRatio(ratio());
    const QPoint origin = QPoint(14, 7) * ratio();
    for (int y = 0; y < icon.height(); ++y) {
      for (int x = 0; x < icon.width(); ++x) {
        const QPoint at = origin + QPoint(x, y);
        ASSERT_LE(colorDistance(shown.pixelColor(at),
                                expected(bezel.pixelColor(at), icon.pixelColor(x, y))),
                  3)
            << x << ", " << y;
      }
    }
    EXPECT_EQ(shown.pixelColor(origin - QPoint(2, 2)), bezel.pixelColor(origin - QPoint(2, 2)));
  }

  ControlsWindow window_;
  OVTransportButton* button_ = nullptr;
};

QColor atFull(const QColor& below, const QColor& icon) {
  return blended(below, icon, icon.alphaF());
}
QColor atHalf(const QColor& below, const QColor& icon) {
  return blended(below, icon, icon.alphaF() * 0.5);
}

TEST_P(OVTransportButtonTest, AnEnabledButtonShowsItsIconAsItIs) {
  expectIcon("rec_on.png", atFull);
}

TEST_P(OVTransportButtonTest, ADisabledButtonShowsItsIconAtHalfOpacityOnOrOff) {
  button_->setEnabled(false);
  expectIcon("rec_on.png", atHalf);
  button_->setIsOn(true);
  expectIcon("rec_on.png", atHalf);
}

TEST_P(OVTransportButtonTest, AHighlightedButtonThatIsOffShowsItsIconUnchanged) {
  button_->setIsHighlighted(true);
  expectIcon("rec_on.png", atFull);
}

TEST_P(OVTransportButtonTest, AHighlightedButtonThatIsOnDarkensItsIcon) {
  button_->setIsHighlighted(true);
  button_->setIsOn(true);
  expectIcon("rec_on.png", plusDarker);
  button_->setEnabled(false);  // the pressed look has precedence over the disabled one
  expectIcon("rec_on.png", plusDarker);
}

TEST_P(OVTransportButtonTest, AlphaIsTheOpacityOfTheIconWhileOn) {
  EXPECT_EQ(button_->alpha(), 1.0);
  button_->setAlpha(0.25);
  expectIcon("stop.png", atFull);  // off
  button_->setIsOn(true);
  expectIcon("stop.png", [](const QColor& below, const QColor& icon) {
    return blended(below, icon, icon.alphaF() * 0.25);
  });
}

TEST_P(OVTransportButtonTest, TheOnStateChoosesTheImage) {
  button_->setOnImage(QStringLiteral("rec_on.png"));
  button_->setOffImage(QStringLiteral("stop.png"));
  const QPoint centre = QPoint(23, 16) * ratio();
  EXPECT_LT(window_.picture(button_, ratio()).pixelColor(centre).red(), 120);
  button_->setIsOn(true);
  EXPECT_GT(window_.picture(button_, ratio()).pixelColor(centre).red(), 200);
}

TEST_P(OVTransportButtonTest, AnUnknownImageLeavesTheBezelAlone) {
  const QImage bezel = window_.picture(button_, ratio());
  button_->setOffImage(QStringLiteral("missing.png"));
  EXPECT_EQ(window_.picture(button_, ratio()), bezel);
}

TEST_P(OVTransportButtonTest, TheBezelCoversExactlyTheButtonInTheBar) {
  for (const bool highlighted : {false, true}) {
    button_->hide();
    QImage expected = window_.picture(window_.bar(), ratio());
    expected.setDevicePixelRatio(ratio());
    QPainter painter(&expected);
    painter.setRenderHint(QPainter::Antialiasing);
    drawBezelWithFrame(painter, QRectF(kFrame), highlighted);
    painter.end();
    button_->setIsHighlighted(highlighted);
    button_->show();
    QImage shown = window_.picture(window_.bar(), ratio());
    shown.setDevicePixelRatio(ratio());
    EXPECT_LT(meanDistance(shown, expected), 0.01);
  }
}

INSTANTIATE_TEST_SUITE_P(AtOneAndTwoPixelsAPoint, OVTransportButtonTest, testing::Values(1, 2));

// Where points do not align with pixels, an icon covers the pixels at its edges only in part.
class OVTransportButtonBetweenPixelsTest : public testing::TestWithParam<double> {
 protected:
  OVTransportButtonBetweenPixelsTest() : button_(new OVTransportButton(window_.bar())) {
    button_->setGeometry(kFrame);
  }

  void setImages(const QString& name) {
    button_->setOnImage(name);
    button_->setOffImage(name);
  }

  [[nodiscard]] QImage bar() { return window_.picture(window_.bar(), GetParam()); }

  // The icon alone in its place on the bar, its share of each pixel as alpha.
  [[nodiscard]] QImage iconOnTheBar(const QString& name, QSize pixels) const {
    QImage picture(pixels, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    picture.setDevicePixelRatio(GetParam());
    QPainter painter(&picture);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    painter.drawImage(QRectF(57 + 14, 13 + 7, 18, 18),
                      platform::NamedImage(name).forRatio(GetParam()));
    return picture;
  }

  // Compares the whole bar with the bezel and `expected(bezel pixel, icon pixel)`.
  template <typename Expected>
  void expectIcon(const QString& name, Expected expected) {
    setImages({});
    const QImage bezel = bar();
    const QImage icon = iconOnTheBar(name, bezel.size());
    setImages(name);
    const QImage shown = bar();
    for (int y = 0; y < shown.height(); ++y) {
      for (int x = 0; x < shown.width(); ++x) {
        ASSERT_LE(colorDistance(shown.pixelColor(x, y),
                                expected(bezel.pixelColor(x, y), icon.pixelColor(x, y))),
                  4)
            << x << ", " << y;
      }
    }
  }

  ControlsWindow window_;
  OVTransportButton* button_;
};

TEST_P(OVTransportButtonBetweenPixelsTest, AnEnabledButtonBlendsItsIconWithTheBezelAndNothingElse) {
  expectIcon(QStringLiteral("rec_on.png"), atFull);
}

TEST_P(OVTransportButtonBetweenPixelsTest, ADisabledButtonShowsItsIconAtHalfOpacity) {
  button_->setEnabled(false);
  expectIcon(QStringLiteral("rec_on.png"), atHalf);
}

TEST_P(OVTransportButtonBetweenPixelsTest, AHighlightedButtonThatIsOnDarkensItsIconAndNothingElse) {
  button_->setIsHighlighted(true);
  button_->setIsOn(true);
  expectIcon(QStringLiteral("rec_on.png"), plusDarker);
  expectIcon(QStringLiteral("stop.png"), plusDarker);
}

INSTANTIATE_TEST_SUITE_P(AtScaleFactors, OVTransportButtonBetweenPixelsTest,
                         testing::Values(1.0, 1.25, 1.5, 1.75, 2.0));

TEST(OVTransportButtonFieldsTest, TheImageGettersStayEmpty) {
  OVTransportButton button;
  button.setOnImage(QStringLiteral("stop.png"));
  button.setOffImage(QStringLiteral("stop.png"));
  EXPECT_TRUE(button.onImage().isNull());
  EXPECT_TRUE(button.offImage().isNull());
  EXPECT_FALSE(button.isFlipped());
}

TEST(OVTransportButtonFieldsTest, SettingAnImageOrAlphaDoesNotRedraw) {
  ControlsWindow window;
  OVTransportButton button(window.bar());
  button.setGeometry(kFrame);
  window.show();
  PaintCounter paints(&button);
  static_cast<void>(paints.take());
  button.setOnImage(QStringLiteral("stop.png"));
  button.setOffImage(QStringLiteral("stop.png"));
  button.setAlpha(0.5);
  EXPECT_EQ(paints.take(), 0);
}

}  // namespace
