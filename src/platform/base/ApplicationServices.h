#pragma once

#include <memory>
#include <string>
#include <system_error>

#include "platform/base/Installed.h"

namespace platform {

/// What the layers below the application ask of it. The application installs its
/// implementation at start-up; with none installed a request only writes a line to standard error,
/// so that storage and sound work without an application around them.
///
/// Threads: any; an implementation must serve calls from every thread.
/// Real-time: not safe.
class ApplicationServices {
 public:
  virtual ~ApplicationServices() = default;
  static std::shared_ptr<ApplicationServices> whenNoneIsInstalled();

  /// Shows an application-modal alert with one button "OK" and returns when it was dismissed.
  /// Called on the main thread it is shown directly.
  virtual void showModalAlert(const std::string& title, const std::string& message) = 0;

  /// The same alert, shown later on the main thread; returns at once.
  virtual void postModalAlert(const std::string& title, const std::string& message) = 0;

  /// Appends a line to the diagnostics console.
  virtual void logToConsole(const std::string& text) = 0;

  /// Registers a file that is deleted when the application ends.
  virtual void registerTempFile(const std::string& path) = 0;

  /// Ends a quit that waits for documents.
  virtual void cancelTermination() = 0;
};

inline std::shared_ptr<ApplicationServices> applicationServices() {
  return Installed<ApplicationServices>::get();
}

/// While one lives on a thread, ShowModalAlert on that thread posts its alert instead of waiting
/// for it. The threads of audio queues hold one: sound never waits for a person.
class PostedAlertsScope {
 public:
  PostedAlertsScope();
  ~PostedAlertsScope();
  PostedAlertsScope(const PostedAlertsScope&) = delete;
  PostedAlertsScope& operator=(const PostedAlertsScope&) = delete;
};

}  // namespace platform

/// Shows an alert with `title`, `message` and a single button "OK" and waits until it is
/// dismissed; on the thread of an audio queue it is posted instead.
///
/// Threads: any. Real-time: not safe.
void ShowModalAlert(const std::string& title, const std::string& message);

/// The same for an error of the system: its text is the title.
void ShowErrorAlert(const std::error_code& error);

/// Appends a formatted line to the diagnostics console. printf's format and arguments.
///
/// Threads: any. Real-time: not safe.
#if defined(__GNUC__)
__attribute__((format(printf, 1, 2)))
#endif
void ConsoleLog(const char* format, ...);
