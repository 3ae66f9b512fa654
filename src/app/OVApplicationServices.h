#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <string>

#include "platform/base/ApplicationServices.h"
#include "platform/base/Mutex.h"

/// The application's services for the layers below: modal alerts on the main thread, the
/// diagnostics console, the registry of temporary files, cancelling a pending quit.
///
/// Threads: any. Real-time: not safe.
class OVApplicationServices : public platform::ApplicationServices {
 public:
  /// Console lines and a cancelled quit are handled on the main thread, temporary files on any.
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

  // Counted from the request on, so that the program does not end before the alert is shown.
  // Relaxed order would suffice: it orders no other data. Shared with blocks on the main queue.
  const std::shared_ptr<std::atomic<int>> alerts_ = std::make_shared<std::atomic<int>>(0);
  const Receivers receivers_;
  const std::shared_ptr<PostedAlerts> posted_;
  platform::Mutex
      turnOfThreads_;  // held by the thread, not the main one, whose alert is on the screen
};
