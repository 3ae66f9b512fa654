#include "audio/DeviceLossAlert.h"

#include <utility>

#include "audio/CheckAudioStatus.h"
#include "platform/base/ApplicationServices.h"
#include "platform/mainloop/MainQueue.h"

namespace {

bool isTrifle(const DeviceLossAlert::Loss& loss, const platform::AudioQueues& queues) {
  return !isLossTold(loss.interrupted, loss.status) ||
         (loss.interrupted == OVInterrupted::nothing &&
          queues.inputSource().kind == platform::AudioInputSource::Kind::kMicrophone);
}

DeviceLossAlert& theAlert() {
  static auto* const alert = new DeviceLossAlert;  // never destroyed: its timer needs the main loop
  return *alert;
}

}  // namespace

void DeviceLossAlert::add(const std::shared_ptr<platform::AudioQueues>& queues, Loss loss) {
  if (queues_.lock() != queues) {
    gathered_.reset();
    timer_.reset();
    shown_.reset();
    queues_ = queues;
  }
  if (wasShown(loss.interrupted)) {
    return;
  }
  if (!gathered_ || gathered_->interrupted < loss.interrupted) {
    gathered_ = std::move(loss);
  }
  if (!timer_) {
    timer_ = std::make_unique<platform::Timer>(kDeviceLossGathered, [this] { show(); });
  }
}

bool DeviceLossAlert::wasShown(OVInterrupted interrupted) const {
  return shown_ && interrupted <= *shown_ && now_() - shownAt_ < kRemembered;
}

void DeviceLossAlert::show() {
  const auto timer = std::exchange(timer_, nullptr);  // whose tick this is
  const auto queues = queues_.lock();
  const auto loss = std::exchange(gathered_, std::nullopt);
  if (!loss || !queues || queues != platform::audioQueues() || isTrifle(*loss, *queues)) {
    return;
  }
  shown_ = loss->interrupted;
  shownAt_ = now_();
  const platform::PostedAlertsScope afterwards;
  ShowAudioStatusAlert(loss->status, loss->label,
                       deviceLossReason(loss->interrupted, loss->status, loss->inputName));
}

void reportDeviceLoss(OVInterrupted interrupted, platform::AudioStatus status,
                      const std::string& label) {
  CheckAudioStatusWithoutAlert(status, label);
  const auto queues = platform::audioQueues();
  platform::mainQueue().async(
      [queues, loss = DeviceLossAlert::Loss{interrupted, status, label, queues->lostInput().name}] {
        theAlert().add(queues, loss);
      });
}
