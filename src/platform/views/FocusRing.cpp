#include "platform/views/FocusRing.h"

#include <utility>

#include "platform/views/RoundShapes.h"

namespace platform {

namespace {

constexpr double kWidth = 2.0;  // points
const QColor kOnDark(39, 163, 173);
const QColor kOnLight(0, 78, 86);

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

void FocusRing::draw(QPainter& painter, const QRectF& bounds, double radius, Ground ground) const {
  if (!isShown_) {
    return;
  }
  constexpr double kMiddle = kWidth / 2.0;
  const QRectF line = bounds.adjusted(kMiddle, kMiddle, -kMiddle, -kMiddle);
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.fillPath(roundedRingPath(line, radius - kMiddle, kWidth),
                   ground == Ground::dark ? kOnDark : kOnLight);
  painter.restore();
}

}  // namespace platform
