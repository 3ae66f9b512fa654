#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <string>

#include "platform/base/ApplicationServices.h"
#include "platform/base/Mutex.h"

/// The application's services for the layers below: modal alerts on the main thread, the
/// diagnostics console, the registry of temporary files, the end of a quit that waits.
///
/// Threads: any. Real-time: not safe.
class OVApplicationServices : public platform::ApplicationServices {
 public:
  /// Handlers of console lines and of a cancelled quit on the main thread, and of temporary files
  /// on any thread.
  struct Receivers {
    std::function<void(const std::string&)> logToConsole;
    std::function<void(const std::string&)> registerTempFile;
    std::function<void()> cancelTermination;
  };

  explicit OVApplicationServices(Receivers receivers);

  void showModalAlert(const std::string& title, const std::string& message) override;
  void postModalAlert(const std::string& title, const std::string& message) override;
  void logToConsole(const std::string& text) override;
  void registerTempFile(const std::string& path) override;
  void cancelTermination() override;

  /// An alert is shown or pending.
  [[nodiscard]] bool hasAlerts() const { return *alerts_ > 0; }

 private:
  struct PostedAlerts;

  // Counted from the request on, so that nothing ends between it and the screen. Relaxed order
  // would suffice: it orders no other data. Shared with what the main queue still holds.
  const std::shared_ptr<std::atomic<int>> alerts_ = std::make_shared<std::atomic<int>>(0);
  const Receivers receivers_;
  const std::shared_ptr<PostedAlerts> posted_;
  platform::Mutex
      turnOfThreads_;  // held by the thread, not the main one, whose alert is on the screen
};
