#pragma once

#include <QWidget>

#include "platform/views/KeptPicture.h"

/// The dark well in the transport bar that holds the meter and the time, whose light colours would
/// be unreadable on the bar itself. It has the shades of the waveform's background, a corner radius
/// of 5 points and a faint light rim below, as if sunk into the bar.
///
/// Threads: main. Real-time: not safe.
class OVDisplayWell : public QWidget {
  Q_OBJECT

 public:
  explicit OVDisplayWell(QWidget* parent = nullptr);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  platform::KeptPicture
      picture_;  // the meter and the time above it change 25 and 30 times a second
};
