#include "platform/desktop/DBusSleepInhibitor.h"

#include <utility>

#include <QDBusConnection>

#include "platform/base/ApplicationServices.h"
#include "platform/base/MainThread.h"
#include "platform/desktop/SleepInhibition.h"

namespace platform {

// The inhibitor may be destroyed first, at the end of the program.
class DBusSleepInhibitor::CountedHold : public Hold {
 public:
  explicit CountedHold(DBusSleepInhibitor* inhibitor) : inhibitor_(inhibitor) {}
  ~CountedHold() override {
    if (inhibitor_) {
      inhibitor_->releaseHold();
    }
  }
  CountedHold(const CountedHold&) = delete;
  CountedHold& operator=(const CountedHold&) = delete;

 private:
  const QPointer<DBusSleepInhibitor> inhibitor_;
};

DBusSleepInhibitor::Buses DBusSleepInhibitor::usualBuses() {
  return {.session = &QDBusConnection::sessionBus, .system = &QDBusConnection::systemBus};
}

DBusSleepInhibitor::DBusSleepInhibitor(Buses buses, std::chrono::milliseconds portalPatience)
    : buses_(std::move(buses)), portalPatience_(portalPatience) {}

DBusSleepInhibitor::~DBusSleepInhibitor() {
  if (inhibition_) {
    inhibition_->release();
  }
}

std::unique_ptr<SleepInhibitor::Hold> DBusSleepInhibitor::hold(const QString& reason) {
  assertMainThread();
  auto hold = std::make_unique<CountedHold>(this);
  if (holds_++ == 0) {
    inhibition_ = new SleepInhibition(buses_, reason, this);  // deletes itself
    inhibition_->begin(portalPatience_, [this](const QString& why) { tellFailure(why); });
  }
  return hold;
}

void DBusSleepInhibitor::releaseHold() {
  assertMainThread();
  if (--holds_ == 0 && inhibition_) {
    inhibition_->release();
    inhibition_.clear();
  }
}

void DBusSleepInhibitor::tellFailure(const QString& reason) {
  if (!std::exchange(hasToldFailure_, true)) {
    ConsoleLog("the machine may suspend while recording: %s", qUtf8Printable(reason));
  }
}

}  // namespace platform
