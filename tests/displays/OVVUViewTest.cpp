// The common behaviour of both meters.
#include "displays/OVVUView.h"

#include <limits>

#include <QAccessible>

#include "displays/MeterFixture.h"
#include "displays/OVAnalogVUView.h"
#include "displays/OVCircularVUView.h"

template <typename Meter>
class OVVUViewTest : public MeterFixture<Meter> {};

using Meters = testing::Types<OVCircularVUView, OVAnalogVUView>;

class MeterNames {
 public:
  template <typename Meter>
  static std::string GetName(int) {
    return std::is_same_v<Meter, OVCircularVUView> ? "Circular" : "Analog";
  }
};
TYPED_TEST_SUITE(OVVUViewTest, Meters, MeterNames);

TYPED_TEST(OVVUViewTest, PollsFromTheStartAndSaysWhoAsks) {
  EXPECT_TRUE(runMainLoopUntil([&] { return this->source_->polls >= 3; }));
  EXPECT_EQ(this->source_->askedBy, &this->view_);
}

TYPED_TEST(OVVUViewTest, AnotherPollingFrequencyRestartsTheTimer) {
  this->view_.setPollingFrequency(0.001);
  this->view_.setPollingFrequency(500.0);
  EXPECT_EQ(this->view_.pollingFrequency(), 500.0);
  EXPECT_TRUE(runMainLoopUntil([&] { return this->source_->polls >= 3; }));
}

TYPED_TEST(OVVUViewTest, FrequenciesThatMakeNoIntervalStopThePolling) {
  for (const double frequency : {0.0, -1.0, std::numeric_limits<double>::quiet_NaN()}) {
    this->view_.setPollingFrequency(frequency);
    QCoreApplication::processEvents();
    EXPECT_EQ(this->source_->polls, 0);
  }
  this->view_.setPollingFrequency(1e-300);
  this->view_.setPollingFrequency(std::numeric_limits<double>::infinity());
  EXPECT_TRUE(runMainLoopUntil([&] { return this->source_->polls >= 1; }));
}

TYPED_TEST(OVVUViewTest, LevelsAskForARedrawOnALaterPass) {
  this->showAtRest();
  this->source_->answer = {0.2F, 0.6F};
  const int before = this->counter_.paints;
  this->view_.pollForData();
  EXPECT_EQ(this->counter_.paints, before);
  EXPECT_TRUE(runMainLoopUntil([&] { return this->counter_.paints > before; }));
}

TYPED_TEST(OVVUViewTest, WithoutLevelsTheLastPictureStays) {
  this->showAtRest();
  this->source_->answer = {0.2F, 0.6F};
  this->view_.pollForData();
  QCoreApplication::processEvents();
  const int before = this->counter_.paints;
  for (const auto& nothing :
       {ScriptedLevels::Levels(), ScriptedLevels::Levels(std::vector<float>())}) {
    this->source_->answer = nothing;
    this->view_.pollForData();
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents();
    EXPECT_EQ(this->counter_.paints, before);
    EXPECT_EQ(this->view_.levelData(), nothing);
  }
}

TYPED_TEST(OVVUViewTest, ASourceThatIsGoneAnswersNothing) {
  this->source_->answer = {0.2F, 0.6F};
  this->view_.pollForData();
  this->source_.reset();
  EXPECT_TRUE(this->view_.datasource().expired());
  this->view_.pollForData();
  EXPECT_EQ(this->view_.levelData(), std::nullopt);
}

TYPED_TEST(OVVUViewTest, ASourceMayBeTakenAway) {
  this->view_.setDatasource({});
  this->view_.pollForData();
  EXPECT_EQ(this->source_->polls, 0);
}

TYPED_TEST(OVVUViewTest, KeepsItsDelegateWithoutOwningIt) {
  auto delegate = std::make_shared<OVVUViewDelegate>();
  this->view_.setDelegate(delegate);
  EXPECT_EQ(this->view_.delegate().lock(), delegate);
  delegate.reset();
  EXPECT_TRUE(this->view_.delegate().expired());
}

TYPED_TEST(OVVUViewTest, IsNamedForAssistiveTechnology) {
  QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(&this->view_);
  ASSERT_NE(accessible, nullptr);
  EXPECT_EQ(accessible->text(QAccessible::Name), "Level meter");
  EXPECT_EQ(accessible->role(), QAccessible::Indicator);
}
