#pragma once

#include <QEvent>
#include <QObject>
#include <QWidget>

namespace support {

/// Counts the paint events of the widgets it watches.
///
/// Threads: main.
class PaintCounter final : public QObject {
 public:
  PaintCounter() = default;
  explicit PaintCounter(QWidget* view) { watch(view); }

  void watch(QWidget* view) { view->installEventFilter(this); }

  bool eventFilter(QObject*, QEvent* event) override {
    paints += event->type() == QEvent::Paint ? 1 : 0;
    return false;
  }

  int paints = 0;
};

}  // namespace support
