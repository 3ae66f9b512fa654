#pragma once

#include <QImage>

#include "controls/buttons/OVTrackingButton.h"
#include "platform/views/NamedImage.h"

/// A button of the transport bar: a bezel with an icon centred on it. A push button unless
/// setIsSwitch(true) is called.
///
/// Every redraw is complete. The bezel shows whether the button is pressed; the icon changes only
/// if the button is also on. The button's superview must be a direct child of the window's content
/// view, see OVBezelFrameOfReference.
///
/// Threads: main. Real-time: not safe.
class OVTransportButton : public OVTrackingButton {
  Q_OBJECT

 public:
  explicit OVTransportButton(QWidget* parent = nullptr);

  /// The icon while the button is on, or off: the name of an image in the program's resources. An
  /// unknown name shows no icon. No redraw.
  void setOnImage(const QString& name);
  void setOffImage(const QString& name);

  /// Always null: images set by name are not returned.
  [[nodiscard]] QImage onImage() const { return onImage_; }
  [[nodiscard]] QImage offImage() const { return offImage_; }

  /// Opacity of the icon while the button is on, 0 to 1; initially 1. No redraw.
  [[nodiscard]] double alpha() const { return alpha_; }
  void setAlpha(double alpha) { alpha_ = alpha; }

  [[nodiscard]] bool isFlipped() const { return false; }
  void flipCoords() {}

 protected:
  void paintEvent(QPaintEvent* event) override;

  /// Draws the bezel into `frame`; y grows downward.
  virtual void drawBezel(QPainter& painter, const QRectF& frame) const;
  void drawImage(QPainter& painter) const;

 private:
  platform::NamedImage _onImage;
  platform::NamedImage _offImage;
  QImage onImage_;   // stays null
  QImage offImage_;  // stays null
  double alpha_ = 1.0;
};
