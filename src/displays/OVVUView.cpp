#include "displays/OVVUView.h"

#include <algorithm>
#include <utility>

#include "platform/base/MainThread.h"
#include "platform/mainloop/Localization.h"
#include "platform/views/ViewAccessibility.h"

namespace {

constexpr double kMaxInterval = 1e6;  // seconds; a timer counts milliseconds in 31 bits

}  // namespace

OVVUView::OVVUView(QWidget* parent, double pollingFrequency) : QWidget(parent) {
  platform::describeView(this, platform::localized("Level meter"), QAccessible::Indicator);
  setPollingFrequency(pollingFrequency);
}

OVVUView::~OVVUView() = default;

void OVVUView::setDatasource(std::weak_ptr<OVVUViewDataSource> datasource) {
  datasource_ = std::move(datasource);
}

void OVVUView::setDelegate(std::weak_ptr<OVVUViewDelegate> delegate) {
  delegate_ = std::move(delegate);
}

void OVVUView::setPollingFrequency(double pollingFrequency) {
  pollingFrequency_ = pollingFrequency;
  pollTimer_.reset();
  if (pollingFrequency > 0.0) {
    const double interval = std::min(1.0 / pollingFrequency, kMaxInterval);
    pollTimer_ = std::make_unique<platform::Timer>(interval, [this] { pollForData(); });
  }
}

void OVVUView::pollForData() {
  platform::assertMainThread();
  const auto source = datasource_.lock();
  levelData_ = source ? source->dataForVUView(this) : std::nullopt;
  if (levelData_ && !levelData_->empty()) {
    update();
  }
}

void OVVUView::setLevelData(std::vector<float> levels) {
  platform::assertMainThread();
  levelData_ = std::move(levels);
}
