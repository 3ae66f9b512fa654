#pragma once

#include "controls/buttons/OVTrackingButton.h"

/// A small red lamp that is visible only while it is lit: the recording was too loud. A click turns
/// it off; so do Ctrl+Return and assistive technology, as with every other button.
///
/// Threads: main. Real-time: not safe.
class OVClippingLamp : public OVTrackingButton {
  Q_OBJECT

 public:
  explicit OVClippingLamp(QWidget* parent = nullptr);

  /// Lights it and announces `reason` to assistive technology. `reason` is its tooltip.
  void light(const QString& reason);
  void turnOff();
  [[nodiscard]] bool isLit() const { return isVisibleTo(parentWidget()); }

 protected:
  void paintEvent(QPaintEvent* event) override;
};
