// A redraw of the spectrum, 640 x 200 points, compared with drawing only as many lines.
#include <algorithm>
#include <random>
#include <span>
#include <vector>

#include <benchmark/benchmark.h>
#include <QImage>
#include <QLineF>
#include <QPainter>

#include "displays/OVFFTDrawing.h"
#include "platform/views/ViewDrawing.h"

namespace {

constexpr QSize kSize(640, 200);

/// A low noise floor that falls towards the right, and a few peaks.
std::vector<float> magnitudes(std::size_t count) {
  std::mt19937 random(1);
  std::uniform_real_distribution<float> part(0.0F, 1.0F);
  std::vector<float> values(count);
  for (std::size_t k = 0; k < count; ++k) {
    const float floor = 0.25F / (1.0F + static_cast<float>(k) * 0.01F);
    values[k] = floor * part(random) + (k % 97 == 0 ? 0.7F : 0.0F);
  }
  return values;
}

/// Draws repeatedly into a picture of the view; the arguments are bins and pixel ratio.
template <typename Draw>
void drawRepeatedly(benchmark::State& state, Draw draw) {
  auto values = magnitudes(static_cast<std::size_t>(state.range(0)));
  QImage picture(kSize * static_cast<int>(state.range(1)), QImage::Format_RGB32);
  picture.setDevicePixelRatio(static_cast<double>(state.range(1)));
  for (auto _ : state) {
    values.front() = 1.0F - values.front();  // the line drawn last is not stroked again
    QPainter painter(&picture);
    platform::useViewCoordinates(painter, kSize);
    draw(painter, values);
  }
}

void bareLines(benchmark::State& state) {
  std::vector<QLineF> lines;
  drawRepeatedly(state, [&](QPainter& painter, std::span<const float> values) {
    painter.fillRect(QRectF(QPointF(0.0, 0.0), QSizeF(kSize)), Qt::black);
    lines.clear();
    const double step = kSize.width() / static_cast<double>(values.size());
    QPointF last;
    for (std::size_t k = 0; k < values.size(); ++k) {
      const QPointF next(static_cast<double>(k + 1) * step, static_cast<double>(values[k]) * 180.0);
      lines.emplace_back(last, next);
      last = next;
    }
    painter.setPen(platform::viewPen(Qt::white, 1.0));
    painter.drawLines(lines.data(), static_cast<int>(lines.size()));
  });
}

void spectrum(benchmark::State& state) {
  OVFFTDrawing drawing;
  drawRepeatedly(state, [&](QPainter& painter, std::span<const float> values) {
    drawing.drawSpectrum(painter, kSize, values);
  });
}

void recordedAndStoredAtBothRatios(benchmark::internal::Benchmark* benchmark) {
  benchmark->ArgsProduct({{512, 2048}, {1, 2}})->ArgNames({"bins", "ratio"});
}
BENCHMARK(bareLines)
    ->Name("SpectrumView/yardstick: bare lines")
    ->Apply(recordedAndStoredAtBothRatios)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(spectrum)
    ->Name("SpectrumView/redraw")
    ->Apply(recordedAndStoredAtBothRatios)
    ->Unit(benchmark::kMicrosecond);

}  // namespace
