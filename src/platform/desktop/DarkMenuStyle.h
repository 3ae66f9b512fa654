#pragma once

#include <QProxyStyle>

namespace platform {

/// Fusion, with menus whose outline and separators, and boxes to check whose outline, can be seen
/// in dark colours: Fusion draws them darker than their ground. Light ones are Fusion's own.
///
/// Threads: main. Real-time: not safe.
class DarkMenuStyle : public QProxyStyle {
  Q_OBJECT

 public:
  DarkMenuStyle();

  void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
  void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                   const QWidget* widget) const override;
};

}  // namespace platform
