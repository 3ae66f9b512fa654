#include "displays/OVCircularVUView.h"

#include "displays/MeterFixture.h"
#include "displays/OVCircularVUDrawing.h"

namespace {

class OVCircularVUViewTest : public MeterFixture<OVCircularVUView> {
 protected:
  [[nodiscard]] QImage expected(const std::vector<float>& levels) const {
    return drawnPicture(view_.size(), 1.0, kPaper, [&](QPainter& painter) {
      OVCircularVUDrawing().draw(painter, view_.size(), levels);
    });
  }
};

}  // namespace

TEST_F(OVCircularVUViewTest, Polls30TimesASecond) {
  EXPECT_EQ(view_.pollingFrequency(), 30.0);
}

TEST_F(OVCircularVUViewTest, DrawsTheLevelsAsTheyAre) {
  source_->answer = {0.2F, 0.6F};
  view_.pollForData();
  EXPECT_EQ(view_.levelData(), source_->answer);
  EXPECT_EQ(drawn(), expected({0.2F, 0.6F}));
}

TEST_F(OVCircularVUViewTest, AMonoSourceDrawsASingleCircle) {
  source_->answer = {0.5F};
  view_.pollForData();
  EXPECT_EQ(drawn(), expected({0.5F}));
}

TEST_F(OVCircularVUViewTest, BeforeAnyLevelItDrawsTwoFaintCircles) {
  EXPECT_EQ(view_.levelData(), std::nullopt);
  EXPECT_EQ(drawn(), expected({0.0F, 0.0F}));
  EXPECT_EQ(view_.levelData(), (Levels{{0.0F, 0.0F}}));
}

TEST_F(OVCircularVUViewTest, AnEmptyAnswerDrawsTwoFaintCirclesWhenAsked) {
  source_->answer = std::vector<float>{};
  view_.pollForData();
  EXPECT_EQ(drawn(), expected({0.0F, 0.0F}));
  view_.resize(30, 90);
  view_.pollForData();
  EXPECT_EQ(drawn(), expected({0.0F, 0.0F})) << "in a column after the resize";
}
