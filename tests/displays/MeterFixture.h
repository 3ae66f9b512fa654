#pragma once

#include <memory>
#include <optional>
#include <vector>

#include <gtest/gtest.h>
#include <QtTest>

#include "displays/OVVUView.h"
#include "support/MainLoop.h"
#include "support/PaintCounter.h"
#include "support/Pixels.h"

/// A data source that returns the levels set by the test.
class ScriptedLevels final : public OVVUViewDataSource {
 public:
  using Levels = std::optional<std::vector<float>>;

  Levels dataForVUView(QWidget* view) override {
    ++polls;
    askedBy = view;
    return answer;
  }

  Levels answer;
  int polls = 0;
  QWidget* askedBy = nullptr;
};

/// A meter of the given kind with a scripted source.
template <typename Meter>
class MeterFixture : public testing::Test {
 protected:
  using Levels = ScriptedLevels::Levels;

  MeterFixture() {
    view_.resize(60, 30);
    view_.setDatasource(source_);
  }

  /// What the view draws over paper of one colour.
  QImage drawn() {
    QImage screen = makePicture(view_.size(), 1.0, kPaper);
    view_.render(&screen, QPoint(), QRegion(), QWidget::DrawChildren);
    return screen;
  }

  /// Shows the view with its own timer stopped, so that only the test's polls redraw it.
  void showAtRest() {
    view_.setPollingFrequency(0.0);
    counter_.watch(&view_);
    view_.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&view_));
    ASSERT_TRUE(runMainLoopUntil([&] { return counter_.paints > 0; }));
    QCoreApplication::processEvents();
  }

  const QColor kPaper{20, 30, 60};
  std::shared_ptr<ScriptedLevels> source_ = std::make_shared<ScriptedLevels>();
  support::PaintCounter counter_;
  Meter view_;
};
