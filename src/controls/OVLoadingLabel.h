#pragma once

#include <QLabel>

/// The words beside the progress bar that say what goes on, in small light letters for a dark
/// ground.
///
/// Threads: main. Real-time: not safe.
class OVLoadingLabel : public QLabel {
  Q_OBJECT

 public:
  explicit OVLoadingLabel(QWidget* parent = nullptr);

 protected:
  void paintEvent(QPaintEvent* event) override;
};
