// A redraw of each small view of the window, at one and two pixels per point, compared with filling
// as many pixels with one colour. The waveform and the spectrum have benchmarks of their own.
#include <functional>
#include <memory>
#include <vector>

#include <benchmark/benchmark.h>
#include <QImage>
#include <QPainter>

#include "controls/OVDisplayWell.h"
#include "controls/OVLoadingIndicator.h"
#include "controls/OVOverlayView.h"
#include "controls/OVTransportBackgroundView.h"
#include "controls/buttons/OVHoverButton.h"
#include "controls/buttons/OVRoundedTransportButton.h"
#include "controls/buttons/OVTransportButton.h"
#include "controls/buttons/OVTransportButtonCell.h"
#include "displays/OVAnalogVUView.h"
#include "displays/OVCircularVUView.h"
#include "displays/OVTimeView.h"
#include "waveform/views/OVPlaybackMarkerView.h"

namespace {

constexpr QSize kButton(46, 32);

class Levels final : public OVVUViewDataSource {
 public:
  std::optional<std::vector<float>> dataForVUView(QWidget*) override { return {{0.2F, 0.5F}}; }
};

/// A view in the place that it needs: buttons are in a bar in a content view.
struct Staged {
  std::unique_ptr<QWidget> content = std::make_unique<QWidget>();
  QWidget* view = nullptr;
};

template <typename View>
Staged staged(QSize size) {
  Staged stage;
  stage.content->resize(size.width() + 40, size.height() + 40);
  auto* const bar = new QWidget(stage.content.get());
  bar->setGeometry(stage.content->rect());
  stage.view = new View(bar);
  stage.view->setGeometry(QRect(QPoint(10, 10), size));
  return stage;
}

template <typename Meter>
Staged meter(QSize size) {
  Staged stage = staged<Meter>(size);
  auto* const view = static_cast<Meter*>(stage.view);
  const auto source = std::make_shared<Levels>();
  view->setDatasource(source);
  view->setPollingFrequency(0.0);
  view->pollForData();
  return stage;
}

template <typename Button>
Staged button(const char* image) {
  Staged stage = staged<Button>(kButton);
  static_cast<Button*>(stage.view)->setOffImage(QString::fromLatin1(image));
  return stage;
}

QImage screenFor(const benchmark::State& state, QSize size) {
  const auto ratio = static_cast<int>(state.range(0));
  QImage screen(size * ratio, QImage::Format_RGB32);
  screen.setDevicePixelRatio(ratio);
  screen.fill(Qt::darkGray);
  return screen;
}

void redraw(benchmark::State& state, const std::function<Staged()>& make) {
  const Staged stage = make();
  QImage screen = screenFor(state, stage.view->size());
  for (auto _ : state) {
    QPainter painter(&screen);
    stage.view->render(&painter, QPoint(), QRegion(), QWidget::DrawChildren);
  }
}

void fill(benchmark::State& state) {
  QImage screen = screenFor(state, kButton);
  for (auto _ : state) {
    QPainter painter(&screen);
    painter.fillRect(QRectF(QPointF(), kButton), Qt::white);
  }
}

[[maybe_unused]] const bool registered = [] {
  const std::vector<std::pair<const char*, std::function<Staged()>>> views{
      {"transport button", [] { return button<OVTransportButton>("rec_off.png"); }},
      {"rounded transport button", [] { return button<OVRoundedTransportButton>("prev.png"); }},
      {"platform button", [] { return staged<OVTransportButtonCell>(kButton); }},
      {"hover button", [] { return button<OVHoverButton>("spectrum_off.png"); }},
      {"transport bar, 640 x 58",
       [] {
         return staged<OVTransportBackgroundView>({640, 58});
       }},
      {"display well, 236 x 36",
       [] {
         return staged<OVDisplayWell>({236, 36});
       }},
      {"overlay, 150 x 50",
       [] {
         return staged<OVOverlayView>({150, 50});
       }},
      {"progress, 150 x 4",
       [] {
         return staged<OVLoadingIndicator>({150, 4});
       }},
      {"circular meter, 60 x 30",
       [] {
         return meter<OVCircularVUView>({60, 30});
       }},
      {"needle meter, 440 x 130",
       [] {
         return meter<OVAnalogVUView>({440, 130});
       }},
      {"time, 150 x 14",
       [] {
         return staged<OVTimeView>({150, 14});
       }},
      {"marker, 640 x 272",
       [] {
         return staged<OVPlaybackMarkerView>({640, 272});
       }},
  };
  const auto add = [](const std::string& name, auto function) {
    benchmark::RegisterBenchmark(("ViewRedraw/" + name).c_str(), function)
        ->ArgName("ratio")
        ->Arg(1)
        ->Arg(2)
        ->Unit(benchmark::kMicrosecond);
  };
  add("yardstick: filling 46 x 32 points", fill);
  for (const auto& [name, make] : views) {
    add(name, [make = make](benchmark::State& state) { redraw(state, make); });
  }
  return true;
}();

}  // namespace
