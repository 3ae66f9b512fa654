#pragma once

#include <QProxyStyle>

namespace platform {

/// Fusion, with a stronger contrast where it has too little: selected text and placeholders, the
/// outline of boxes to check, and, in dark colours, the outline and the separators of menus, which
/// Fusion draws darker than their ground.
///
/// Threads: main. Real-time: not safe.
class DialogStyle : public QProxyStyle {
  Q_OBJECT

 public:
  /// `hasFusionsColours` is false where the desktop has colours of its own.
  explicit DialogStyle(bool hasFusionsColours);

  /// Makes it the application's style in place of plain Fusion; the desktop's own style, or one
  /// that the user chose, stays. Before the first window, which would be drawn anew otherwise.
  static void install();

  /// What install() changed in the desktop's colours: nothing if the style or the colours are not
  /// Fusion's own. For QApplication::setPalette(), which takes the rest from the desktop.
  [[nodiscard]] static QPalette lightPalette();

  int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                QStyleHintReturn* returned) const override;
  void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
  void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                   const QWidget* widget) const override;

 private:
  bool hasFusionsColours_;
};

}  // namespace platform
