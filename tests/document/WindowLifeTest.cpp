#include <chrono>
#include <filesystem>

#include <gtest/gtest.h>
#include <QApplication>
#include <QTest>

#include "audio/OVAQPlayer.h"
#include "audio/OVAQRecorder.h"
#include "controls/OVRecorderWindow.h"
#include "controls/buttons/OVTransportButton.h"
#include "document/VLRecorderWindowController.h"
#include "platform/mainloop/MainQueue.h"
#include "platform/sound/DeviceAudioQueues.h"
#include "support/MainLoop.h"
#include "support/fakes/ManualAudioClock.h"
#include "support/fakes/RecordingServices.h"
#include "support/fakes/ScriptedAudioDevice.h"
#include "support/fakes/ScriptedFileDialogs.h"

/// Documents on real audio queues over a scripted device.
class WindowLifeTest : public testing::Test {
 protected:
  static constexpr std::uint32_t kChunkFrames = 4096;

  WindowLifeTest() { panels_->answerEverySheetWith(VLRecorderWindowController::kDontSave); }
  ~WindowLifeTest() override {
    for (QWidget* const widget : QApplication::topLevelWidgets()) {
      if (auto* const window = qobject_cast<OVRecorderWindow*>(widget)) {
        window->performClose();
      }
    }
    settle();
  }

  static void settle() {
    EXPECT_TRUE(awaitGlobalQueue());
    bool done = false;
    platform::mainQueue().async([&] { done = true; });
    EXPECT_TRUE(runMainLoopUntil([&] { return done; }));
  }

  std::shared_ptr<VLRecorderWindowController> open() {
    auto document = VLRecorderWindowController::initWithWindowNibName("VNRecorderWindow");
    document->showWindow();
    EXPECT_TRUE(device_->awaitInputOpen());
    return document;
  }

  static void strike(VLRecorderWindowController& document, Qt::Key key) {
    QTest::keyClick(document.window(), key);
  }

  void record(VLRecorderWindowController& document, int chunks) {
    strike(document, Qt::Key_R);
    const auto before = document.buffer()->bufferSizeInFrames();
    for (int i = 0; i < chunks; ++i) {
      device_->feedConstant(kChunkFrames, 0.5F, -0.5F);
    }
    strike(document, Qt::Key_R);  // waits for the audio captured before the press
    EXPECT_EQ(document.buffer()->bufferSizeInFrames(),
              before + static_cast<std::uint64_t>(chunks) * kChunkFrames);
  }

  void playToTheEnd(VLRecorderWindowController& document) {
    strike(document, Qt::Key_Space);
    ASSERT_NE(document.player(), nullptr);
    EXPECT_TRUE(device_->awaitOutputRunning());
    EXPECT_TRUE(runMainLoopUntil([&] {
      device_->pull(1024);
      device_->hearEverything();
      device_->feedConstant(1024, 0.0F, 0.0F);  // the microphone goes on
      clock_->advance(std::chrono::microseconds(23220));
      return document.player() == nullptr;
    }));
  }

  static std::size_t entries(const char* folder) {
    std::size_t count = 0;
    for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(folder)) {
      ++count;
    }
    return count;
  }
  static std::size_t threads() { return entries("/proc/self/task"); }
  static std::size_t descriptors() { return entries("/proc/self/fd"); }

  std::shared_ptr<platform::ScriptedAudioDevice> device_ =
      std::make_shared<platform::ScriptedAudioDevice>();
  /// Turned by what is played and fed: a slow machine's own clock would tell of lost frames.
  std::shared_ptr<platform::ManualAudioClock> clock_ =
      std::make_shared<platform::ManualAudioClock>();
  support::InstalledRecordingServices services_;
  support::InstalledScriptedPanels panels_;
  std::shared_ptr<platform::DeviceAudioQueues> queues_ =
      std::make_shared<platform::DeviceAudioQueues>(device_, clock_);
  platform::Installed<platform::AudioQueues>::Scope installation_{queues_};
};

TEST_F(WindowLifeTest, TwoWindowsRecordAtTheSameTimeFromOneInputAndNeitherLosesAFrame) {
  const auto first = open();
  const auto second = open();
  strike(*first, Qt::Key_R);
  strike(*second, Qt::Key_R);
  for (int i = 0; i < 8; ++i) {
    device_->feedConstant(kChunkFrames, 0.25F, 0.25F);
  }
  strike(*first, Qt::Key_R);  // replaces the recorder; the other document's continues
  for (int i = 0; i < 8; ++i) {
    device_->feedConstant(kChunkFrames, 0.25F, 0.25F);
  }
  strike(*second, Qt::Key_R);
  EXPECT_EQ(first->buffer()->bufferSizeInFrames(), 8u * kChunkFrames);
  EXPECT_EQ(second->buffer()->bufferSizeInFrames(), 16u * kChunkFrames);
  EXPECT_EQ(device_->inputsOpened(), 1u);
}

TEST_F(WindowLifeTest, ARecordingPlaysBackToItsEndAndTheTransportStops) {
  const auto document = open();
  record(*document, 3);
  playToTheEnd(*document);
  EXPECT_EQ(document->playbackPosition(), 0u);
  EXPECT_FALSE(document->window()->findChild<OVTransportButton*>("playButton")->isOn());
}

TEST_F(WindowLifeTest, ClosingInEveryStateEndsCleanly) {
  const auto idle = open();
  const auto recording = open();
  const auto playing = open();
  const auto refreshing = open();
  record(*playing, 3);
  record(*refreshing, 3);
  strike(*recording, Qt::Key_R);
  device_->feedConstant(kChunkFrames, 0.5F, 0.5F);
  strike(*playing, Qt::Key_Space);
  EXPECT_TRUE(device_->awaitOutputRunning());
  device_->pull(1024);
  refreshing->refreshCompleteUI(true);
  for (const auto& document : {idle, recording, playing, refreshing}) {
    document->window()->performClose();
  }
  settle();
}

TEST_F(WindowLifeTest, TwoHundredWindowsLeaveNeitherThreadsNorDescriptorsNorTimersBehind) {
  const auto useOne = [this] {
    const auto document = open();
    record(*document, 2);
    playToTheEnd(*document);
    const QPointer<OVRecorderWindow> window = document->window();
    window->performClose();
    EXPECT_TRUE(runMainLoopUntil([&] { return window.isNull(); }));
  };
  for (int i = 0; i < 5; ++i) {
    useOne();
  }
  settle();
  const std::size_t threadsBefore = threads();
  const std::size_t descriptorsBefore = descriptors();
  for (int i = 0; i < 195; ++i) {
    useOne();
  }
  settle();
  EXPECT_TRUE(runMainLoopUntil([&] { return threads() <= threadsBefore; }))
      << threads() << " threads, " << threadsBefore << " before";
  // A background job may hold the last recording slightly longer than its window.
  EXPECT_TRUE(runMainLoopUntil([&] { return descriptors() <= descriptorsBefore; }))
      << descriptors() << " descriptors, " << descriptorsBefore << " before";
}
