#pragma once

#include "controls/buttons/OVTransportButtonCell.h"

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
