#include "platform/views/FocusRing.h"

#include <utility>

#include "platform/views/ViewDrawing.h"

namespace platform {

namespace {

constexpr double kWidth = 2.0;  // points
const QColor kColor(39, 163, 173);

}  // namespace

bool FocusRing::handle(const QFocusEvent& event) {
  const Qt::FocusReason reason = event.reason();
  const bool byKeyboard = reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason ||
                          reason == Qt::ShortcutFocusReason;
  // A reactivated window shows its ring again.
  const bool back = reason == Qt::ActiveWindowFocusReason || reason == Qt::PopupFocusReason;
  if (back) {
    return isShown_;
  }
  const bool byProgram = reason == Qt::OtherFocusReason;
  const bool shown = event.gotFocus() && (byKeyboard || (byProgram && wasShown_));
  wasShown_ = byProgram && event.lostFocus() && isShown_;
  return std::exchange(isShown_, shown) != shown;
}

void FocusRing::draw(QPainter& painter, const QRectF& bounds, double radius) const {
  if (!isShown_) {
    return;
  }
  constexpr double kMiddle = kWidth / 2.0;
  const QRectF line = bounds.adjusted(kMiddle, kMiddle, -kMiddle, -kMiddle);
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(viewPen(kColor, kWidth));
  painter.setBrush(Qt::NoBrush);
  painter.drawRoundedRect(line, radius - kMiddle, radius - kMiddle);
  painter.restore();
}

}  // namespace platform
