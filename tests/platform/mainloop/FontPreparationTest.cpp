#include "platform/mainloop/FontPreparation.h"

#include <gtest/gtest.h>
#include <QFontDatabase>
#include <QFontMetricsF>
#include <QStringList>

TEST(FontPreparationTest, FontsAreThereAfterwardsAndASecondFinishDoesNothing) {
  platform::FontPreparation fonts;
  fonts.finish();
  fonts.finish();
  EXPECT_FALSE(QFontDatabase::families().isEmpty());
  EXPECT_GT(QFontMetricsF(QFont()).horizontalAdvance("Orvo"), 0.0);
}

TEST(FontPreparationTest, MayBeLeftUnfinished) {
  { const platform::FontPreparation fonts; }
  EXPECT_GT(QFontMetricsF(QFont()).horizontalAdvance("Orvo"), 0.0);
}
