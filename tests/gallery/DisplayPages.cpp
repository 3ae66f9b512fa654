#include <cmath>
#include <random>

#include "displays/OVAnalogVUView.h"
#include "displays/OVCircularVUView.h"
#include "displays/OVFFTView.h"
#include "displays/OVTimeView.h"
#include "gallery/GalleryPages.h"

namespace {

const QColor kWell(35, 45, 66);

/// A source that is polled once.
class Levels final : public OVVUViewDataSource {
 public:
  explicit Levels(std::vector<float> levels) : levels_(std::move(levels)) {}
  std::optional<std::vector<float>> dataForVUView(QWidget*) override { return levels_; }

 private:
  std::vector<float> levels_;
};

template <typename Meter>
void addMeter(GalleryPage& page, const char* label, QSize size, std::vector<float> levels) {
  auto* const meter = page.addView<Meter>(QString::fromUtf8(label), size, kWell);
  const auto source = std::make_shared<Levels>(std::move(levels));
  meter->setDatasource(source);
  meter->setPollingFrequency(0.0);
  meter->pollForData();
}

std::unique_ptr<GalleryPage> circularPage() {
  auto page = std::make_unique<GalleryPage>(QStringLiteral("circular-meter"));
  const auto add = addMeter<OVCircularVUView>;
  add(*page, "no level", {60, 30}, {});
  add(*page, "0, 0", {60, 30}, {0.0F, 0.0F});
  add(*page, "0.1, 0.2", {60, 30}, {0.1F, 0.2F});
  add(*page, "0.4, 0.7", {60, 30}, {0.4F, 0.7F});
  add(*page, "1, 1.3", {60, 30}, {1.0F, 1.3F});
  add(*page, "mono", {60, 30}, {0.3F});
  add(*page, "four", {120, 30}, {0.1F, 0.3F, 0.6F, 0.9F});
  add(*page, "column", {30, 60}, {0.1F, 0.6F});
  add(*page, "square", {60, 60}, {0.1F, 0.6F});
  return page;
}

std::unique_ptr<GalleryPage> analogPage() {
  auto page = std::make_unique<GalleryPage>(QStringLiteral("analog-meter"));
  const auto add = addMeter<OVAnalogVUView>;
  add(*page, "silence", {220, 130}, {0.0F});
  add(*page, "0.25", {220, 130}, {0.25F});
  add(*page, "0.75", {220, 130}, {0.75F});
  page->newRow();
  add(*page, "full scale", {220, 130}, {1.0F});
  add(*page, "1.5", {220, 130}, {1.5F});
  add(*page, "no level", {220, 130}, {});
  page->newRow();
  add(*page, "stereo", {440, 130}, {0.5F, 0.9F});
  return page;
}

std::vector<float> magnitudes(std::size_t count) {
  std::mt19937 random(1);
  std::vector<float> values(count);
  for (std::size_t k = 0; k < count; ++k) {
    const float noise = static_cast<float>(random() % 1000U) / 1000.0F;
    const float floor = 0.2F / (1.0F + static_cast<float>(k) * 0.01F);
    values[k] = floor * noise + (k % (count / 21) == 5 ? 0.8F : 0.0F);
  }
  return values;
}

void addSpectrum(GalleryPage& page, const char* label, const std::vector<float>& values) {
  auto* const view = page.addView<OVFFTView>(QString::fromUtf8(label), {420, 130});
  if (!values.empty()) {
    view->setSize(values.size());
    view->setData(values.data());
  }
}

std::unique_ptr<GalleryPage> spectrumPage() {
  auto page = std::make_unique<GalleryPage>(QStringLiteral("spectrum"));
  addSpectrum(*page, "no data", {});
  addSpectrum(*page, "silence", std::vector<float>(2048, 0.0F));
  addSpectrum(*page, "played, 2048 bins", magnitudes(2048));
  addSpectrum(*page, "recorded, 512 bins", magnitudes(512));
  std::vector<float> loud = magnitudes(512);
  for (float& value : loud) {
    value *= 4.0F;
  }
  addSpectrum(*page, "off the top", loud);
  addSpectrum(*page, "three bins", {0.3F, 1.0F, 0.1F});
  return page;
}

std::unique_ptr<GalleryPage> timePage() {
  auto page = std::make_unique<GalleryPage>(QStringLiteral("time"));
  const auto add = [&](double current, double duration, QSize size = {150, 14}) {
    auto* const view = page->addView<OVTimeView>(
        QStringLiteral("%1 / %2").arg(current).arg(duration), size, kWell);
    view->setCurrentTimeInSeconds(current);
    view->setDurationInSeconds(duration);
  };
  add(0.0, 0.0);
  add(83.45, 218.5);
  add(59.999, 3725.5);
  add(-1.5, 0.57);
  add(360000.0, 360000.0, {180, 14});
  add(83.45, 218.5, {80, 14});
  return page;
}

}  // namespace

void addDisplayPages(GalleryPages& pages) {
  pages.push_back(circularPage());
  pages.push_back(analogPage());
  pages.push_back(spectrumPage());
  pages.push_back(timePage());
}
