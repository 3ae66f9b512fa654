#pragma once

#include "displays/OVCircularVUDrawing.h"
#include "displays/OVVUView.h"

/// The level meter of the recorder window: one circle per channel, its opacity following the level.
/// Polls 30 times a second. When it draws without levels, it substitutes two levels of silence and
/// keeps them.
///
/// Threads: main. Real-time: not safe.
class OVCircularVUView : public OVVUView {
  Q_OBJECT

 public:
  explicit OVCircularVUView(QWidget* parent = nullptr);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  OVCircularVUDrawing drawing_;
};
