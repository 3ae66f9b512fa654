#include "platform/desktop/DialogStyle.h"

#include <QApplication>
#include <QPainter>
#include <QPalette>
#include <QStyleOptionMenuItem>

namespace platform {
namespace {

constexpr int kSeparatorMargin = 5;    // points, left and right
constexpr float kLineStrength = 0.3F;  // of the text's colour over the ground
constexpr float kBoxStrength = 0.5F;
// White text has a contrast of 5.5 : 1 on it; Fusion's own blue gives 3.7 : 1.
constexpr QColor kHighlight(28, 110, 164);
constexpr float kPlaceholderStrength = 0.6F;  // of the text's colour

bool isDark(const QPalette& palette) {
  return palette.color(QPalette::Window).lightness() <
         palette.color(QPalette::WindowText).lightness();
}

QColor lineColor(const QPalette& palette, float strength = kLineStrength) {
  QColor color = palette.color(QPalette::WindowText);
  color.setAlphaF(strength);
  return color;
}

bool isPlainSeparator(const QStyleOption* option) {
  const auto* const item = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
  return item != nullptr && item->menuItemType == QStyleOptionMenuItem::Separator &&
         item->text.isEmpty();
}

}  // namespace

DialogStyle::DialogStyle(bool hasFusionsColours)
    : QProxyStyle(QStringLiteral("fusion")), hasFusionsColours_(hasFusionsColours) {}

void DialogStyle::install() {
  if (QApplication::style()->name() != QLatin1String("fusion")) {
    return;
  }
  const QPalette fusions = QApplication::style()->standardPalette();
  const bool isFusions =
      QApplication::palette().color(QPalette::Highlight) == fusions.color(QPalette::Highlight);
  auto* const style = new DialogStyle(isFusions);
  style->setParent(QApplication::instance());  // which setStyle() does too: clang-tidy asks for it
  QApplication::setStyle(style);
  QApplication::setPalette(lightPalette());
}

QPalette DialogStyle::lightPalette() {
  const auto* const style = qobject_cast<const DialogStyle*>(QApplication::style());
  QPalette palette;
  palette.setResolveMask(0);
  if (style == nullptr || !style->hasFusionsColours_) {
    return palette;
  }
  const QPalette fusions = style->standardPalette();
  for (const auto group : {QPalette::Active, QPalette::Inactive}) {
    palette.setColor(group, QPalette::Highlight, kHighlight);
    QColor placeholder = fusions.color(group, QPalette::Text);
    placeholder.setAlphaF(kPlaceholderStrength);
    palette.setColor(group, QPalette::PlaceholderText, placeholder);
  }
  return palette;
}

// An etched text has a second, lighter one beside it, which in dark menus is the stronger of both.
int DialogStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                           QStyleHintReturn* returned) const {
  return hint == SH_EtchDisabledText ? 0 : QProxyStyle::styleHint(hint, option, widget, returned);
}

void DialogStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option,
                                QPainter* painter, const QWidget* widget) const {
  QProxyStyle::drawPrimitive(element, option, painter, widget);
  const bool isBox = element == PE_IndicatorCheckBox;
  if (isBox || (element == PE_PanelMenu && isDark(option->palette))) {
    painter->save();
    painter->setPen(lineColor(option->palette, isBox ? kBoxStrength : kLineStrength));
    painter->setBrush(Qt::NoBrush);
    painter->drawRect(option->rect.adjusted(0, 0, -1, -1));
    painter->restore();
  }
}

void DialogStyle::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                              const QWidget* widget) const {
  if (element != CE_MenuItem || !isDark(option->palette) || !isPlainSeparator(option)) {
    QProxyStyle::drawControl(element, option, painter, widget);
    return;
  }
  const QRect& row = option->rect;
  painter->fillRect(row.left() + kSeparatorMargin, row.center().y(),
                    row.width() - 2 * kSeparatorMargin, 1, lineColor(option->palette));
}

}  // namespace platform
