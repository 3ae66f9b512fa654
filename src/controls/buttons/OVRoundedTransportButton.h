#pragma once

#include <cstdint>

#include "controls/buttons/OVTransportButton.h"

/// The first or last button of the transport bar, whose bezel ends in a half circle on one side.
///
/// Threads: main. Real-time: not safe.
class OVRoundedTransportButton : public OVTransportButton {
  Q_OBJECT

 public:
  using OVTransportButton::OVTransportButton;

  /// 1 rounds the left end, any other value the right one; initially 0. No redraw.
  [[nodiscard]] std::int32_t type() const { return type_; }
  void setType(std::int32_t type) { type_ = type; }

 protected:
  void drawBezel(QPainter& painter, const QRectF& frame) const override;

 private:
  std::int32_t type_ = 0;
};
