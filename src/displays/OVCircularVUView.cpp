#include "displays/OVCircularVUView.h"

#include <algorithm>
#include <utility>

#include <QPainter>

#include "displays/OVCircularVUDrawing.h"
#include "platform/Localization.h"
#include "platform/ViewAccessibility.h"
#include "platform/ViewDrawing.h"

namespace {

constexpr double kDefaultPollingFrequency = 30.0;
constexpr double kLongestInterval = 1e6;  // seconds; a timer counts milliseconds in 31 bits

}  // namespace

OVCircularVUView::OVCircularVUView(QWidget* parent) : QWidget(parent) {
  platform::describeView(this, platform::localized("Level meter"), QAccessible::Indicator);
  setPollingFrequency(kDefaultPollingFrequency);
}

OVCircularVUView::~OVCircularVUView() = default;

void OVCircularVUView::setDatasource(std::weak_ptr<OVVUViewDataSource> datasource) {
  datasource_ = std::move(datasource);
}

void OVCircularVUView::setDelegate(std::weak_ptr<OVVUViewDelegate> delegate) {
  delegate_ = std::move(delegate);
}

void OVCircularVUView::setPollingFrequency(double pollingFrequency) {
  pollingFrequency_ = pollingFrequency;
  pollTimer_.reset();
  if (pollingFrequency > 0.0) {
    const double interval = std::min(1.0 / pollingFrequency, kLongestInterval);
    pollTimer_ = std::make_unique<platform::Timer>(interval, [this] { pollForData(); });
  }
}

void OVCircularVUView::pollForData() {
  const auto source = datasource_.lock();
  levelData_ = source ? source->dataForVUView(this) : std::nullopt;
  if (levelData_ && !levelData_->empty()) {
    update();
  }
}

void OVCircularVUView::paintEvent(QPaintEvent*) {
  if (!levelData_ || levelData_->empty()) {
    levelData_.emplace(2, 0.0F);
  }
  QPainter painter(this);
  platform::useViewCoordinates(painter, size());
  drawCircularVU(painter, size(), *levelData_);
}
