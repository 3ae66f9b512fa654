#include "platform/views/NamedImage.h"

#include <gtest/gtest.h>

namespace {

TEST(NamedImageTest, EveryImageOfTheWindowIsThereAtBothSizes) {
  for (const char* name : {"rec_on.png", "rec_off.png", "play_on.png", "play_off.png", "prev.png",
                           "next.png", "stop.png", "pause.png"}) {
    const platform::NamedImage image((QString::fromLatin1(name)));
    ASSERT_FALSE(image.isNull()) << name;
    EXPECT_EQ(image.size(), QSizeF(18, 18)) << name;
    EXPECT_EQ(image.forRatio(1.0).size(), QSize(18, 18)) << name;
    EXPECT_EQ(image.forRatio(2.0).size(), QSize(36, 36)) << name;
    EXPECT_EQ(image.forRatio(2.0).deviceIndependentSize(), QSizeF(18, 18)) << name;
  }
  for (const char* name : {"spectrum_on.png", "spectrum_off.png", "spectrum_hover.png"}) {
    const platform::NamedImage image((QString::fromLatin1(name)));
    EXPECT_EQ(image.forRatio(1.0).size(), QSize(28, 28)) << name;
    EXPECT_EQ(image.forRatio(2.0).size(), QSize(56, 56)) << name;
  }
}

TEST(NamedImageTest, TheProgramsIconIsThereInEverySize) {
  for (const int size : {16, 32, 48, 64, 128, 256}) {
    const platform::NamedImage image(QStringLiteral("orvo-%1.png").arg(size));
    EXPECT_EQ(image.size(), QSizeF(size, size)) << size;
  }
}

TEST(NamedImageTest, AnyRatioAboveOneAsksForTheDoubleSize) {
  const platform::NamedImage image(QStringLiteral("stop.png"));
  EXPECT_EQ(image.forRatio(1.25).size(), QSize(36, 36));
  EXPECT_EQ(image.forRatio(3.0).size(), QSize(36, 36));
}

TEST(NamedImageTest, WithoutADoubleSizeTheSingleOneServes) {
  const platform::NamedImage image(QStringLiteral("orvo-16.png"));
  EXPECT_EQ(image.forRatio(2.0).size(), QSize(16, 16));
}

TEST(NamedImageTest, AnUnknownNameIsNullAndHasNoSize) {
  for (const char* name : {"", "nothing.png", "nothing"}) {
    const platform::NamedImage image((QString::fromLatin1(name)));
    EXPECT_TRUE(image.isNull()) << name;
    EXPECT_TRUE(image.size().isEmpty()) << name;
    EXPECT_TRUE(image.forRatio(2.0).isNull()) << name;
  }
}

}  // namespace
