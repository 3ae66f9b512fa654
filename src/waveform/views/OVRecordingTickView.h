#pragma once

#include <QString>
#include <QWidget>

/// Shows where the next recording goes: a transparent view laid over the waveform view as its
/// child, beside the marker's, which draws one small red wedge at its upper edge. Hidden, it takes
/// no part in any redraw. Mouse input passes through to the waveform.
///
/// Threads: main. Real-time: not safe.
class OVRecordingTickView : public QWidget {
  Q_OBJECT
  Q_PROPERTY(QString accessibleValue READ placeText)

 public:
  explicit OVRecordingTickView(QWidget* parent = nullptr);

  /// The place, as a fraction of the width. Setting another one redraws where the tick was and
  /// where it is.
  [[nodiscard]] double position() const { return position_; }
  void setPosition(double position);

  /// The place in words, for assistive technology.
  [[nodiscard]] const QString& placeText() const { return placeText_; }
  void setPlaceText(const QString& text) { placeText_ = text; }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  [[nodiscard]] QRect strip() const;

  double position_ = 0.0;
  QString placeText_;
};
