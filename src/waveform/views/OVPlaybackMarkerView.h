#pragma once

#include <QWidget>

/// The playback or recording marker: a transparent view laid over the waveform view as its child,
/// so that moving the marker copies a strip of the waveform's picture and never renders it again.
/// Mouse input passes through to the waveform. Setting a property does not redraw; call update().
///
/// Threads: main. Real-time: not safe.
class OVPlaybackMarkerView : public QWidget {
  Q_OBJECT

 public:
  explicit OVPlaybackMarkerView(QWidget* parent = nullptr);

  /// Position of the line, as a fraction of the width.
  [[nodiscard]] double position() const { return position_; }
  void setPosition(double position) { position_ = position; }

  /// The line's opacity, 0 to 1; never drawn fainter than 0.3.
  [[nodiscard]] double audioLevel() const { return audioLevel_; }
  void setAudioLevel(double audioLevel) { audioLevel_ = audioLevel; }

  /// Kept for the document; does not change the drawing.
  [[nodiscard]] bool isRecordingMarker() const { return isRecordingMarker_; }
  void setIsRecordingMarker(bool isRecordingMarker) { isRecordingMarker_ = isRecordingMarker; }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  double position_ = 0.0;
  double audioLevel_ = 1.0;
  bool isRecordingMarker_ = false;
};
