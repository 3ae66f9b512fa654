#pragma once

#include <QPushButton>

/// A platform button with the bezel of the transport buttons. Keyboard, focus, text and icon are
/// the platform's; the bezel is drawn here and shows whether the button is pressed.
///
/// Text is drawn dark whatever the desktop's colours, since the bezel is always light.
///
/// Threads: main. Real-time: not safe.
class OVTransportButtonCell : public QPushButton {
  Q_OBJECT

 public:
  explicit OVTransportButtonCell(QWidget* parent = nullptr);
  explicit OVTransportButtonCell(const QString& text, QWidget* parent = nullptr);

  /// Whether the bezel is drawn pressed: while the mouse or a key holds the button down.
  [[nodiscard]] bool isHighlighted() const { return isDown(); }
  void setHighlighted(bool isHighlighted) { setDown(isHighlighted); }

  /// Only a reported value: the background still shows at the corners.
  [[nodiscard]] virtual bool isOpaque() const { return true; }

  /// Draws the bezel into `frame` of a view; y grows downward. The painter must have antialiasing
  /// on.
  virtual void drawBezelWithFrame(QPainter& painter, const QRectF& frame,
                                  const QWidget* inView) const;

 protected:
  void paintEvent(QPaintEvent* event) override;
};

/// A platform button with the bezel of the first transport button: a half circle at the left end.
///
/// Threads: main. Real-time: not safe.
class OVLeftTransportButtonCell : public OVTransportButtonCell {
  Q_OBJECT

 public:
  using OVTransportButtonCell::OVTransportButtonCell;

  [[nodiscard]] bool isOpaque() const override { return false; }
  void drawBezelWithFrame(QPainter& painter, const QRectF& frame,
                          const QWidget* inView) const override;
};

/// A platform button with the bezel of the last transport button: a half circle at the right end.
///
/// Threads: main. Real-time: not safe.
class OVRightTransportButtonCell : public OVTransportButtonCell {
  Q_OBJECT

 public:
  using OVTransportButtonCell::OVTransportButtonCell;

  [[nodiscard]] bool isOpaque() const override { return false; }
  void drawBezelWithFrame(QPainter& painter, const QRectF& frame,
                          const QWidget* inView) const override;
};
