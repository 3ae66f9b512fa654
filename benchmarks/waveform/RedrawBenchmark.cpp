// A full redraw of the waveform, rendered and copied to the screen: at most 1.5 times the drawing
// of only as many lines into the same kind of picture.
#include <cmath>
#include <random>
#include <vector>

#include <benchmark/benchmark.h>
#include <QImage>
#include <QLineF>
#include <QPainter>

#include "platform/views/ViewDrawing.h"
#include "waveform/views/OVWaveFormDrawing.h"

namespace {

constexpr QSize kView(1200, 300);        // points
constexpr std::size_t kElements = 1024;  // of a full summary

/// Noise that swells and fades like speech.
std::vector<float> recording() {
  std::mt19937 random(3);
  std::uniform_real_distribution<float> noise(0.2F, 1.0F);
  std::vector<float> elements;
  for (std::size_t i = 0; i < kElements; ++i) {
    const float loudness = std::abs(std::sin(static_cast<float>(i) * 0.02F));
    elements.push_back(loudness * noise(random));
  }
  return elements;
}

QImage bitmap(int ratio) {
  QImage image(kView * ratio, QImage::Format_ARGB32_Premultiplied);
  image.setDevicePixelRatio(ratio);
  image.fill(Qt::black);
  return image;
}

void bareLines(benchmark::State& state) {
  const double middle = kView.height() / 2.0;
  const double step = kView.width() / static_cast<double>(kElements);
  std::vector<QLineF> lines;
  QPointF last(0.0, middle);
  for (const float element : recording()) {
    const double reach = static_cast<double>(element) * kView.height() / 2.5;
    const double x = last.x() + step;
    lines.emplace_back(last, QPointF(x, middle + reach));
    lines.emplace_back(QPointF(x, middle + reach), QPointF(x, middle - reach));
    last = QPointF(x, middle - reach);
  }
  QImage image = bitmap(static_cast<int>(state.range(0)));
  for (auto _ : state) {
    QPainter painter(&image);
    platform::useViewCoordinates(painter, kView);
    painter.setPen(platform::viewPen(Qt::white, 1.0));
    painter.drawLines(lines.data(), static_cast<int>(lines.size()));
  }
}
BENCHMARK(bareLines)
    ->Name("Redraw/yardstick: bare lines")
    ->ArgName("ratio")
    ->Arg(1)
    ->Arg(2)
    ->Unit(benchmark::kMillisecond);

void redraw(benchmark::State& state) {
  std::vector<float> elements = recording();
  OVWaveFormDrawing drawing;
  QImage picture = bitmap(static_cast<int>(state.range(0)));
  QImage screen = bitmap(static_cast<int>(state.range(0)));
  double offset = 0.0;
  for (auto _ : state) {
    offset = OVWaveFormDrawing::nextGridOffset(offset);
    QPainter painter(&picture);
    platform::useViewCoordinates(painter, kView);
    drawing.drawBackground(painter, kView, offset);
    elements.front() = 1.0F - elements.front();  // the line drawn last is not stroked again
    drawing.drawWaveform(painter, kView, elements, 1.0);
    painter.end();
    QPainter screenPainter(&screen);
    OVWaveFormDrawing::copyPicture(screenPainter, kView, QRect(QPoint(), kView), picture);
  }
}
BENCHMARK(redraw)
    ->Name("Redraw/waveform")
    ->ArgName("ratio")
    ->Arg(1)
    ->Arg(2)
    ->Unit(benchmark::kMillisecond);

void copyMarkerStrip(benchmark::State& state) {
  const QImage picture = bitmap(static_cast<int>(state.range(0)));
  QImage screen = bitmap(static_cast<int>(state.range(0)));
  for (auto _ : state) {
    QPainter painter(&screen);
    OVWaveFormDrawing::copyPicture(painter, kView, QRect(600, 0, 8, kView.height()), picture);
  }
}
BENCHMARK(copyMarkerStrip)
    ->Name("Redraw/strip under a moving marker")
    ->ArgName("ratio")
    ->Arg(1)
    ->Arg(2)
    ->Unit(benchmark::kMillisecond);

}  // namespace
