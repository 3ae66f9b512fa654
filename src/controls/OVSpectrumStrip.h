#pragma once

#include <optional>

#include <QMainWindow>
#include <QMargins>
#include <QObject>
#include <QPointer>
#include <QRect>
#include <QVariantAnimation>
#include <QWidget>

/// Shows and hides the strip below the transport bar, which holds the spectrum view, by making the
/// window higher at its bottom edge and lower again, in a quarter of a second. The views above keep
/// their size all the while, so that the waveform is not rendered anew on the way.
///
/// Hiding restores exactly the previous frame, whenever and however often the direction changes,
/// unless the user has moved or resized the window meanwhile: then it becomes lower by
/// as much as it had become higher.
///
/// A window whose strip would lie below the screen moves up for it, as far as there is room; what
/// then still lacks comes off the waveform. A maximised or full-screen window keeps its size, the
/// strip takes its height from the waveform, and the window's normal frame changes by what it
/// missed when the window returns to it.
///
/// Threads: main. Real-time: not safe.
class OVSpectrumStrip : public QObject {
  Q_OBJECT

 public:
  /// Height of the strip, points.
  static constexpr int kHeight = 200;
  /// Duration of showing or hiding, milliseconds; none where the desktop wants no animations.
  static constexpr int kDuration = 250;

  /// For a strip in the column of the window's central widget. Hidden at first.
  OVSpectrumStrip(QMainWindow* window, QWidget* strip);

  /// Begins to show or hide; does nothing if already there or on the way.
  void setShown(bool shown);
  [[nodiscard]] bool isShown() const { return shown_; }
  /// Whether the animation is running.
  [[nodiscard]] bool isMoving() const { return animation_.state() == QAbstractAnimation::Running; }

  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void startMoving();
  void stepTo(int height);
  void setStripHeight(int height);
  void place(const QRect& frame);
  void stateChanged();
  void returnToNormalFrame();
  void chooseFrames(const QRect& current);
  [[nodiscard]] QRect grown(const QRect& frame) const;
  [[nodiscard]] QRect shrunk(const QRect& frame) const;
  [[nodiscard]] QRect frameAt(int height) const;
  [[nodiscard]] bool keepsItsSize() const;

  QPointer<QMainWindow> window_;
  QPointer<QWidget> strip_;
  int minimumHeightWithout_;  // of the central widget, points
  QVariantAnimation animation_;
  bool shown_ = false;

  // Title bar and lower edge of the window as it stood last in its normal frame.
  QMargins decorations_;
  // The window's geometry at either end of the way, without its decorations.
  QRect hiddenFrame_;
  QRect shownFrame_;
  // What the window returns to from a state in which it could not follow.
  std::optional<QRect> normalFrame_;
};
