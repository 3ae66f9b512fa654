#include "displays/OVTimeText.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <limits>
#include <string>
#include <system_error>

#include <gtest/gtest.h>
#include <QFontInfo>
#include <QFontMetricsF>

#include "support/Pixels.h"
#include "support/TemporaryFolder.h"
#include "support/programs/ChildProcess.h"

namespace {

std::string formatted(double seconds) {
  return OVTimeText::formatTime(seconds).toStdString();
}

constexpr double kTwoTo31 = 2147483648.0;

}  // namespace

TEST(OVTimeTextFormatTest, ZeroShowsAllFields) {
  EXPECT_EQ(OVTimeText::formatTimes(0.0, 0.0), "00:00:00.00 / 00:00:00.00");
}

TEST(OVTimeTextFormatTest, CurrentTimeStandsBeforeTheDuration) {
  EXPECT_EQ(OVTimeText::formatTimes(83.45, 218.5), "00:01:23.45 / 00:03:38.50");
}

TEST(OVTimeTextFormatTest, JustBelowAMinuteIsCutOffNotRounded) {
  EXPECT_EQ(formatted(59.999), "00:00:59.99");
}

TEST(OVTimeTextFormatTest, HoursMinutesSecondsAndHundredths) {
  EXPECT_EQ(formatted(3725.5), "01:02:05.50");
}

TEST(OVTimeTextFormatTest, AFractionJustBelowAWholeHundredthShowsTheLowerOne) {
  EXPECT_EQ(formatted(0.57), "00:00:00.56");
}

TEST(OVTimeTextFormatTest, AHundredHoursShowThreeDigits) {
  EXPECT_EQ(formatted(360000.0), "100:00:00.00");
  EXPECT_EQ(formatted(359999.99), "99:59:59.98") << "the fraction is not exactly 0.99";
}

TEST(OVTimeTextFormatTest, NegativeTimesShowTheSignInEachField) {
  EXPECT_EQ(formatted(-1.5), "00:00:-01.-50");
  EXPECT_EQ(formatted(-3725.5), "-01:-02:-05.-50");
}

TEST(OVTimeTextFormatTest, TheLargestTimeThatFitsIsShownExactly) {
  EXPECT_EQ(formatted(kTwoTo31 - 0.5), "596523:14:07.50");
  EXPECT_EQ(formatted(-kTwoTo31 + 0.5), "-596523:-14:-07.-50");
}

TEST(OVTimeTextFormatTest, LongerTimesShowTheLargestThatFitsWithTheirSign) {
  const double infinity = std::numeric_limits<double>::infinity();
  for (const double seconds : {kTwoTo31, kTwoTo31 + 1.0, 1e18, infinity}) {
    EXPECT_EQ(formatted(seconds), "596523:14:07.99") << seconds;
    EXPECT_EQ(formatted(-seconds), "-596523:-14:-07.-99") << -seconds;
  }
}

TEST(OVTimeTextFormatTest, WhatIsNotANumberShowsAsZero) {
  EXPECT_EQ(formatted(std::numeric_limits<double>::quiet_NaN()), "00:00:00.00");
}

TEST(OVTimeTextTest, IsSetInArialAtSize10InTranslucentWhite) {
  const OVTimeText text;
  EXPECT_EQ(text.font().family(), "Arial");
  EXPECT_EQ(text.font().pixelSize(), 10);
  EXPECT_EQ(text.color().rgb(), QColor(Qt::white).rgb());
  EXPECT_NEAR(text.color().alphaF(), 0.6, 0.001);
}

TEST(OVTimeTextTest, IsSansSerifAndFitsWhereNeitherArialNorItsTwinIsThere) {
  const support::TemporaryFolder folder;
  const std::string fonts = folder.makeFolder("fonts");
  const char* const kDejaVu = "/usr/share/fonts/truetype/dejavu";
  for (const char* const name : {"DejaVuSans.ttf", "DejaVuSerif.ttf", "DejaVuSansMono.ttf"}) {
    std::error_code error;
    std::filesystem::copy_file(std::string(kDejaVu) + "/" + name, fonts + "/" + name, error);
    ASSERT_FALSE(error) << name << " is not installed";
  }
  std::ofstream(folder.file("fonts.conf"))
      << "<?xml version=\"1.0\"?><fontconfig><dir>" << fonts << "</dir><cachedir>"
      << folder.file("cache") << "</cachedir></fontconfig>";
  const auto found = support::runToEnd(
      {std::filesystem::read_symlink("/proc/self/exe").string(),
       "--gtest_filter=OVTimeTextChildTest.*", "--gtest_also_run_disabled_tests"},
      support::with(support::cleanEnvironment(), {{"FONTCONFIG_FILE", folder.file("fonts.conf")},
                                                  {"QT_QPA_PLATFORM", "offscreen"}}));
  EXPECT_TRUE(found.status.succeeded()) << found.output << found.error;
}

// Run by the test above, with other fonts.
TEST(OVTimeTextChildTest, DISABLED_IsSansSerifAndFits) {
  const QFont font = OVTimeText().font();
  EXPECT_EQ(QFontInfo(font).family().toStdString(), "DejaVu Sans");
  EXPECT_LT(QFontMetricsF(font).horizontalAdvance(OVTimeText::formatTimes(359999.0, 359999.0)),
            149.0);
}

TEST(OVTimeTextTest, KeepsItsWidthWhileTheTimeRuns) {
  const QFontMetricsF metrics(OVTimeText().font());
  const double width = metrics.horizontalAdvance(OVTimeText::formatTimes(0.0, 0.0));
  for (const double seconds : {11.11, 71.11, 4271.11, 45296.78}) {
    EXPECT_DOUBLE_EQ(metrics.horizontalAdvance(OVTimeText::formatTimes(seconds, seconds)), width);
  }
}

namespace {

class OVTimeTextDrawingTest : public testing::TestWithParam<int> {
 protected:
  [[nodiscard]] static int ratio() { return GetParam(); }

  /// The same text at the same baseline, drawn by Qt alone in its own coordinates.
  [[nodiscard]] QImage expected(QSize size, const QString& line) const {
    QImage picture = makePicture(size, ratio(), kPaper);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setFont(text_.font());
    painter.setPen(QColor(255, 255, 255, 153));
    const QFontMetricsF metrics(text_.font());
    painter.drawText(QPointF(size.width() - metrics.horizontalAdvance(line) - 1.0,
                             size.height() + 1.0 - metrics.descent()),
                     line);
    return picture;
  }

  const QColor kPaper{36, 45, 66};
  OVTimeText text_;
};

}  // namespace

TEST_P(OVTimeTextDrawingTest, StandsUprightOnePointFromTheRightAndOneBelowTheBottom) {
  const QSize size(150, 14);
  const QString line = OVTimeText::formatTimes(83.45, 218.5);
  const QImage picture = drawnPicture(size, ratio(), kPaper,
                                      [&](QPainter& painter) { text_.draw(painter, size, line); });
  EXPECT_NE(picture, makePicture(size, ratio(), kPaper));
  EXPECT_EQ(picture, expected(size, line));
  for (int y = 0; y < picture.height(); ++y) {
    EXPECT_EQ(picture.pixelColor(picture.width() - 1, y), kPaper) << "the margin, row " << y;
  }
}

TEST_P(OVTimeTextDrawingTest, IsNeitherClippedNorShrunkInAViewTooNarrow) {
  const QSize narrow(60, 14);
  const QString line = OVTimeText::formatTimes(83.45, 218.5);
  const QImage picture = drawnPicture(
      narrow, ratio(), kPaper, [&](QPainter& painter) { text_.draw(painter, narrow, line); });
  EXPECT_EQ(picture, expected(narrow, line));
}

TEST_P(OVTimeTextDrawingTest, IsNeverBrighterThanItsAlphaAllows) {
  const QSize size(150, 14);
  const QImage picture = drawnPicture(size, ratio(), kPaper, [&](QPainter& painter) {
    text_.draw(painter, size, OVTimeText::formatTimes(11.0, 11.0));
  });
  int brightest = 0;
  for (int y = 0; y < picture.height(); ++y) {
    for (int x = 0; x < picture.width(); ++x) {
      brightest = std::max(brightest, picture.pixelColor(x, y).red());
    }
  }
  const int full = blended(kPaper, Qt::white, 0.6).red();
  EXPECT_LE(brightest, full + 1);
  EXPECT_GT(brightest, full - 60);
}

INSTANTIATE_TEST_SUITE_P(PixelRatios, OVTimeTextDrawingTest, testing::Values(1, 2),
                         testing::PrintToStringParamName());
