#pragma once

#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "platform/files/FreeSpace.h"

namespace support {

/// Disks with as much free space as a test sets, initially without end. Install it with
/// platform::Installed.
///
/// Threads: any, also while disks are asked.
class ScriptedFreeSpace : public platform::FreeSpace {
 public:
  static constexpr std::uint64_t kUnlimited = std::numeric_limits<std::uint64_t>::max();

  void set(std::uint64_t bytes) {
    const std::lock_guard lock(mutex_);
    bytes_ = bytes;
    error_ = 0;
  }
  /// From now on the space cannot be read.
  void fail(int error) {
    const std::lock_guard lock(mutex_);
    error_ = error;
  }
  /// Runs before each answer, on its thread and outside the lock.
  void beforeAnswers(std::function<void()> hook) {
    const std::lock_guard lock(mutex_);
    hook_ = std::move(hook);
  }
  /// The folders asked about, in order.
  [[nodiscard]] std::vector<std::string> folders() const {
    const std::lock_guard lock(mutex_);
    return folders_;
  }

  [[nodiscard]] platform::Result<platform::DiskSpace> ofFolder(const std::string& folder) override {
    std::function<void()> hook;
    {
      const std::lock_guard lock(mutex_);
      folders_.push_back(folder);
      hook = hook_;
    }
    if (hook) {
      hook();
    }
    const std::lock_guard lock(mutex_);
    if (error_ != 0) {
      return error_;
    }
    return platform::DiskSpace{.freeBytes = bytes_};
  }

 private:
  mutable std::mutex mutex_;  // guards everything below
  std::uint64_t bytes_ = kUnlimited;
  int error_ = 0;
  std::function<void()> hook_;
  std::vector<std::string> folders_;
};

/// The same as a member of a test fixture, installed while it lives.
class InstalledFreeSpace {
 public:
  ScriptedFreeSpace* operator->() const { return space_.get(); }

 private:
  std::shared_ptr<ScriptedFreeSpace> space_ = std::make_shared<ScriptedFreeSpace>();
  platform::Installed<platform::FreeSpace>::Scope installation_{space_};
};

}  // namespace support
