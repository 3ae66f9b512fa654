#include "waveform/views/OVPlaybackMarkerDrawing.h"

#include <algorithm>
#include <cmath>

#include "platform/views/ViewDrawing.h"

namespace {

constexpr double kFaintestAlpha = 0.3;
constexpr double kLineWidth = 2.0;

double markerAlpha(double audioLevel) {
  return std::isnan(audioLevel) ? kFaintestAlpha : std::clamp(audioLevel, kFaintestAlpha, 1.0);
}

}  // namespace

void drawPlaybackMarker(QPainter& painter, QSizeF size, double position, double audioLevel) {
  const double x = position * size.width();
  if (!std::isfinite(x)) {
    return;
  }
  const auto alpha = static_cast<float>(markerAlpha(audioLevel));
  platform::fillUprightBar(painter, x - kLineWidth / 2.0, x + kLineWidth / 2.0, size.height(),
                           QColor::fromRgbF(1.0F, 1.0F, 1.0F, alpha));
}
