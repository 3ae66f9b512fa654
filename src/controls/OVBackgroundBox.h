#pragma once

#include <QFrame>

/// A box with the look of the panel behind the transport buttons.
///
/// Threads: main. Real-time: not safe.
class OVBackgroundBox : public QFrame {
  Q_OBJECT

 public:
  explicit OVBackgroundBox(QWidget* parent = nullptr);

  [[nodiscard]] bool isOpaque() const { return true; }

 protected:
  void paintEvent(QPaintEvent* event) override;
};
