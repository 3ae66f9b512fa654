#include "acceptance/AccessibleFixture.h"

#include <algorithm>

using namespace support;

namespace {

// The line of notices is the first of these; which one depends on Qt's version.
bool isNotices(const AccessibilityBus::Node& node) {
  return node.role == "notification" || node.role == "label";
}

}  // namespace

void AccessibleFixture::startWithBus(RunningOrvo::Options options) {
  std::string error;
  bus_ = AccessibilityBus::start(error);
  ASSERT_NE(bus_, nullptr) << error;
  // The screen's environment has no message bus.
  std::vector<std::string> wrapper{"env"};
  for (const auto& [name, value] : bus_->environment()) {
    wrapper.push_back(name + "=" + value);
  }
  options.wrapper.insert(options.wrapper.begin(), wrapper.begin(), wrapper.end());
  options.dataFolder = data_;
  ASSERT_NO_FATAL_FAILURE(startOrvo(options));
  ASSERT_TRUE(eventually([&] {
    readNodes();
    return !nodes_.empty() && !named("Waveform").path.empty();
  })) << "the program is not on the accessibility bus";
}

AccessibleFixture::Node AccessibleFixture::named(const std::string& name,
                                                 const std::string& role) const {
  const auto found = std::find_if(nodes_.begin(), nodes_.end(), [&](const Node& node) {
    return node.name == name && (role.empty() || node.role == role);
  });
  return found == nodes_.end() ? Node() : *found;
}

AccessibleFixture::Node AccessibleFixture::button(const std::string& name) const {
  for (const char* role : {"push button", "toggle button", "check box"}) {
    if (const Node found = named(name, role); !found.path.empty()) {
      return found;
    }
  }
  return {};
}

std::string AccessibleFixture::notice() const {
  const auto line = std::find_if(nodes_.begin(), nodes_.end(), isNotices);
  if (line == nodes_.end()) {
    return {};
  }
  const auto now = bus_->nodesFrom(*line);
  return now.empty() ? std::string() : now.front().name;
}

void AccessibleFixture::expectNotice(const std::string& text) const {
  std::string said;
  EXPECT_TRUE(eventually([&] {
    said = notice();
    return said == text;
  })) << "instead of \""
      << text << "\": \"" << said << "\"";
}

std::string AccessibleFixture::alertText() const {
  std::string text;
  for (const Node& window : bus_->windowsOf(orvo_->pid())) {
    if (window.name.starts_with("Orvo - ")) {
      continue;  // a document
    }
    for (const Node& node : bus_->nodesFrom(window)) {
      text += node.name + "\n" + node.description + "\n";
    }
  }
  return text;
}

void AccessibleFixture::expectOneAlertThatSays(const std::string& text) {
  ASSERT_TRUE(eventually([&] { return !alerts().empty(); }));
  const std::string said = alertText();
  EXPECT_NE(said.find(text), std::string::npos) << said;
  ASSERT_NO_FATAL_FAILURE(expectOneAlertAndDismissIt());
}
