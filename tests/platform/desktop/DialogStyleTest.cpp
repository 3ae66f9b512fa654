#include "platform/desktop/DialogStyle.h"

#include <algorithm>
#include <cmath>

#include <gtest/gtest.h>
#include <QApplication>
#include <QMenu>

#include "platform/desktop/DesktopColours.h"

namespace {

/// A menu of two items with a separator between them.
QImage pictureOfMenu(QStyle* style, const QPalette& palette) {
  QMenu menu;
  menu.setStyle(style);
  menu.setPalette(palette);
  menu.addAction(QStringLiteral("One"));
  menu.addSeparator();
  menu.addAction(QStringLiteral("Two"));
  menu.resize(menu.sizeHint());
  return menu.grab().toImage().convertToFormat(QImage::Format_RGB32);
}

/// The ratio of the lighter to the darker of two greys, as WCAG counts it.
double contrast(const QColor& a, const QColor& b) {
  const auto light = [](const QColor& color) {
    const double level = color.lightnessF();
    return level <= 0.04045 ? level / 12.92 : std::pow((level + 0.055) / 1.055, 2.4);
  };
  return (std::max(light(a), light(b)) + 0.05) / (std::min(light(a), light(b)) + 0.05);
}

/// The strongest contrast of a row to the menu's ground, in the whole row but its ends.
double contrastOfSeparator(const QImage& menu) {
  const int x = menu.width() - 12;  // right of all texts
  const QColor ground = menu.pixelColor(x, 4);
  double strongest = 1.0;
  for (int y = 4; y < menu.height() - 4; ++y) {
    strongest = std::max(strongest, contrast(menu.pixelColor(x, y), ground));
  }
  return strongest;
}

double contrastOfBox(const QPalette& palette) {
  platform::DialogStyle style(true);
  QMenu menu;
  menu.setStyle(&style);
  menu.setPalette(palette);
  menu.addAction(QStringLiteral("One"))->setCheckable(true);
  menu.resize(menu.sizeHint());
  const QImage picture = menu.grab().toImage().convertToFormat(QImage::Format_RGB32);
  const QColor ground = picture.pixelColor(picture.width() - 12, 4);
  double strongest = 1.0;
  for (int x = 3; x < 20; ++x) {  // left of the text
    strongest = std::max(strongest, contrast(picture.pixelColor(x, picture.height() / 2), ground));
  }
  return strongest;
}

/// One colour over another.
QColor blended(const QColor& over, const QColor& ground) {
  const float a = over.alphaF();
  return QColor::fromRgbF(a * over.redF() + (1 - a) * ground.redF(),
                          a * over.greenF() + (1 - a) * ground.greenF(),
                          a * over.blueF() + (1 - a) * ground.blueF());
}

// Sums of the channels as WCAG weighs them.
double luminance(const QColor& color) {
  const auto linear = [](float level) {
    return level <= 0.04045F ? level / 12.92 : std::pow((level + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
         0.0722 * linear(color.blueF());
}

double colourContrast(const QColor& a, const QColor& b) {
  const double one = luminance(a);
  const double other = luminance(b);
  return (std::max(one, other) + 0.05) / (std::min(one, other) + 0.05);
}

}  // namespace

TEST(DialogStyleTest, TheOutlineOfABoxThatIsNotCheckedCanBeSeen) {
  EXPECT_GT(contrastOfBox(QApplication::palette()), 3.0);
  EXPECT_GT(contrastOfBox(platform::DesktopColours::darkPalette()), 3.0);
}

TEST(DialogStyleTest, SelectedTextAndPlaceholdersCanBeReadAlsoAfterDarkColours) {
  QApplication::setStyle(QStringLiteral("fusion"));
  platform::DialogStyle::install();
  const QPalette installed = QApplication::palette();
  platform::DesktopColours::setDark(true);
  platform::DesktopColours::setDark(false);
  const QPalette palette = QApplication::palette();
  EXPECT_EQ(palette, installed);
  for (const auto group : {QPalette::Active, QPalette::Inactive}) {
    EXPECT_GT(colourContrast(palette.color(group, QPalette::HighlightedText),
                             palette.color(group, QPalette::Highlight)),
              4.5);
    const QColor ground = palette.color(group, QPalette::Base);
    EXPECT_GT(
        colourContrast(blended(palette.color(group, QPalette::PlaceholderText), ground), ground),
        4.5);
  }
}

TEST(DialogStyleTest, DisabledTextsHaveNoSecondOneBesideThem) {
  platform::DialogStyle style(true);
  EXPECT_EQ(style.styleHint(QStyle::SH_EtchDisabledText, nullptr, nullptr, nullptr), 0);
}

TEST(DialogStyleTest, TakesThePlaceOfPlainFusionOnly) {
  QApplication::setStyle(QStringLiteral("fusion"));
  platform::DialogStyle::install();
  const QStyle* const installed = QApplication::style();
  EXPECT_NE(qobject_cast<const platform::DialogStyle*>(installed), nullptr);
  platform::DialogStyle::install();
  EXPECT_EQ(QApplication::style(), installed) << "once";
  QApplication::setStyle(QStringLiteral("windows"));
  platform::DialogStyle::install();
  EXPECT_EQ(qobject_cast<const platform::DialogStyle*>(QApplication::style()), nullptr);
  QApplication::setPalette(platform::DialogStyle::lightPalette());
  QApplication::setStyle(QStringLiteral("fusion"));
}

TEST(DialogStyleTest, OutlineAndSeparatorsOfADarkMenuCanBeSeen) {
  platform::DialogStyle style(true);
  const QImage menu = pictureOfMenu(&style, platform::DesktopColours::darkPalette());
  const QColor ground = menu.pixelColor(menu.width() - 12, 4);
  EXPECT_LT(ground.lightness(), 90);
  EXPECT_GT(contrastOfSeparator(menu), 1.8);
  for (const QPoint edge :
       {QPoint(0, menu.height() / 2), QPoint(menu.width() - 1, 9), QPoint(menu.width() / 2, 0),
        QPoint(menu.width() / 2, menu.height() - 1)}) {
    EXPECT_GT(contrast(menu.pixelColor(edge), ground), 1.8) << edge.x() << ", " << edge.y();
    EXPECT_GT(menu.pixelColor(edge).lightness(), ground.lightness());
  }
}

TEST(DialogStyleTest, LightMenusAreFusionsOwn) {
  platform::DialogStyle style(true);
  QProxyStyle fusion(QStringLiteral("fusion"));
  const QPalette light = style.standardPalette();
  EXPECT_EQ(pictureOfMenu(&style, light), pictureOfMenu(&fusion, light));
}
