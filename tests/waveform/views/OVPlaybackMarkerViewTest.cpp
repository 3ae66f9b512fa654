#include "waveform/views/OVPlaybackMarkerView.h"

#include <gtest/gtest.h>
#include <QAccessible>

#include "support/Pixels.h"

namespace {

QImage drawnOver(OVPlaybackMarkerView& marker, const QColor& paper) {
  QImage screen = makePicture(marker.size(), 1.0, paper);
  marker.render(&screen, QPoint(), QRegion(), QWidget::DrawChildren);
  return screen;
}

}  // namespace

TEST(OVPlaybackMarkerViewTest, BeginsOpaqueAndAsAPlaybackMarker) {
  const OVPlaybackMarkerView marker;
  EXPECT_EQ(marker.audioLevel(), 1.0);
  EXPECT_FALSE(marker.isRecordingMarker());
  EXPECT_EQ(marker.position(), 0.0);
}

TEST(OVPlaybackMarkerViewTest, LeavesEverythingButTheLineTransparent) {
  OVPlaybackMarkerView marker;
  marker.resize(100, 40);
  marker.setPosition(0.25);
  marker.setAudioLevel(0.5);
  const QColor paper(40, 80, 120);
  const QImage screen = drawnOver(marker, paper);
  EXPECT_EQ(screen.pixelColor(23, 20), paper);
  EXPECT_LE(colorDistance(screen.pixelColor(24, 20), blended(paper, Qt::white, 0.5)), 1);
  EXPECT_LE(colorDistance(screen.pixelColor(25, 20), blended(paper, Qt::white, 0.5)), 1);
  EXPECT_EQ(screen.pixelColor(26, 20), paper);
}

TEST(OVPlaybackMarkerViewTest, LooksTheSameAsARecordingMarker) {
  OVPlaybackMarkerView marker;
  marker.resize(100, 40);
  marker.setPosition(0.5);
  const QImage playback = drawnOver(marker, Qt::black);
  marker.setIsRecordingMarker(true);
  EXPECT_TRUE(marker.isRecordingMarker());
  EXPECT_EQ(drawnOver(marker, Qt::black), playback);
}

TEST(OVPlaybackMarkerViewTest, LetsTheMouseThrough) {
  const OVPlaybackMarkerView marker;
  EXPECT_TRUE(marker.testAttribute(Qt::WA_TransparentForMouseEvents));
}

TEST(OVPlaybackMarkerViewTest, IsNamedForAssistiveTechnology) {
  OVPlaybackMarkerView marker;
  EXPECT_EQ(QAccessible::queryAccessibleInterface(&marker)->text(QAccessible::Name),
            "Playback marker");
}
