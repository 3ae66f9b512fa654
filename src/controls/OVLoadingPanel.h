#pragma once

#include <QLabel>

#include "controls/OVOverlayView.h"

/// The label beside the progress bar: small light text for a dark background.
///
/// Threads: main. Real-time: not safe.
class OVLoadingLabel : public QLabel {
  Q_OBJECT

 public:
  explicit OVLoadingLabel(QWidget* parent = nullptr);

 protected:
  void paintEvent(QPaintEvent* event) override;
};

/// The panel over the waveform that holds the progress bar and its label: an overlay on the
/// waveform's background colour, so that the marker's line does not cross the text. Its width fits
/// the text. The mouse passes through it.
///
/// Threads: main. Real-time: not safe.
class OVLoadingPanel : public OVOverlayView {
  Q_OBJECT

 public:
  explicit OVLoadingPanel(QWidget* parent = nullptr);

  /// Sets the current activity: the text of the label and the accessible name of the progress bar.
  void setActivity(const QString& activity);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  void fitTheWords();
};
