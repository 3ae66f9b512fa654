#pragma once

#include <QLabel>

#include "controls/OVOverlayView.h"

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

/// The panel over the waveform that holds the progress bar and the words beside it: an overlay on a
/// ground of the waveform's own, so that the marker's line does not cross the words. It is as wide
/// as the words need. The mouse passes through it.
///
/// Threads: main. Real-time: not safe.
class OVLoadingPanel : public OVOverlayView {
  Q_OBJECT

 public:
  explicit OVLoadingPanel(QWidget* parent = nullptr);

  /// Says what goes on, to who looks and to who listens: the label inside shows it, and the
  /// progress bar inside bears it as its name.
  void setActivity(const QString& activity);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  void fitTheWords();
};
