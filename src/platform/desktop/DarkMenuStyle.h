#pragma once

#include <QProxyStyle>

namespace platform {

/// Fusion, with menus whose outline and separators can be seen in dark colours: Fusion draws both
/// darker than the menu's ground. Light menus are Fusion's own.
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
