#pragma once

#include <memory>
#include <string>
#include <vector>

#include "acceptance/DocumentTest.h"
#include "support/programs/AccessibilityBus.h"

/// Base of the acceptance tests that read what a screen reader would: names, notices, alerts.
///
/// Threads: the test's own.
class AccessibleFixture : public DocumentTest {
 protected:
  using Node = support::AccessibilityBus::Node;

  /// Starts the program on an accessibility bus; returns once its first window is there.
  void startWithBus(support::RunningOrvo::Options options = {});

  /// The first of the elements as they were last read with this name, and this role if one is
  /// given; empty if there is none.
  [[nodiscard]] Node named(const std::string& name, const std::string& role = {}) const;
  [[nodiscard]] Node button(const std::string& name) const;
  /// Reads all elements again.
  void readNodes() { nodes_ = bus_->nodesOf(orvo_->pid()); }

  /// What the first window's line of notices says now; empty for nothing.
  [[nodiscard]] std::string notice() const;
  /// Waits until the line of notices says exactly this.
  void expectNotice(const std::string& text) const;

  /// Waits for an alert, expects it to be the only one and to say this, and dismisses it.
  void expectOneAlertThatSays(const std::string& text);

  const std::string data_ = folder_.makeFolder("data");
  std::unique_ptr<support::AccessibilityBus> bus_;
  std::vector<Node> nodes_;

 private:
  /// All that the alerts and questions on the screen say.
  [[nodiscard]] std::string alertText() const;
};
