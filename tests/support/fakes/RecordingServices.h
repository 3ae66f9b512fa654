#pragma once

#include <algorithm>
#include <cstddef>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "platform/base/ApplicationServices.h"

namespace support {

struct RecordedAlert {
  std::string title;
  std::string message;

  friend bool operator==(const RecordedAlert&, const RecordedAlert&) = default;
};

/// Application services that record all requests and never wait for a user. Install them with
/// platform::Installed, or with InstalledRecordingServices below.
///
/// Threads: any. Accessors return copies, so a test may read them while other threads still report.
class RecordingServices : public platform::ApplicationServices {
 public:
  /// Runs inside showModalAlert(), on its caller's thread and outside the lock, in place of the
  /// user.
  using AlertAnswer = std::function<void(const RecordedAlert&)>;

  void showModalAlert(const std::string& title, const std::string& message) override {
    AlertAnswer answer;
    {
      const std::lock_guard lock(mutex_);
      alerts_.push_back({title, message});
      answer = answer_;
    }
    if (answer) {
      answer({title, message});
    }
  }

  void postModalAlert(const std::string& title, const std::string& message) override {
    const std::lock_guard lock(mutex_);
    postedAlerts_.push_back({title, message});
  }

  void logToConsole(const std::string& text) override {
    const std::lock_guard lock(mutex_);
    consoleLines_.push_back(text);
  }

  void registerTempFile(const std::string& path) override {
    const std::lock_guard lock(mutex_);
    registeredTempFiles_.push_back(path);
  }

  void cancelTermination() override {
    const std::lock_guard lock(mutex_);
    ++cancelledTerminations_;
  }

  void answerAlertsWith(AlertAnswer answer) {
    const std::lock_guard lock(mutex_);
    answer_ = std::move(answer);
  }

  /// Alerts that the caller waited for, in order.
  std::vector<RecordedAlert> alerts() const { return copyOf(alerts_); }
  /// Alerts posted for later, in order.
  std::vector<RecordedAlert> postedAlerts() const { return copyOf(postedAlerts_); }
  std::vector<std::string> consoleLines() const { return copyOf(consoleLines_); }
  std::vector<std::string> registeredTempFiles() const { return copyOf(registeredTempFiles_); }

  std::size_t cancelledTerminations() const {
    const std::lock_guard lock(mutex_);
    return cancelledTerminations_;
  }

  /// Number of console lines that contain `part`.
  std::size_t consoleLinesWith(const std::string& part) const {
    const auto lines = consoleLines();
    return static_cast<std::size_t>(std::count_if(
        lines.begin(), lines.end(),
        [&part](const std::string& line) { return line.find(part) != std::string::npos; }));
  }

  void clear() {
    const std::lock_guard lock(mutex_);
    alerts_.clear();
    postedAlerts_.clear();
    consoleLines_.clear();
    registeredTempFiles_.clear();
    cancelledTerminations_ = 0;
  }

 private:
  template <typename T>
  std::vector<T> copyOf(const std::vector<T>& recorded) const {
    const std::lock_guard lock(mutex_);
    return recorded;
  }

  mutable std::mutex mutex_;  // guards everything below
  std::vector<RecordedAlert> alerts_;
  std::vector<RecordedAlert> postedAlerts_;
  std::vector<std::string> consoleLines_;
  std::vector<std::string> registeredTempFiles_;
  std::size_t cancelledTerminations_ = 0;
  AlertAnswer answer_;
};

/// Recording services as a member of a test fixture, installed while it lives.
class InstalledRecordingServices {
 public:
  RecordingServices* operator->() const { return services_.get(); }
  RecordingServices& operator*() const { return *services_; }

 private:
  std::shared_ptr<RecordingServices> services_ = std::make_shared<RecordingServices>();
  platform::Installed<platform::ApplicationServices>::Scope installation_{services_};
};

}  // namespace support
