#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <string>

#include "platform/base/ApplicationServices.h"
#include "platform/base/Mutex.h"

/// The application's side of what the layers below ask for: modal alerts on the main thread, the
/// diagnostics console, the registry of temporary files, the end of a quit that waits.
///
/// Threads: any. Real-time: not safe.
class OVApplicationServices : public platform::ApplicationServices {
 public:
  /// What is done on the main thread with a line for the console and with a cancelled quit, and on
  /// any thread with a temporary file.
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

  /// An alert is on the screen or on its way there.
  [[nodiscard]] bool hasAlerts() const { return *alerts_ > 0; }

 private:
  struct PostedAlerts;

  // Counted from the request on, so that nothing ends between it and the screen. Relaxed order
  // would do: it stands for itself. Shared with what the main queue still holds.
  const std::shared_ptr<std::atomic<int>> alerts_ = std::make_shared<std::atomic<int>>(0);
  const Receivers receivers_;
  const std::shared_ptr<PostedAlerts> posted_;
  platform::Mutex
      turnOfThreads_;  // held by the thread, not the main one, whose alert is on the screen
};
