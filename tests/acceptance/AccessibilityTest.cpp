// What a screen reader finds, and can do, in the real program.
#include <algorithm>

#include "acceptance/AccessibleFixture.h"
#include "support/RecoveredFolder.h"
#include "support/programs/AudioFileTools.h"

using namespace support;

namespace {

// Of the accessibility service's states.
constexpr int kChecked = 4;
constexpr int kFocused = 12;

/// The position of a text like "00:00:03.60 / 00:00:04.00" within its first minute; -1 for others.
int hundredthsOf(const std::string& text) {
  return text.size() < 11 ? -1 : 100 * std::stoi(text.substr(6, 2)) + std::stoi(text.substr(9, 2));
}

class Accessibility : public AccessibleFixture {
 protected:
  void startWithBusAndFile(const std::string& file) {
    RunningOrvo::Options options;
    options.files = {file};
    startWithBus(options);
  }

  /// A recording of this many seconds that 16 bits hold exactly.
  [[nodiscard]] std::string writeTake(const std::string& name, double seconds) const {
    const std::string path = document(name);
    const std::string raw = folder_.file("take.raw");
    const Samples samples = noise16(static_cast<std::size_t>(seconds * kFramesPerSecond), 3);
    EXPECT_TRUE(writeRaw(raw, samples));
    EXPECT_EQ(ffmpeg({"-f", "f32le", "-ar", "44100", "-ac", "2", "-i", raw, path}), "");
    return path;
  }

  /// What is read out for the waveform now: position and length.
  [[nodiscard]] std::string waveformTells() const {
    const auto nodes = bus_->nodesFrom(named("Waveform"));
    return nodes.empty() ? std::string() : nodes.front().description;
  }
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

TEST_F(Accessibility, TheQuestionAboutRecoveredRecordingsIsReadOutAndAnswered) {
  ASSERT_TRUE(screen_);
  const RecoveredFolder recovered(data_);
  recovered.add("Orvo recording 2026-11-21 14.02.31.caf", noise16(kFramesPerSecond * 65, 4));
  ASSERT_NO_FATAL_FAILURE(startWithBus());
  ASSERT_FALSE(screen_->waitForWindow(orvo_->pid(), "Recovered Recordings").empty());
  readNodes();
  ASSERT_FALSE(named("Recovered Recordings", "dialog").path.empty());
  EXPECT_NE(named("Recovered Recordings", "dialog")
                .description.find("Orvo ended unexpectedly. Recordings kept: 1"),
            std::string::npos);
  EXPECT_FALSE(named("21 Nov 2026 14:02:31, 1 min 5 s, Complete").path.empty());
  for (const char* name : {"Later", "Delete"}) {
    EXPECT_FALSE(button(name).path.empty()) << name;
  }
  ASSERT_TRUE(bus_->act(button("Open"), "Press"));
  EXPECT_FALSE(screen_->waitForWindow(orvo_->pid(), "Orvo - Recovered").empty());
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
  readNodes();
  const std::string told = named("Waveform").description;
  EXPECT_EQ(told.substr(0, 14), "00:00:00.00 / ") << "back at the start";
  EXPECT_GE(told.substr(14), "00:00:01.00") << told;
  EXPECT_EQ(named("Position and length").description, told);
}

TEST_F(Accessibility, TheWaveformsKeysMoveTheMarkerAndTheNewPositionIsReadOut) {
  const std::string take = writeTake("take.wav", 4.0);
  ASSERT_NO_FATAL_FAILURE(startWithBusAndFile(take));
  ASSERT_TRUE(eventually([&] { return waveformTells() == "00:00:00.00 / 00:00:04.00"; }));
  for (int i = 0; i < 10 && !bus_->hasState(named("Waveform"), kFocused); ++i) {
    ASSERT_TRUE(screen_->pressKey("Tab"));
  }
  ASSERT_TRUE(bus_->hasState(named("Waveform"), kFocused));
  const std::vector<std::pair<std::string, int>> steps{
      {"Right", 100}, {"shift+Right", 110}, {"Prior", 150}, {"Left", 50},
      {"End", 400},   {"Next", 360},        {"Home", 0}};
  for (const auto& [key, position] : steps) {
    ASSERT_TRUE(screen_->pressKey(key));
    std::string told;
    EXPECT_TRUE(eventually([&, expected = position] {
      told = waveformTells();
      const int hundredths = hundredthsOf(told);
      // A step may end a frame short, and hundredths are truncated.
      return hundredths == expected || hundredths == expected - 1;
    })) << key
        << ": " << told;
  }
}

TEST_F(Accessibility, WhatMustBeKnownOfARecordingIsANotice) {
  ASSERT_NO_FATAL_FAILURE(startWithBus());
  ASSERT_TRUE(bus_->act(button("Record"), "Press"));
  expectNotice("No microphone: recording what this computer plays");  // a monitor is the default
  ASSERT_TRUE(orvo_->waitUntilRecorded(kFramesPerSecond));
  ASSERT_TRUE(bus_->act(button("Record"), "Press"));
  expectNotice("Recording has been paused.");
}

TEST_F(Accessibility, AProgressBarTellsWhatGoesOnAndIsGoneAfterwards) {
  const std::string take = writeTake("take.wav", 480.0);  // encoding it takes a while
  ASSERT_NO_FATAL_FAILURE(startWithBusAndFile(take));
  ASSERT_TRUE(eventually([&] { return waveformTells() == "00:00:00.00 / 00:08:00.00"; }));
  const Window panel = openPanel("ctrl+shift+s", "Save As");
  ASSERT_FALSE(panel.empty());
  ASSERT_NO_FATAL_FAILURE(chooseKind(Kind::aac));
  ASSERT_NO_FATAL_FAILURE(chooseFile(document("take.m4a")));
  const auto shownBar = [&] {
    constexpr int kShowing = 25;
    for (const Node& node : bus_->nodesFrom(named("Waveform"))) {
      if (node.role == "progress bar" && bus_->hasState(node, kShowing)) {
        return node.name;
      }
    }
    return std::string();
  };
  EXPECT_TRUE(eventually([&] { return shownBar() == "Saving"; }));
  ASSERT_NO_FATAL_FAILURE(expectTitle("take.m4a"));
  EXPECT_TRUE(eventually([&] { return shownBar().empty(); }));
}

}  // namespace
