#include "document/files/OVImportPlace.h"

#include <gtest/gtest.h>
#include <QLocale>

namespace {

class OVImportPlaceTest : public testing::Test {
 protected:
  using Source = OVImportLength::Source;

  OVImportPlaceTest() { QLocale::setDefault(QLocale::c()); }
  ~OVImportPlaceTest() override { QLocale::setDefault(QLocale::system()); }

  static std::string sentence(double at, double end, std::optional<double> seconds = {},
                              Source source = Source::header) {
    const auto length = seconds
                            ? std::optional(OVImportLength{.seconds = *seconds, .source = source})
                            : std::nullopt;
    return OVImportPlace{.atSecond = at, .endSecond = end}.sentence(length).toStdString();
  }
};

TEST_F(OVImportPlaceTest, SaysWhereAnImportGoesAndWhatItReplaces) {
  EXPECT_EQ(sentence(4.0, 60.0, 8.0), "Goes in at 00:00:04.00 and replaces 8 s.");
  EXPECT_EQ(sentence(1.76, 60.0, 0.26), "Goes in at 00:00:01.76 and replaces 0.3 s.");
}

TEST_F(OVImportPlaceTest, ReplacesNoMoreThanThereIs) {
  EXPECT_EQ(sentence(4.0, 10.5, 8.0), "Goes in at 00:00:04.00 and replaces 6.5 s.");
}

TEST_F(OVImportPlaceTest, AnEstimateIsCalledOneAndRoundedToSeconds) {
  EXPECT_EQ(sentence(4.0, 60.0, 8.2, Source::estimate),
            "Goes in at 00:00:04.00 and replaces about 8 s.");
  EXPECT_EQ(sentence(4.0, 60.0, 0.2, Source::estimate),
            "Goes in at 00:00:04.00 and replaces about 1 s.");
  EXPECT_EQ(sentence(4.0, 10.2, 8.0, Source::estimate),
            "Goes in at 00:00:04.00 and replaces about 6 s.");
  EXPECT_EQ(sentence(0.0, 4000.0, 59.6, Source::estimate),
            "Goes in at 00:00:00.00 and replaces about 00:01:00.");
  EXPECT_EQ(sentence(0.0, 4000.0, 3661.3, Source::estimate),
            "Goes in at 00:00:00.00 and replaces about 01:01:01.");
  EXPECT_EQ(sentence(10.0, 10.0, 8.0, Source::estimate), "Goes in at the end.");
}

TEST_F(OVImportPlaceTest, WithoutALengthSaysOnlyThePlace) {
  EXPECT_EQ(sentence(3723.5, 4000.0), "Goes in at 01:02:03.50.");
}

TEST_F(OVImportPlaceTest, AtTheEndReplacesNothing) {
  EXPECT_EQ(sentence(10.0, 10.0, 8.0), "Goes in at the end.");
  EXPECT_EQ(sentence(11.0, 10.0), "Goes in at the end.");
  EXPECT_EQ(sentence(0.0, 0.0, 8.0), "Goes in at the end.");
}

TEST_F(OVImportPlaceTest, AMinuteAndMoreIsShownAsATimeAndNothingAsZero) {
  EXPECT_EQ(sentence(0.0, 4000.0, 59.94), "Goes in at 00:00:00.00 and replaces 59.9 s.");
  EXPECT_EQ(sentence(0.0, 4000.0, 60.0), "Goes in at 00:00:00.00 and replaces 00:01:00.00.");
  EXPECT_EQ(sentence(0.0, 4000.0, 3661.5), "Goes in at 00:00:00.00 and replaces 01:01:01.50.");
  EXPECT_EQ(sentence(0.0, 4000.0, 0.01), "Goes in at 00:00:00.00 and replaces 0.1 s.");
}

}  // namespace
