#pragma once

#include "controls/buttons/OVTrackingButton.h"
#include "platform/views/NamedImage.h"

/// A button that is only a picture, with a different one while the mouse is over it. A switch
/// unless setIsSwitch(false) is called. It looks the same when disabled, and then ignores the mouse
/// entering or leaving: if disabled under the mouse, it keeps its hovering state.
///
/// Threads: main. Real-time: not safe.
class OVHoverButton : public OVTrackingButton {
  Q_OBJECT

 public:
  explicit OVHoverButton(QWidget* parent = nullptr);

  [[nodiscard]] bool isHovering() const { return isHovering_; }

  /// The picture while on; while off; while off with the mouse over it. Each is the name of an
  /// image in the program's resources. No redraw.
  void setOnImage(const QString& name);
  void setOffImage(const QString& name);
  void setHoverImage(const QString& name);

 protected:
  void enterEvent(QEnterEvent* event) override;
  void leaveEvent(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  void setHovering(bool isHovering);
  void drawImage(QPainter& painter) const;

  platform::NamedImage onImage_;
  platform::NamedImage offImage_;
  platform::NamedImage hoverImage_;
  bool isHovering_ = false;
};
