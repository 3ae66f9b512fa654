// What a screen reader finds in the real program, and what it can do there.
#include <algorithm>

#include "acceptance/AcceptanceTest.h"
#include "support/AccessibilityBus.h"

using namespace support;

namespace {

constexpr int kChecked = 4;  // of the accessibility service's states

class Accessibility : public AcceptanceTest {
 protected:
  using Node = AccessibilityBus::Node;

  void startWithBus() {
    std::string error;
    bus_ = AccessibilityBus::start(error);
    ASSERT_NE(bus_, nullptr) << error;
    // The screen's environment has no message bus.
    RunningOrvo::Options options;
    options.wrapper = {"env"};
    for (const auto& [name, value] : bus_->environment()) {
      options.wrapper.push_back(name + "=" + value);
    }
    ASSERT_NO_FATAL_FAILURE(startOrvo(options));
    ASSERT_TRUE(eventually([&] {
      nodes_ = bus_->nodesOf(orvo_->pid());
      return !nodes_.empty() && !named("Waveform").path.empty();
    })) << "the program is not on the accessibility bus";
  }

  /// The first thing of this name, and of this role where one is given; empty if there is none.
  [[nodiscard]] Node named(const std::string& name, const std::string& role = {}) const {
    const auto found = std::find_if(nodes_.begin(), nodes_.end(), [&](const Node& node) {
      return node.name == name && (role.empty() || node.role == role);
    });
    return found == nodes_.end() ? Node() : *found;
  }

  [[nodiscard]] Node button(const std::string& name) const {
    for (const char* role : {"push button", "toggle button", "check box"}) {
      if (const Node found = named(name, role); !found.path.empty()) {
        return found;
      }
    }
    return {};
  }

  std::unique_ptr<AccessibilityBus> bus_;
  std::vector<Node> nodes_;
};

TEST_F(Accessibility, EveryControlHasANameARoleAndAPressAction) {
  ASSERT_NO_FATAL_FAILURE(startWithBus());
  for (const char* name : {"To Start", "Record", "Stop", "Pause", "Play", "To End", "Spectrum"}) {
    const Node found = button(name);
    EXPECT_FALSE(found.path.empty()) << name;
    EXPECT_NE(std::find(found.actions.begin(), found.actions.end(), "Press"), found.actions.end())
        << name;
  }
  for (const char* name : {"Waveform", "Level meter", "Position and length"}) {
    EXPECT_FALSE(named(name).role.empty()) << name;
  }
  EXPECT_EQ(named("Waveform").description, "00:00:00.00 / 00:00:00.00");
  for (const char* menu : {"File", "Edit", "Transport", "View", "Help"}) {
    EXPECT_EQ(named(menu).role, "menu item") << menu;
  }
}

TEST_F(Accessibility, AScreenReaderRecordsAndReadsPositionAndLengthOut) {
  ASSERT_NO_FATAL_FAILURE(startWithBus());
  const Node record = button("Record");
  EXPECT_FALSE(bus_->hasState(record, kChecked));
  ASSERT_TRUE(bus_->act(record, "Press"));
  ASSERT_TRUE(orvo_->waitUntilRecorded(kFramesPerSecond)) << orvo_->process().errorOutput();
  EXPECT_TRUE(bus_->hasState(record, kChecked));
  ASSERT_TRUE(bus_->act(record, "Press"));
  ASSERT_TRUE(eventually([&] { return !bus_->hasState(record, kChecked); }));
  nodes_ = bus_->nodesOf(orvo_->pid());
  const std::string told = named("Waveform").description;
  EXPECT_EQ(told.substr(0, 14), "00:00:00.00 / ") << "back at the start";
  EXPECT_GE(told.substr(14), "00:00:01.00") << told;
  EXPECT_EQ(named("Position and length").description, told);
}

}  // namespace
