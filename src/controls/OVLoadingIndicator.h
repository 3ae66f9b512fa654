#pragma once

#include <QBasicTimer>
#include <QProgressBar>

/// The thin progress bar shown while a file is loaded or saved or the waveform is regenerated: a
/// pill of the waveform's teal over an overlay panel. If minimum equals maximum, the amount of work
/// is unknown, and a short piece moves back and forth instead; only then, and while the bar is
/// visible, a timer runs.
///
/// Threads: main. Real-time: not safe.
class OVLoadingIndicator : public QProgressBar {
  Q_OBJECT

 public:
  explicit OVLoadingIndicator(QWidget* parent = nullptr);

  [[nodiscard]] QSize sizeHint() const override;
  [[nodiscard]] QSize minimumSizeHint() const override;

  /// Whether the moving piece is animated now.
  [[nodiscard]] bool isAnimating() const { return timer_.isActive(); }

 protected:
  void paintEvent(QPaintEvent* event) override;
  void timerEvent(QTimerEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;

 private:
  [[nodiscard]] bool isIndeterminate() const { return minimum() == maximum(); }
  void adjustTimer();
  [[nodiscard]] QRectF filledRect() const;

  QBasicTimer timer_;
  int phase_ = 0;  // steps into the moving piece's cycle
};
