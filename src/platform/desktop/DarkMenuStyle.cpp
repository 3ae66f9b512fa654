#include "platform/desktop/DarkMenuStyle.h"

#include <QPainter>
#include <QPalette>
#include <QStyleOptionMenuItem>

namespace platform {
namespace {

constexpr int kSeparatorMargin = 5;    // points, left and right
constexpr float kLineStrength = 0.3F;  // of the text's colour over the ground
constexpr float kBoxStrength = 0.5F;

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

DarkMenuStyle::DarkMenuStyle() : QProxyStyle(QStringLiteral("fusion")) {}

void DarkMenuStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option,
                                  QPainter* painter, const QWidget* widget) const {
  QProxyStyle::drawPrimitive(element, option, painter, widget);
  const bool isBox = element == PE_IndicatorCheckBox;
  if ((isBox || element == PE_PanelMenu) && isDark(option->palette)) {
    painter->save();
    painter->setPen(lineColor(option->palette, isBox ? kBoxStrength : kLineStrength));
    painter->setBrush(Qt::NoBrush);
    painter->drawRect(option->rect.adjusted(0, 0, -1, -1));
    painter->restore();
  }
}

void DarkMenuStyle::drawControl(ControlElement element, const QStyleOption* option,
                                QPainter* painter, const QWidget* widget) const {
  if (element != CE_MenuItem || !isDark(option->palette) || !isPlainSeparator(option)) {
    QProxyStyle::drawControl(element, option, painter, widget);
    return;
  }
  const QRect& row = option->rect;
  painter->fillRect(row.left() + kSeparatorMargin, row.center().y(),
                    row.width() - 2 * kSeparatorMargin, 1, lineColor(option->palette));
}

}  // namespace platform
