#pragma once

#include <memory>

#include <QFont>
#include <QString>
#include <QWidget>

#include "platform/mainloop/Timer.h"
#include "platform/views/KeptPicture.h"

/// One quiet line of text over the lower edge of the waveform: small light words on a rounded panel
/// that is as wide as they need, at the left. A text too long for the view is elided. It fades in
/// and out, in few steps; while it does neither, it runs no timer. Hidden without a text. The mouse
/// passes through it.
///
/// To assistive technology, the whole text is its name.
///
/// Threads: main. Real-time: not safe.
class OVNoticeView : public QWidget {
  Q_OBJECT

 public:
  static constexpr int kHeight = 20;  ///< points
  /// Frames from hidden to fully shown and back.
  static constexpr int kFadeFrames = 6;

  explicit OVNoticeView(QWidget* parent = nullptr);

  /// Shows a text, or lets the shown one fade if `text` is empty. Another text takes the place of
  /// the shown one at once. With `isNews`, it is announced to assistive technology.
  void setText(const QString& text, bool isNews = false);
  /// The text to show. One that fades is no longer counted.
  [[nodiscard]] const QString& text() const { return text_; }

  /// The next frame of the fade; the timer's tick.
  void fade();
  [[nodiscard]] bool isFading() const { return timer_ != nullptr; }
  /// 0 hidden, 1 fully shown.
  [[nodiscard]] double opacity() const;

  /// The panel around the drawn text, in the view's coordinates; empty without a text.
  [[nodiscard]] QRect panel() const;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  [[nodiscard]] bool isAnimated() const;
  [[nodiscard]] int lastFrame() const { return text_.isEmpty() ? 0 : kFadeFrames; }
  [[nodiscard]] QString line() const;
  void showFrame(int frame);
  void draw(QPainter& painter, const QRect& bounds) const;

  QFont font_;
  QString text_;
  QString drawn_;                  // the text, or the one that fades
  int frame_ = 0;                  // of the fade, 0 to kFadeFrames
  platform::KeptPicture picture_;  // of `drawn_`: the waveform below is redrawn 25 times a second
  std::unique_ptr<platform::Timer> timer_;
};
