#pragma once

#include <QPainterPath>
#include <QWidget>

/// A faint rounded panel that lightens what lies below it: white at alpha 0.1, with a corner radius
/// of 6 points or half the smaller side, whichever is less. The mouse passes through it.
///
/// Threads: main. Real-time: not safe.
class OVOverlayView : public QWidget {
  Q_OBJECT

 public:
  explicit OVOverlayView(QWidget* parent = nullptr);

  /// The corner radius of a panel of this size, in points.
  [[nodiscard]] static qreal cornerRadius(const QSizeF& size);
  [[nodiscard]] static QPainterPath outline(const QRectF& bounds);

  /// Draws the panel over `bounds`.
  static void draw(QPainter& painter, const QRectF& bounds);
  /// Draws it on the waveform's background colour, nearly opaque, so that light text on it can be
  /// read over anything.
  static void drawOnGround(QPainter& painter, const QRectF& bounds);

 protected:
  void paintEvent(QPaintEvent* event) override;
};
