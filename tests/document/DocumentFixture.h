#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include <gtest/gtest.h>
#include <QTest>

#include "audio/OVAQPlayer.h"
#include "audio/OVAQRecorder.h"
#include "controls/OVRecorderWindow.h"
#include "controls/buttons/OVTransportButton.h"
#include "displays/OVTimeView.h"
#include "document/VLRecorderWindowController.h"
#include "storage/OVBlockBuffer.h"
#include "support/MainLoop.h"
#include "support/fakes/RecordingServices.h"
#include "support/fakes/RecordingSleepInhibitor.h"
#include "support/fakes/ScriptedFileDialogs.h"
#include "support/fakes/ScriptedFreeSpace.h"
#include "support/fakes/SteppedAudioQueues.h"
#include "waveform/OVDynamicWaveForm.h"
#include "waveform/OVStaticWaveform.h"
#include "waveform/views/OVPlaybackMarkerView.h"

/// A document on sound queues that the test steps manually, with or without a window.
class DocumentFixture : public testing::Test {
 protected:
  static constexpr std::uint32_t kChunkFrames = 4096;
  static constexpr std::uint64_t kFrameBytes = 8;

  // A test that closes a changed document discards the changes unless it sets another answer.
  DocumentFixture() { panels_->answerEverySheetWith(VLRecorderWindowController::kDontSave); }
  ~DocumentFixture() override { closeDocument(); }

  void openDocument() {
    document_ = VLRecorderWindowController::initWithWindow(nullptr);
    document_->windowDidLoad();
  }

  void openWindow() {
    document_ = VLRecorderWindowController::initWithWindowNibName("VNRecorderWindow");
    document_->showWindow();
    drainMainQueue();
  }

  void closeDocument() {
    if (document_) {
      if (auto* const window = document_->window()) {
        window->performClose();
      } else {
        document_->windowWillClose(nullptr);
      }
      document_.reset();
      settle();
    }
  }

  /// Runs what background queues and the main queue still hold.
  static void settle() {
    EXPECT_TRUE(awaitGlobalQueue());
    drainMainQueue();
    EXPECT_TRUE(awaitGlobalQueue());
    drainMainQueue();
  }

  static void drainMainQueue() { EXPECT_TRUE(::drainMainQueue()); }

  /// The document's button of this name, or the test's own if there is no window.
  OVTransportButton* button(const char* name) {
    if (document_->window() != nullptr) {
      return document_->window()->findChild<OVTransportButton*>(name);
    }
    auto& own = ownButtons_[name];
    if (!own) {
      own = std::make_unique<OVTransportButton>();
    }
    return own.get();
  }

  void setOn(OVTransportButton* switchButton, bool on) { switchButton->setIsOn(on); }

  void pressRecord() {
    auto* const rec = button("recButton");
    rec->setIsOn(true);
    document_->recButton(rec);
  }
  void pressPlay() {
    auto* const play = button("playButton");
    play->setIsOn(true);
    document_->playButton(play);
  }

  /// Captures one buffer whose samples are all `value`; false if the recorder accepts none.
  bool capture(float value, std::uint32_t frames = kChunkFrames) {
    captured_ += frames;
    const std::vector<float> samples(2 * frames, value);
    const bool delivered = queues_.input().deliver(samples, captured_);
    queues_->capturedFrames = captured_;
    return delivered;
  }

  /// A recording from press to pause.
  void recordChunks(int chunks, float value = 0.25F) {
    pressRecord();
    for (int i = 0; i < chunks; ++i) {
      ASSERT_TRUE(capture(value));
    }
    document_->pauseButton(nullptr);
  }

  std::vector<float> samplesAt(std::uint64_t frame, std::uint64_t frames) {
    std::vector<float> samples(2 * frames);
    const auto result = document_->buffer()->readDataInto(samples.data(), frames * kFrameBytes,
                                                          frame * kFrameBytes);
    samples.resize(result.byteCount / sizeof(float));
    return samples;
  }

  bool summaryIsStatic() {
    return std::dynamic_pointer_cast<OVStaticWaveform>(document_->waveForm()) != nullptr;
  }

  /// Alerts that were shown or are pending.
  std::size_t alertCount() { return services_->alerts().size() + services_->postedAlerts().size(); }

  bool awaitAlert() {
    return runMainLoopUntil([this] { return alertCount() > 0; });
  }

  std::uint64_t length() { return document_->buffer()->bufferSizeInFrames(); }

  support::InstalledRecordingServices services_;
  support::InstalledSteppedQueues queues_;
  support::InstalledScriptedPanels panels_;
  support::InstalledFreeSpace freeSpace_;
  support::RecordingSleepInhibitor sleep_;
  std::shared_ptr<VLRecorderWindowController> document_;
  std::uint64_t captured_ = 0;

 private:
  std::map<std::string, std::unique_ptr<OVTransportButton>> ownButtons_;
};
