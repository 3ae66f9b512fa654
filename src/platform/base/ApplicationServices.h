#pragma once

#include <memory>
#include <string>
#include <system_error>

#include "platform/base/Installed.h"

namespace platform {

/// Services that the application provides to the layers below it. The application installs its
/// implementation at start-up. Without one, a request only writes a line to standard error, so
/// storage and sound also work without an application.
///
/// Threads: any; implementations must accept calls from every thread.
/// Real-time: not safe.
class ApplicationServices {
 public:
  virtual ~ApplicationServices() = default;
  static std::shared_ptr<ApplicationServices> whenNoneIsInstalled();

  /// Shows an application-modal alert with one button, "OK"; returns when the user dismisses it. On
  /// the main thread the alert is shown directly.
  virtual void showModalAlert(const std::string& title, const std::string& message) = 0;

  /// Shows the same alert later, on the main thread; returns at once.
  virtual void postModalAlert(const std::string& title, const std::string& message) = 0;

  /// Appends a line to the diagnostics console.
  virtual void logToConsole(const std::string& text) = 0;

  /// Registers a file for deletion when the application ends.
  virtual void registerTempFile(const std::string& path) = 0;

  /// Cancels a quit that is waiting for documents.
  virtual void cancelTermination() = 0;
};

inline std::shared_ptr<ApplicationServices> applicationServices() {
  return Installed<ApplicationServices>::get();
}

/// While a scope lives, ShowModalAlert() on its thread posts the alert instead of waiting for it.
/// Audio queue threads hold one, so that sound never waits for the user.
class PostedAlertsScope {
 public:
  PostedAlertsScope();
  ~PostedAlertsScope();
  PostedAlertsScope(const PostedAlertsScope&) = delete;
  PostedAlertsScope& operator=(const PostedAlertsScope&) = delete;
};

}  // namespace platform

/// Shows an alert with `title`, `message` and one button, "OK", and waits until the user dismisses
/// it. Within a PostedAlertsScope the alert is posted instead.
///
/// Threads: any. Real-time: not safe.
void ShowModalAlert(const std::string& title, const std::string& message);

/// Shows an alert for a system error; the error's text is the title.
void ShowErrorAlert(const std::error_code& error);

/// Appends a line to the diagnostics console, formatted as by printf.
///
/// Threads: any. Real-time: not safe.
#if defined(__GNUC__)
__attribute__((format(printf, 1, 2)))
#endif
void ConsoleLog(const char* format, ...);
