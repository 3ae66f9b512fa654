#include "controls/buttons/OVBezelFrameOfReference.h"

#include <QMainWindow>

#include <gtest/gtest.h>

namespace {

QRectF covered(const QWidget& button) {
  const OVBezelFrameOfReference reference(button);
  return reference.toWidget.mapRect(reference.bezel);
}

TEST(OVBezelFrameOfReferenceTest, CoversTheButtonOfABarInTheContentView) {
  QMainWindow window;
  auto* content = new QWidget;
  window.setCentralWidget(content);
  QWidget bar(content);
  QWidget button(&bar);
  content->resize(640, 330);
  bar.setGeometry(12, 272, 600, 58);
  button.setGeometry(57, 13, 46, 32);
  EXPECT_EQ(covered(button), QRectF(0, 0, 46, 32));
}

TEST(OVBezelFrameOfReferenceTest, FollowsFromTheFramesOriginsAsTold) {
  QWidget content;
  QWidget bar(&content);
  QWidget button(&bar);
  content.resize(640, 330);
  bar.setGeometry(12, 270, 600, 50);  // from the bottom: y 10
  button.setGeometry(57, 13, 46, 32);
  const OVBezelFrameOfReference reference(button);
  EXPECT_EQ(reference.bezel, QRectF(12, -10, 46, 32));
  EXPECT_EQ(reference.toWidget.mapRect(reference.bezel), QRectF(0, 0, 46, 32));
}

TEST(OVBezelFrameOfReferenceTest, CoversAButtonThatIsTheContentsOwnChildOrAlone) {
  QWidget content;
  content.resize(200, 100);
  QWidget button(&content);
  button.setGeometry(57, 13, 46, 32);
  EXPECT_EQ(covered(button), QRectF(0, 0, 46, 32));
  QWidget alone;
  alone.resize(46, 32);
  EXPECT_EQ(covered(alone), QRectF(0, 0, 46, 32));
}

TEST(OVBezelFrameOfReferenceTest, AViewBetweenBarAndContentDisplacesTheBezel) {
  QWidget content;
  QWidget between(&content);
  QWidget bar(&between);
  QWidget button(&bar);
  content.resize(640, 330);
  between.setGeometry(5, 200, 600, 100);  // from the bottom: y 30
  bar.setGeometry(0, 0, 600, 100);
  button.setGeometry(57, 13, 46, 32);
  EXPECT_EQ(covered(button), QRectF(-5, 30, 46, 32));
}

}  // namespace
