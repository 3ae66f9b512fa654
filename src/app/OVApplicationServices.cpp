#include "app/OVApplicationServices.h"

#include <deque>
#include <utility>

#include <QApplication>
#include <QMessageBox>
#include <QWindow>

#include "platform/desktop/MessageBox.h"
#include "platform/mainloop/Localization.h"
#include "platform/mainloop/MainQueue.h"
#include "platform/mainloop/ShownName.h"

namespace {

void runAlert(const std::string& title, const std::string& message) {
  // Above the active window, but not its child: the alert stays when that window closes.
  const QWidget* const front = QApplication::activeWindow();
  QMessageBox alert;
  alert.setObjectName("modalAlert");
  platform::fillMessageBox(alert, platform::shownMessage(title), platform::shownMessage(message));
  alert.addButton(platform::localized("&OK"), QMessageBox::AcceptRole);
  alert.setWindowModality(Qt::ApplicationModal);
  alert.setAttribute(Qt::WA_QuitOnClose, false);  // an alert may be the only window
  alert.winId();                                  // creates its native window
  if (front != nullptr && alert.windowHandle() != nullptr) {
    alert.windowHandle()->setTransientParent(front->windowHandle());
  }
  alert.exec();
}

// Counts an alert for as long as the object exists.
class Counted {
 public:
  explicit Counted(std::shared_ptr<std::atomic<int>> alerts) : alerts_(std::move(alerts)) {
    ++*alerts_;
  }
  ~Counted() { --*alerts_; }
  Counted(const Counted&) = delete;
  Counted& operator=(const Counted&) = delete;

 private:
  const std::shared_ptr<std::atomic<int>> alerts_;
};

}  // namespace

// Main thread only. Posted alerts are shown one after the other.
struct OVApplicationServices::PostedAlerts {
  struct Alert {
    std::string title;
    std::string message;
    std::shared_ptr<Counted> counted;
  };
  std::deque<Alert> waiting;
  bool isShowing = false;

  void showAll() {
    if (isShowing) {
      return;  // called from the event loop of the alert on the screen
    }
    isShowing = true;
    while (!waiting.empty()) {
      const Alert alert = std::move(waiting.front());
      waiting.pop_front();
      runAlert(alert.title, alert.message);
    }
    isShowing = false;
  }
};

OVApplicationServices::OVApplicationServices(Receivers receivers)
    : receivers_(std::move(receivers)), posted_(std::make_shared<PostedAlerts>()) {}

void OVApplicationServices::showModalAlert(const std::string& title, const std::string& message) {
  const Counted counted(alerts_);
  if (platform::isMainThread()) {
    runAlert(title, message);
    return;
  }
  const platform::MutexLock turn(turnOfThreads_);  // one after the other, too
  platform::mainQueue().sync([title, message] { runAlert(title, message); });
}

void OVApplicationServices::postModalAlert(const std::string& title, const std::string& message) {
  platform::mainQueue().async(
      [posted = posted_, title, message, counted = std::make_shared<Counted>(alerts_)]() mutable {
        posted->waiting.push_back({title, message, std::move(counted)});
        posted->showAll();
      });
}

void OVApplicationServices::logToConsole(const std::string& text) {
  platform::mainQueue().async([log = receivers_.logToConsole, text] { log(text); });
}

void OVApplicationServices::registerTempFile(const std::string& path) {
  receivers_.registerTempFile(path);
}

void OVApplicationServices::cancelTermination() {
  platform::mainQueue().sync(receivers_.cancelTermination);
}
