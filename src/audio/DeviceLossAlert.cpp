#include "audio/DeviceLossAlert.h"

#include <chrono>
#include <memory>
#include <optional>
#include <utility>

#include "audio/CheckAudioStatus.h"
#include "audio/DeviceFailure.h"
#include "platform/base/ApplicationServices.h"
#include "platform/mainloop/MainQueue.h"
#include "platform/mainloop/Timer.h"
#include "platform/sound/AudioQueue.h"

namespace {

struct Loss {
  OVInterrupted interrupted;
  platform::AudioStatus status;
  std::string label;
  std::string inputName;
};

/// Gathers the losses of one sound system. Threads: main.
class LossAlert {
 public:
  void add(const std::shared_ptr<platform::AudioQueues>& queues, Loss loss) {
    if (queues_.lock() != queues) {
      *this = LossAlert();
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

 private:
  using Clock = std::chrono::steady_clock;
  static constexpr std::chrono::seconds kRemembered{2};

  [[nodiscard]] bool wasShown(OVInterrupted interrupted) const {
    return shown_ && interrupted <= *shown_ && Clock::now() - shownAt_ < kRemembered;
  }

  void show() {
    const auto timer = std::exchange(timer_, nullptr);  // whose tick this is
    const auto queues = queues_.lock();
    const auto loss = std::exchange(gathered_, std::nullopt);
    if (!loss || !queues || queues != platform::audioQueues() || isTrifle(*loss, *queues)) {
      return;
    }
    shown_ = loss->interrupted;
    shownAt_ = Clock::now();
    const platform::PostedAlertsScope afterwards;
    ShowAudioStatusAlert(loss->status, loss->label,
                         deviceLossReason(loss->interrupted, loss->status, loss->inputName));
  }

  static bool isTrifle(const Loss& loss, const platform::AudioQueues& queues) {
    return loss.interrupted == OVInterrupted::nothing &&
           (loss.status == platform::kDeviceStalledStatus ||
            queues.inputSource().kind == platform::AudioInputSource::Kind::kMicrophone);
  }

  std::weak_ptr<platform::AudioQueues> queues_;
  std::optional<Loss> gathered_;
  std::unique_ptr<platform::Timer> timer_;
  std::optional<OVInterrupted> shown_;
  Clock::time_point shownAt_;
};

LossAlert& lossAlert() {
  static auto* const alert = new LossAlert;  // never destroyed: its timer needs the main loop
  return *alert;
}

}  // namespace

void reportDeviceLoss(OVInterrupted interrupted, platform::AudioStatus status,
                      const std::string& label) {
  CheckAudioStatusWithoutAlert(status, label);
  const auto queues = platform::audioQueues();
  platform::mainQueue().async(
      [queues, loss = Loss{interrupted, status, label, queues->lostInput().name}] {
        lossAlert().add(queues, loss);
      });
}
