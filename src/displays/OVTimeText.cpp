#include "displays/OVTimeText.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>

#include <QFontMetricsF>

#include "platform/views/ViewDrawing.h"

namespace {

constexpr int kFontSize = 10;                // points of the views' grid
constexpr double kRightMargin = 1.0;         // points
constexpr double kBelowBottomEdge = 1.0;     // points; uses the space below the font's baseline
constexpr double kTimeLimit = 2147483648.0;  // 2^31 seconds: the fields are 32-bit integers

double withinLimits(double seconds) {
  if (std::isnan(seconds)) {
    return 0.0;
  }
  const double largest = std::nextafter(kTimeLimit, 0.0);
  return std::clamp(seconds, -largest, largest);
}

std::int32_t truncated(double value) {
  return static_cast<std::int32_t>(value);
}

}  // namespace

OVTimeText::OVTimeText()
    : font_(platform::viewFont(kFontSize)), color_(QColor::fromRgbF(1.0F, 1.0F, 1.0F, 0.6F)) {
  // Digits have equal widths, but the pair "11" is kerned: the text would jitter as time runs.
  font_.setKerning(false);
}

QString OVTimeText::formatTime(double seconds) {
  const double t = withinLimits(seconds);
  const std::int32_t hours = truncated(t / 3600.0);
  const std::int32_t minutes = truncated(t / 60.0 - static_cast<double>(hours * 60));
  const std::int32_t wholeSeconds = truncated(std::fmod(t, 60.0));
  const std::int32_t hundredths = truncated((t - truncated(t)) * 100.0);
  std::array<char, 64> text{};  // four numbers of at most 11 characters and their separators
  std::snprintf(text.data(), text.size(), "%.2i:%.2i:%.2i.%.2i", hours, minutes, wholeSeconds,
                hundredths);
  return QString::fromLatin1(text.data());
}

QString OVTimeText::formatTimes(double current, double duration) {
  return formatTime(current) + QStringLiteral(" / ") + formatTime(duration);
}

void OVTimeText::draw(QPainter& painter, QSizeF size, const QString& text) const {
  const QFontMetricsF metrics(font_);
  const double x = size.width() - metrics.horizontalAdvance(text) - kRightMargin;
  painter.setFont(font_);
  painter.setPen(color_);
  platform::drawUprightText(painter, QPointF(x, metrics.descent() - kBelowBottomEdge), text);
}
