#pragma once

#include <cmath>
#include <memory>

#include <QCoreApplication>
#include <QImage>
#include <QPainter>
#include <QTest>
#include <QWidget>

#include "controls/OVTransportBackgroundView.h"

/// A window with the bar at the bottom, as buttons need it: content 320 x 158, the bar its last 58
/// points. Mouse events are sent through the window system, so that a press grabs the mouse as it
/// does for a user.
class ControlsWindow {
 public:
  ControlsWindow() {
    content_.resize(320, 158);
    bar_->setGeometry(0, 100, 320, 58);
  }

  [[nodiscard]] QWidget* bar() { return bar_; }

  void show() {
    content_.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&content_));
  }

  // Points are in the coordinates of `view`.
  void press(QWidget* view, QPoint at, Qt::MouseButton button = Qt::LeftButton) {
    QTest::mousePress(content_.windowHandle(), button, {}, view->mapTo(&content_, at));
  }
  void moveTo(QWidget* view, QPoint at) {
    QTest::mouseMove(content_.windowHandle(), view->mapTo(&content_, at));
  }
  void release(QWidget* view, QPoint at, Qt::MouseButton button = Qt::LeftButton) {
    QTest::mouseRelease(content_.windowHandle(), button, {}, view->mapTo(&content_, at));
  }
  void click(QWidget* view, QPoint at) {
    press(view, at);
    release(view, at);
  }

  /// The window in the rectangle of `view`, on a screen of `ratio` pixels per point. The picture
  /// excludes pixels that the rectangle covers only in part.
  [[nodiscard]] QImage picture(const QWidget* view, double ratio = 1.0) {
    const QSizeF pixels = QSizeF(content_.size()) * ratio;
    QImage whole(static_cast<int>(std::ceil(pixels.width())),
                 static_cast<int>(std::ceil(pixels.height())), QImage::Format_ARGB32_Premultiplied);
    whole.setDevicePixelRatio(ratio);
    whole.fill(Qt::white);
    QPainter painter(&whole);
    content_.render(&painter);
    painter.end();
    const QPointF topLeft = QPointF(view->mapTo(&content_, QPoint())) * ratio;
    const QPointF bottomRight = topLeft + QPointF(view->width(), view->height()) * ratio;
    const QPoint first(static_cast<int>(std::ceil(topLeft.x())),
                       static_cast<int>(std::ceil(topLeft.y())));
    const QPoint end(static_cast<int>(bottomRight.x()), static_cast<int>(bottomRight.y()));
    return whole.copy(QRect(first, end - QPoint(1, 1)));
  }

 private:
  QWidget content_;
  OVTransportBackgroundView* bar_ = new OVTransportBackgroundView(&content_);
};

/// Counts how often a view is painted.
class PaintCounter : public QObject {
 public:
  explicit PaintCounter(QWidget* view) : view_(view) { view->installEventFilter(this); }

  /// Paints since the last call, including every redraw requested before this one.
  [[nodiscard]] int take() {
    // A marker: the window paints all requested redraws together, so once this one is painted, the
    // others are too.
    sawMarker_ = false;
    QWidget* marker = view_->parentWidget();
    marker->installEventFilter(this);
    marker->update(QRect(0, 0, 1, 1));
    EXPECT_TRUE(QTest::qWaitFor([this] { return sawMarker_; }));
    marker->removeEventFilter(this);
    return std::exchange(count_, 0);
  }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() == QEvent::Paint) {
      (watched == view_ ? count_ : markers_) += 1;
      sawMarker_ = sawMarker_ || watched != view_;
    }
    return QObject::eventFilter(watched, event);
  }

 private:
  QWidget* view_;
  int count_ = 0;
  int markers_ = 0;
  bool sawMarker_ = false;
};
