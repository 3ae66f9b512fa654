// A document of twenty hours compared with one of ten minutes: a cut at its middle, regenerating
// its waveform, undo, redo, and the first buffer played from the middle. No step may take longer
// than in the short one, nor take memory; the counter shows how much the peak rose meanwhile.
//
// Commands are measured in processor time of the main thread, which the window must wait for; the
// rest in wall-clock time. The waveform's yardstick is one read of the remaining audio in large
// reads.
#include <time.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <QCoreApplication>

#include "PeakMemory.h"
#include "controls/buttons/OVTransportButton.h"
#include "document/VLRecorderWindowController.h"
#include "platform/files/TemporaryFiles.h"
#include "platform/mainloop/MainQueue.h"
#include "platform/sound/AudioQueue.h"
#include "platform/sound/DeviceAudioQueues.h"
#include "storage/FoldedTemporaryFiles.h"
#include "support/fakes/ScriptedAudioDevice.h"

namespace {

using benchmarks::FoldedTemporaryFiles;

constexpr std::uint64_t kFrameBytes = 8;
constexpr std::uint64_t kTenMinutes = 600ULL * 44100;         // frames
constexpr std::uint64_t kTwentyHours = 20ULL * 3600 * 44100;  // frames
constexpr std::uint32_t kPlayedFrames = 1024;                 // a buffer of the player
constexpr std::size_t kPlays = 21;
constexpr double kPatienceSeconds = 300;

/// What one document took.
struct Steps {
  // Processor seconds.
  double cut = 0;
  double undo = 0;
  double redo = 0;
  // Seconds.
  double waveformAfterCut = 0;
  double readAfterCut = 0;
  double firstBuffer = 0;
  double growthMegabytes = 0;  // highest, from the cut to the played buffer
};

double processorSecondsOf(const std::function<void()>& step) {
  const auto now = [] {
    struct timespec time = {};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
  };
  const double start = now();
  step();
  return now() - start;
}

double secondsOf(const std::function<void()>& step) {
  const auto start = std::chrono::steady_clock::now();
  step();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

/// A document of this many frames that plays to a device which accepts any buffer.
class LongDocument {
 public:
  explicit LongDocument(std::uint64_t frames) {
    document_->windowDidLoad();
    OVAudioBufferInterface& buffer = *document_->buffer();
    const auto delegate = buffer.delegate();
    buffer.setDelegate({});
    const std::vector<float> sound(FoldedTemporaryFiles::kFold / sizeof(float), 0.25F);
    for (std::uint64_t frame = 0; frame < frames; frame += sound.size() / 2) {
      const std::uint64_t count = std::min(sound.size() / 2, frames - frame);
      buffer.writeData(sound.data(), frame * kFrameBytes,
                       static_cast<std::uint32_t>(count * kFrameBytes));
    }
    buffer.setDelegate(delegate);
    document_->refreshCompleteUI(true);
    settle();
  }
  ~LongDocument() {
    document_->windowWillClose(nullptr);
    document_.reset();
    settle();
  }
  LongDocument(const LongDocument&) = delete;
  LongDocument& operator=(const LongDocument&) = delete;

  /// Until nothing runs in the background.
  static void settle() {
    for (int i = 0; i < 2; ++i) {
      platform::globalQueue().waitUntilIdle(kPatienceSeconds);
      QCoreApplication::processEvents();
    }
  }

  [[nodiscard]] VLRecorderWindowController& controller() { return *document_; }

  /// Seconds from the press of Play until the device has a buffer, the median of several. 0 if the
  /// buffer did not hold the audio.
  [[nodiscard]] double playFirstBuffers() {
    std::vector<double> seconds(kPlays);
    std::generate(seconds.begin(), seconds.end(), [this] { return playFirstBuffer(); });
    std::sort(seconds.begin(), seconds.end());
    return seconds.front() > 0 ? seconds[kPlays / 2] : 0;
  }

  /// Reads the audio from its start to its end.
  void readAll() {
    std::vector<float> read(std::size_t{1} << 18);  // 1 MiB
    std::uint64_t offset = 0;
    while (const std::uint64_t count =
               document_->buffer()
                   ->readDataInto(read.data(), read.size() * sizeof(float), offset)
                   .byteCount) {
      offset += count;
    }
  }

 private:
  [[nodiscard]] double playFirstBuffer() {
    const std::vector<float> expected(std::size_t{2} * kPlayedFrames, 0.25F);
    const std::size_t openedBefore = device_->outputsOpened();
    OVTransportButton play;
    play.setIsOn(true);
    std::vector<float> played;
    const double seconds = secondsOf([&] {
      document_->playButton(&play);
      if (device_->awaitOutputRunning()) {
        played = device_->pull(kPlayedFrames);
      }
    });
    document_->stopButton(nullptr);
    const bool closed = device_->outputsOpened() == openedBefore + 1 &&
                        device_->awaitOutputsClosed(device_->outputsOpened());
    document_->setPlaybackPosition(document_->buffer()->bufferSizeInFrames() / 2);
    settle();
    return closed && played == expected ? seconds : 0.0;
  }

  FoldedTemporaryFiles files_{FoldedTemporaryFiles::Kept::theFirstFold};
  platform::Installed<platform::TemporaryFiles>::Scope filesInstallation_{files_};
  std::shared_ptr<platform::ScriptedAudioDevice> device_ =
      std::make_shared<platform::ScriptedAudioDevice>();
  platform::Installed<platform::AudioQueues>::Scope queues_{
      std::make_shared<platform::DeviceAudioQueues>(device_)};
  std::shared_ptr<VLRecorderWindowController> document_ =
      VLRecorderWindowController::initWithWindow(nullptr);
};

Steps walkThrough(std::uint64_t frames) {
  LongDocument document(frames);
  Steps steps;
  document.controller().setPlaybackPosition(frames / 2);
  benchmarks::forgetPeakMemory();
  const double before = benchmarks::peakMegabytes();
  steps.waveformAfterCut = secondsOf([&] {
    steps.cut = processorSecondsOf([&] { document.controller().removeAfterMarker(nullptr); });
    LongDocument::settle();
  });
  steps.readAfterCut = secondsOf([&] { document.readAll(); });
  steps.undo = processorSecondsOf([&] { document.controller().undoCommand(); });
  LongDocument::settle();
  steps.redo = processorSecondsOf([&] { document.controller().redoCommand(); });
  LongDocument::settle();
  document.controller().undoCommand();
  LongDocument::settle();
  document.controller().setPlaybackPosition(frames / 2);
  steps.firstBuffer = document.playFirstBuffers();
  steps.growthMegabytes = benchmarks::peakMegabytes() - before;
  return steps;
}

// All steps of a document run one after the other, and each is reported by a benchmark of its own,
// whose nth repetition takes the time of the nth document.
const Steps& stepsOf(std::uint64_t frames, std::size_t repetition) {
  static std::map<std::uint64_t, std::vector<Steps>> documents;
  std::vector<Steps>& made = documents[frames];
  while (made.size() <= repetition) {
    made.push_back(walkThrough(frames));
  }
  return made[repetition];
}

void add(const std::string& name, std::uint64_t frames, double Steps::*step) {
  const auto repetition = std::make_shared<std::size_t>(0);
  benchmark::RegisterBenchmark(name.c_str(),
                               [=](benchmark::State& state) {
                                 const Steps& steps = stepsOf(frames, (*repetition)++);
                                 for (auto _ : state) {
                                   state.SetIterationTime(steps.*step);
                                 }
                                 if (steps.*step <= 0) {
                                   state.SkipWithError("nothing was done");
                                 }
                                 state.counters["growth_MB"] = steps.growthMegabytes;
                               })
      ->UseManualTime()
      ->Iterations(1)
      ->Unit(benchmark::kMicrosecond);
}

const bool kRegistered = [] {
  for (const auto& [group, step] :
       {std::pair("LongDocumentCut", &Steps::cut), std::pair("LongDocumentUndo", &Steps::undo),
        std::pair("LongDocumentRedo", &Steps::redo),
        std::pair("LongDocumentFirstPlayedBuffer", &Steps::firstBuffer)}) {
    add(group + std::string("/yardstick: ten minutes"), kTenMinutes, step);
    add(group + std::string("/twenty hours"), kTwentyHours, step);
  }
  add("LongDocumentWaveform/yardstick: reading ten hours", kTwentyHours, &Steps::readAfterCut);
  add("LongDocumentWaveform/after the cut to ten hours", kTwentyHours, &Steps::waveformAfterCut);
  return true;
}();

}  // namespace
