#pragma once

#include <QWidget>

/// The light grey bar behind the transport buttons. A resize redraws all of it, since its gradient
/// spans the height.
///
/// Threads: main. Real-time: not safe.
class OVTransportBackgroundView : public QWidget {
  Q_OBJECT

 public:
  explicit OVTransportBackgroundView(QWidget* parent = nullptr);

  /// Whether a dark line of 1.3 points along the bottom edge separates the bar from the spectrum
  /// below it; initially false. No redraw.
  [[nodiscard]] bool renderBottomShadow() const { return renderBottomShadow_; }
  void setRenderBottomShadow(bool render) { renderBottomShadow_ = render; }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  bool renderBottomShadow_ = false;
};
