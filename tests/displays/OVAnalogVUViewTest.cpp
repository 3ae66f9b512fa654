#include "displays/OVAnalogVUView.h"

#include "displays/MeterFixture.h"
#include "displays/OVAnalogVUDrawing.h"

namespace {

class OVAnalogVUViewTest : public MeterFixture<OVAnalogVUView> {
 protected:
  OVAnalogVUViewTest() { view_.resize(view_.sizeHint()); }

  [[nodiscard]] QImage expected(const std::vector<float>& levels) const {
    const platform::NamedImage dial(QStringLiteral("vumeter.png"));
    return drawnPicture(view_.size(), 1.0, kPaper,
                        [&](QPainter& painter) { drawAnalogVU(painter, dial, levels); });
  }
  [[nodiscard]] QImage blank() const { return makePicture(view_.size(), 1.0, kPaper); }
};

}  // namespace

TEST_F(OVAnalogVUViewTest, Polls60TimesASecond) {
  EXPECT_EQ(view_.pollingFrequency(), 60.0);
}

TEST_F(OVAnalogVUViewTest, ItsDialIs220PointsWideAndOpaqueAtBothSizes) {
  EXPECT_EQ(view_.dialSize().width(), 220.0);
  EXPECT_EQ(view_.sizeHint(), QSize(440, static_cast<int>(view_.dialSize().height())));
  const platform::NamedImage dial(QStringLiteral("vumeter.png"));
  for (const double ratio : {1.0, 2.0}) {
    const QImage& image = dial.forRatio(ratio);
    ASSERT_EQ(image.width(), 220 * static_cast<int>(ratio));
    for (int y = 0; y < image.height(); ++y) {
      for (int x = 0; x < image.width(); ++x) {
        ASSERT_EQ(image.pixelColor(x, y).alpha(), 255) << x << ", " << y;
      }
    }
  }
}

TEST_F(OVAnalogVUViewTest, BeforeAnyLevelItDrawsNothing) {
  EXPECT_EQ(drawn(), blank());
  EXPECT_EQ(view_.levelData(), std::nullopt);
}

TEST_F(OVAnalogVUViewTest, AnEmptyAnswerDrawsNothing) {
  source_->answer = std::vector<float>{};
  view_.pollForData();
  EXPECT_EQ(drawn(), blank());
}

TEST_F(OVAnalogVUViewTest, DrawsTheLevelsAsTheyAre) {
  source_->answer = {0.2F, 1.5F};
  view_.pollForData();
  EXPECT_EQ(drawn(), expected({0.2F, 1.5F}));
}

TEST_F(OVAnalogVUViewTest, AMonoSourceDrawsASingleDial) {
  source_->answer = {0.5F};
  view_.pollForData();
  EXPECT_EQ(drawn(), expected({0.5F}));
  EXPECT_EQ(drawn().pixelColor(221, 1), kPaper);
}
