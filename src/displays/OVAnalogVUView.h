#pragma once

#include "displays/OVVUView.h"
#include "platform/views/NamedImage.h"

/// A level meter with one dial and needle per channel, over the image "vumeter.png". Polls 60 times
/// a second. Without levels it draws nothing.
///
/// The dials are placed side by side from the left edge on; to show all of n channels, the view
/// must be n times as wide as dialSize().
///
/// Threads: main. Real-time: not safe.
class OVAnalogVUView : public OVVUView {
  Q_OBJECT

 public:
  explicit OVAnalogVUView(QWidget* parent = nullptr);

  /// Width and height of one dial, in points.
  [[nodiscard]] QSizeF dialSize() const { return backgroundImage_.size(); }
  /// Two dials.
  [[nodiscard]] QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  platform::NamedImage backgroundImage_;  // fixed after construction
};
