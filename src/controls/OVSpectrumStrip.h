#pragma once

#include <optional>

#include <QMainWindow>
#include <QMargins>
#include <QObject>
#include <QPointer>
#include <QRect>
#include <QSize>
#include <QVariantAnimation>
#include <QWidget>

/// Shows and hides the strip below the transport bar, which holds the spectrum view, by extending
/// the window at its bottom edge and shrinking it again, in a quarter of a second. The views above
/// keep their size meanwhile, so that the waveform is not rendered again at every step.
///
/// Hiding restores exactly the previous frame, however often the direction changes on the way. If
/// the user has moved or resized the window, its height only shrinks by as much as it had grown.
///
/// A window whose strip would lie below the screen moves up as far as there is room; the height
/// still missing is taken from the waveform. A maximised or full-screen window keeps its size: the
/// strip takes its height from the waveform, and the window's normal frame is adjusted when the
/// window returns to it, wherever the desktop then puts it.
///
/// Threads: main. Real-time: not safe.
class OVSpectrumStrip : public QObject {
  Q_OBJECT

 public:
  /// Height of the strip, points.
  static constexpr int kHeight = 200;
  /// Duration of showing or hiding, milliseconds; none if the desktop has animations turned off.
  static constexpr int kDuration = 250;

  /// For a strip in the column of the window's central widget. Hidden at first.
  OVSpectrumStrip(QMainWindow* window, QWidget* strip);

  /// Begins to show or hide; does nothing if the strip is already there or on the way.
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
  void noteForReturn();
  void returnLater();
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

  // Title bar and lower edge of the window when it was last in its normal frame.
  QMargins decorations_;
  // The window's geometry at either end of the animation, without its decorations.
  QRect hiddenFrame_;
  QRect shownFrame_;
  // Where the animation was going when a maximised or full-screen state ended it.
  std::optional<QRect> normalFrame_;
  // Set if the strip differs between that state and the normal frame: the normal frame's size. Its
  // place is known when the desktop has restored it, since a title bar can be dragged down.
  std::optional<QSize> toggledFrom_;
  QSize filling_;  // of the window in that state; until it has changed, nothing is restored yet
};
