#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/desktop/SleepInhibitor.h"

namespace support {

/// Counts what keeps the machine awake. Installed while it lives; holds may outlive it.
/// Threads: main.
class RecordingSleepInhibitor : public platform::SleepInhibitor {
 public:
  [[nodiscard]] int holds() const { return *holds_; }
  /// Of every hold that was ever asked for.
  [[nodiscard]] const std::vector<std::string>& reasons() const { return reasons_; }

  std::unique_ptr<Hold> hold(const QString& reason) override {
    reasons_.push_back(reason.toStdString());
    return std::make_unique<CountedHold>(holds_);
  }

 private:
  class CountedHold : public Hold {
   public:
    explicit CountedHold(std::shared_ptr<int> holds) : holds_(std::move(holds)) { ++*holds_; }
    ~CountedHold() override { --*holds_; }
    CountedHold(const CountedHold&) = delete;
    CountedHold& operator=(const CountedHold&) = delete;

   private:
    const std::shared_ptr<int> holds_;
  };

  const std::shared_ptr<int> holds_ = std::make_shared<int>(0);
  std::vector<std::string> reasons_;
  platform::Installed<platform::SleepInhibitor>::Scope installation_{*this};
};

}  // namespace support
