#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "audio/OVAQRecorder.h"
#include "audio/OVAudioFileReader.h"
#include "audio/OVAudioFileWriter.h"
#include "controls/buttons/OVTransportButton.h"
#include "document/RecordedStretches.h"
#include "document/VLRecorderWindowController.h"
#include "failures/CountedAudioDevice.h"
#include "failures/FailingCalls.h"
#include "platform/sound/DeviceAudioQueues.h"
#include "support/MainLoop.h"
#include "support/NumberedFrames.h"
#include "support/TemporaryFolder.h"
#include "support/fakes/ManualAudioClock.h"
#include "support/fakes/RecordingDesktop.h"
#include "support/fakes/RecordingServices.h"
#include "support/fakes/RecordingSleepInhibitor.h"
#include "support/fakes/RememberingKeeper.h"
#include "support/fakes/ScriptedAudioDevice.h"
#include "support/fakes/ScriptedFileDialogs.h"

/// A document without a window on the system's files and a scripted device, for one run in which
/// one call fails. Its audio and its files are of numbered frames.
///
/// Threads: main.
class FailureBench {
 public:
  static constexpr std::uint64_t kFrameBytes = 8;
  static constexpr std::uint32_t kChunkFrames = 4096;

  ~FailureBench() {
    failing::end();
    closeDocument();
  }
  FailureBench() = default;
  FailureBench(const FailureBench&) = delete;
  FailureBench& operator=(const FailureBench&) = delete;

  void makeDocument() {
    document_ = VLRecorderWindowController::initWithWindow(nullptr);
    document_->windowDidLoad();
    settle();
  }

  void closeDocument() {
    if (document_) {
      document_->windowWillClose(nullptr);
      document_.reset();
      settle();
    }
  }

  static void settle() {
    for (int i = 0; i < 2; ++i) {
      EXPECT_TRUE(awaitGlobalQueue());
      EXPECT_TRUE(drainMainQueue());
    }
  }

  /// Runs the main loop until no file operation runs; cancels what is asked.
  void awaitIdle() {
    EXPECT_TRUE(runMainLoopUntil([this] {
      while (panels_->sheets() > 0) {
        ++questions_;
        panels_->answerSheet(0);
      }
      return !document_->isFileIOActive();
    }));
    settle();
  }

  std::string at(const std::string& name) const { return folder_.file(name); }

  std::string writeFile(const std::string& name, std::uint64_t first, std::uint64_t frames) {
    std::vector<float> samples(2 * frames);
    support::makeNumbered(samples.data(), first, frames);
    const auto writer = OVAudioFileWriter::initWithFile(at(name), OVAudioFileWriter::kWave);
    const std::uint64_t size = samples.size() * sizeof(float);
    EXPECT_EQ(writer->sinkData(samples.data(), size), size);
    EXPECT_TRUE(writer->close());
    return at(name);
  }

  static std::vector<float> readFile(const std::string& path) {
    std::vector<float> samples;
    const auto reader = OVAudioFileReader::initWithFile(path);
    if (!reader) {
      ADD_FAILURE() << path << " cannot be read";
      return samples;
    }
    while (const std::uint32_t frames = reader->readFrameChunkWithSize(10000)) {
      const auto* const floats = reinterpret_cast<const float*>(reader->exposeBuffer());
      samples.insert(samples.end(), floats, floats + 2 * std::size_t{frames});
    }
    return samples;
  }

  void open(const std::string& path) {
    document_->openFileNamed(path);
    awaitIdle();
  }

  /// Presses Record, feeds so many chunks from this number on, each of which is delivered before
  /// the next, and presses Pause.
  void record(std::uint64_t number, int chunks) {
    recordButton_.setIsOn(true);
    document_->recButton(&recordButton_);
    std::vector<float> samples(2 * std::size_t{kChunkFrames});
    for (int chunk = 0; chunk < chunks; ++chunk) {
      support::makeNumbered(samples.data(), number, kChunkFrames);
      number += kChunkFrames;
      clock_->advance(std::chrono::nanoseconds(kChunkFrames * 1'000'000'000ULL / 44100));
      static_cast<void>(device_->feed(samples));  // without an input, nothing is heard
      if (const auto recorder = document_->recorder()) {
        recorder->queue()->waitUntilDelivered(recorder->queue()->capturedFrames());
      }
      EXPECT_TRUE(drainMainQueue());
    }
    document_->pauseButton(nullptr);
    settle();
  }

  void play() {
    playButton_.setIsOn(true);
    document_->playButton(&playButton_);
    EXPECT_TRUE(runMainLoopUntil([this] {
      return device_->isOutputRunning() || document_->player() == nullptr || alertCount() > 0;
    }));
    static_cast<void>(device_->pull(1024));
    EXPECT_TRUE(drainMainQueue());
    document_->stopButton(nullptr);
    settle();
  }

  /// A failure to open the input is remembered for a second.
  void letDeviceComeBack() {
    if (!device_->isInputOpen()) {
      clock_->advance(std::chrono::seconds(2));
    }
  }

  [[nodiscard]] std::uint64_t length() const {
    return document_ && document_->buffer() ? document_->buffer()->bufferSizeInFrames() : 0;
  }

  /// Frames, from the beginning on, that are those of the model.
  [[nodiscard]] std::uint64_t equalFrames(const RecordedStretches& model) const {
    std::uint64_t equal = 0;
    if (!document_->buffer()) {
      return equal;
    }
    for (const auto& stretch : model.between(0, model.length())) {
      std::vector<float> samples(2 * stretch.frames);
      const auto read = document_->buffer()->readDataInto(
          samples.data(), stretch.frames * kFrameBytes, equal * kFrameBytes);
      const auto same = support::equalNumbered(samples.data(), stretch.number, read.frameCount);
      equal += same;
      if (same < stretch.frames) {
        break;
      }
    }
    return equal;
  }

  void expectAudio(const RecordedStretches& model) const {
    EXPECT_EQ(length(), model.length());
    EXPECT_EQ(equalFrames(model), model.length());
  }

  [[nodiscard]] std::size_t alertCount() const {
    return services_->alerts().size() + services_->postedAlerts().size();
  }
  [[nodiscard]] std::size_t questionCount() const { return questions_; }

  support::InstalledRecordingServices services_;
  support::InstalledScriptedPanels panels_;
  support::RecordingSleepInhibitor sleep_;
  support::RecordingDesktop desktop_;
  support::RememberingKeeper keeper_;
  platform::Installed<RecordingKeeper>::Scope keeperInstallation_{keeper_};
  support::TemporaryFolder folder_;
  std::shared_ptr<platform::ManualAudioClock> clock_ =
      std::make_shared<platform::ManualAudioClock>();
  std::shared_ptr<platform::ScriptedAudioDevice> device_ =
      std::make_shared<platform::ScriptedAudioDevice>();
  platform::Installed<platform::AudioQueues>::Scope queuesInstallation_{
      std::make_shared<platform::DeviceAudioQueues>(std::make_shared<CountedAudioDevice>(device_),
                                                    clock_)};
  OVTransportButton recordButton_;
  OVTransportButton playButton_;
  std::shared_ptr<VLRecorderWindowController> document_;

 private:
  std::size_t questions_ = 0;
};
