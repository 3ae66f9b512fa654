#pragma once

#include <QImage>

#include "controls/buttons/OVTrackingButton.h"
#include "platform/views/NamedImage.h"

/// A button of the transport bar: a bezel of its own with an icon centred on it. A push button
/// unless setIsSwitch(true) is called.
///
/// Every redraw is complete. While it is pressed the bezel shows it; the icon itself
/// changes only when the button is on as well. It must be a direct child of a view that is a
/// direct child of the window's content view, see OVBezelFrameOfReference.
///
/// Threads: main. Real-time: not safe.
class OVTransportButton : public OVTrackingButton {
  Q_OBJECT

 public:
  explicit OVTransportButton(QWidget* parent = nullptr);

  /// The icon while the button is on, or off: the name of an image in the program's resources. An
  /// unknown name shows no icon. No redraw is requested.
  void setOnImage(const QString& name);
  void setOffImage(const QString& name);

  /// Always null: images set by name are not returned.
  [[nodiscard]] QImage onImage() const { return onImage_; }
  [[nodiscard]] QImage offImage() const { return offImage_; }

  /// Opacity of the icon while the button is on, 0 to 1; 1 at first. No redraw.
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
