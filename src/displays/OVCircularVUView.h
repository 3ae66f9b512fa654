#pragma once

#include "displays/OVVUView.h"

/// The level meter of the recorder window: one circle a channel, its opacity following the level.
/// Polls 30 times a second. Asked to draw without any level, it draws two of silence and keeps
/// those as its levels.
///
/// Threads: main. Real-time: not safe.
class OVCircularVUView : public OVVUView {
  Q_OBJECT

 public:
  explicit OVCircularVUView(QWidget* parent = nullptr);

 protected:
  void paintEvent(QPaintEvent* event) override;
};
