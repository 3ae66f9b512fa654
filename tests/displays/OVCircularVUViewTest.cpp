#include "displays/OVCircularVUView.h"

#include <limits>
#include <memory>
#include <optional>
#include <vector>

#include <gtest/gtest.h>
#include <QAccessible>
#include <QtTest>

#include "displays/OVCircularVUDrawing.h"
#include "support/MainLoop.h"
#include "support/Pixels.h"

namespace {

using Levels = std::optional<std::vector<float>>;

class ScriptedSource final : public OVVUViewDataSource {
 public:
  std::optional<std::vector<float>> dataForVUView(QWidget* view) override {
    ++polls;
    askedBy = view;
    return answer;
  }

  Levels answer;
  int polls = 0;
  QWidget* askedBy = nullptr;
};

class PaintCounter final : public QObject {
 public:
  int paints = 0;
  bool eventFilter(QObject*, QEvent* event) override {
    paints += event->type() == QEvent::Paint ? 1 : 0;
    return false;
  }
};

const QColor kPaper(20, 30, 60);

class CircularVUView : public testing::Test {
 protected:
  CircularVUView() {
    view_.resize(60, 30);
    view_.setDatasource(source_);
  }

  QImage drawn() {
    QImage screen = makePicture(view_.size(), 1.0, kPaper);
    view_.render(&screen, QPoint(), QRegion(), QWidget::DrawChildren);
    return screen;
  }

  [[nodiscard]] QImage expected(const std::vector<float>& levels) const {
    return drawnPicture(view_.size(), 1.0, kPaper,
                        [&](QPainter& painter) { drawCircularVU(painter, view_.size(), levels); });
  }

  /// Shows the view with its own timer at rest, so that nothing but a test's polls redraws it.
  void showAtRest() {
    view_.setPollingFrequency(0.0);
    view_.installEventFilter(&counter_);
    view_.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&view_));
    ASSERT_TRUE(runMainLoopUntil([&] { return counter_.paints > 0; }));
    QCoreApplication::processEvents();
  }

  std::shared_ptr<ScriptedSource> source_ = std::make_shared<ScriptedSource>();
  PaintCounter counter_;
  OVCircularVUView view_;
};

}  // namespace

TEST_F(CircularVUView, Polls30TimesASecondFromTheStart) {
  EXPECT_EQ(view_.pollingFrequency(), 30.0);
  EXPECT_TRUE(runMainLoopUntil([&] { return source_->polls >= 3; }));
  EXPECT_EQ(source_->askedBy, &view_);
}

TEST_F(CircularVUView, AnotherPollingFrequencyRestartsTheTimer) {
  view_.setPollingFrequency(0.001);
  view_.setPollingFrequency(500.0);
  EXPECT_EQ(view_.pollingFrequency(), 500.0);
  EXPECT_TRUE(runMainLoopUntil([&] { return source_->polls >= 3; }));
}

TEST_F(CircularVUView, FrequenciesThatMakeNoIntervalStopThePolling) {
  for (const double frequency : {0.0, -1.0, std::numeric_limits<double>::quiet_NaN()}) {
    view_.setPollingFrequency(frequency);
    QCoreApplication::processEvents();
    EXPECT_EQ(source_->polls, 0);
  }
  view_.setPollingFrequency(1e-300);
  view_.setPollingFrequency(std::numeric_limits<double>::infinity());
  EXPECT_TRUE(runMainLoopUntil([&] { return source_->polls >= 1; }));
}

TEST_F(CircularVUView, DrawsTheLevelsAsTheyAre) {
  source_->answer = {0.2F, 0.6F};
  view_.pollForData();
  EXPECT_EQ(view_.levelData(), source_->answer);
  EXPECT_EQ(drawn(), expected({0.2F, 0.6F}));
}

TEST_F(CircularVUView, AMonoSourceDrawsASingleCircle) {
  source_->answer = {0.5F};
  view_.pollForData();
  EXPECT_EQ(drawn(), expected({0.5F}));
}

TEST_F(CircularVUView, BeforeAnyLevelItDrawsTwoFaintCircles) {
  EXPECT_EQ(view_.levelData(), std::nullopt);
  EXPECT_EQ(drawn(), expected({0.0F, 0.0F}));
  EXPECT_EQ(view_.levelData(), (Levels{{0.0F, 0.0F}}));
}

TEST_F(CircularVUView, AnEmptyAnswerDrawsTwoFaintCirclesWhenAsked) {
  source_->answer = std::vector<float>{};
  view_.pollForData();
  EXPECT_EQ(drawn(), expected({0.0F, 0.0F}));
  view_.resize(30, 90);
  view_.pollForData();
  EXPECT_EQ(drawn(), expected({0.0F, 0.0F})) << "in a column after the resize";
}

TEST_F(CircularVUView, LevelsAskForARedrawOnALaterPass) {
  showAtRest();
  source_->answer = {0.2F, 0.6F};
  const int before = counter_.paints;
  view_.pollForData();
  EXPECT_EQ(counter_.paints, before);
  EXPECT_TRUE(runMainLoopUntil([&] { return counter_.paints > before; }));
}

TEST_F(CircularVUView, WithoutLevelsTheLastPictureStays) {
  showAtRest();
  source_->answer = {0.2F, 0.6F};
  view_.pollForData();
  QCoreApplication::processEvents();
  const int before = counter_.paints;
  for (const Levels& nothing : {Levels(), Levels(std::vector<float>())}) {
    source_->answer = nothing;
    view_.pollForData();
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents();
    EXPECT_EQ(counter_.paints, before);
    EXPECT_EQ(view_.levelData(), nothing);
  }
}

TEST_F(CircularVUView, ASourceThatIsGoneAnswersNothing) {
  source_->answer = {0.2F, 0.6F};
  view_.pollForData();
  source_.reset();
  EXPECT_TRUE(view_.datasource().expired());
  view_.pollForData();
  EXPECT_EQ(view_.levelData(), std::nullopt);
}

TEST_F(CircularVUView, ASourceMayBeTakenAway) {
  view_.setDatasource({});
  view_.pollForData();
  EXPECT_EQ(source_->polls, 0);
}

TEST_F(CircularVUView, KeepsItsDelegateWithoutOwningIt) {
  auto delegate = std::make_shared<OVVUViewDelegate>();
  view_.setDelegate(delegate);
  EXPECT_EQ(view_.delegate().lock(), delegate);
  delegate.reset();
  EXPECT_TRUE(view_.delegate().expired());
}

TEST_F(CircularVUView, IsNamedForAssistiveTechnology) {
  QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(&view_);
  ASSERT_NE(accessible, nullptr);
  EXPECT_EQ(accessible->text(QAccessible::Name), "Level meter");
  EXPECT_EQ(accessible->role(), QAccessible::Indicator);
}
