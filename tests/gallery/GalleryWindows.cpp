#include "gallery/GalleryWindows.h"

#include <atomic>
#include <cmath>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <QApplication>
#include <QPalette>
#include <QTemporaryDir>

#include "app/OVMainMenu.h"
#include "app/OVTranslations.h"
#include "audio/OVAudioFileWriter.h"
#include "controls/OVNoticeView.h"
#include "controls/OVRecorderWindow.h"
#include "controls/buttons/OVTransportButton.h"
#include "document/VLRecorderWindowController.h"
#include "gallery/GalleryScreen.h"
#include "support/DarkPalette.h"
#include "support/Gate.h"
#include "support/MainLoop.h"
#include "support/fakes/FailingTemporaryFiles.h"
#include "support/fakes/RecordingServices.h"
#include "support/fakes/SteppedAudioQueues.h"

namespace {

constexpr std::size_t kChunkFrames = 4096;
constexpr std::uint64_t kFramesPerSecond = 44100;

/// A disk that passes a given number of transfers, then holds the next one until released.
class Disk {
 public:
  enum class Transfer { read, write };

  void stopAt(Transfer transfer, int number) {
    left_ = number;
    const auto hook = [this] {
      if (--left_ == 0) {
        stopped_ = true;
        gate_.pass();
      }
    };
    if (transfer == Transfer::read) {
      files_.beforeReads(hook);
    } else {
      files_.beforeWrites(hook);
    }
  }
  [[nodiscard]] bool hasStopped() const { return stopped_; }
  void goOn() { gate_.open(); }

 private:
  support::FailingTemporaryFiles files_;
  platform::Installed<platform::TemporaryFiles>::Scope installation_{files_};
  support::Gate gate_;
  std::atomic<int> left_ = 0;
  std::atomic<bool> stopped_ = false;
};

/// A document whose sound is generated here.
class Document {
 public:
  explicit Document(double scale) {
    queues_->levels = {{0.31F, 0.5F}, {0.22F, 0.4F}};
    controller_ = VLRecorderWindowController::initWithWindowNibName("VNRecorderWindow");
    new OVMainMenu(controller_, {});  // belongs to the window
    controller_->showWindow();
    static_cast<void>(showOnScreenOfScale(window(), scale));
  }
  ~Document() {
    disk_.goOn();
    static_cast<void>(runMainLoopUntil([&] { return !controller_->isFileIOActive(); }));
    controller_->pauseButton(nullptr);
    controller_->setDocumentEdited(false);  // otherwise closing would ask
    window().performClose();
    controller_.reset();
    settle();
  }
  Document(const Document&) = delete;
  Document& operator=(const Document&) = delete;

  [[nodiscard]] OVRecorderWindow& window() const { return *controller_->window(); }
  [[nodiscard]] VLRecorderWindowController& controller() const { return *controller_; }

  void press(const char* name) {
    window().findChild<OVTransportButton*>(QString::fromLatin1(name))->performClick();
    settle();
  }

  /// Presses Record and records this many seconds of a signal like speech.
  void record(double seconds) {
    press("recButton");
    const auto chunks = static_cast<int>(seconds * kFramesPerSecond / kChunkFrames);
    for (int i = 0; i < chunks; ++i) {
      capture();
      controller_->updatePlaybackMarkerView();
      settle();
    }
  }

  /// Records this many seconds of one level.
  void recordLevel(double seconds, float level) {
    const auto chunks = static_cast<int>(seconds * kFramesPerSecond / kChunkFrames) + 1;
    for (int i = 0; i < chunks; ++i) {
      deliver(std::vector<float>(2 * kChunkFrames, level));
    }
    controller_->updatePlaybackMarkerView();
    settle();
    auto* const notice = window().findChild<OVNoticeView*>();
    static_cast<void>(runMainLoopUntil([&] { return !notice->isFading(); }));
  }

  void showSpectrum() {
    controller_->toggleFFT(nullptr);
    auto* const view = window().findChild<QWidget*>("fftView");
    static_cast<void>(runMainLoopUntil(
        [&] { return view->isVisible() && view->parentWidget()->height() == view->height(); }));
    controller_->fireFFT();
    settle();
  }

  /// Begins a job that is held at a transfer of the disk, and shows its progress there.
  template <typename Begin>
  void holdAt(Disk::Transfer transfer, int number, Begin begin) {
    disk_.stopAt(transfer, number);
    begin();
    static_cast<void>(runMainLoopUntil([&] { return disk_.hasStopped(); }));
    static_cast<void>(drainMainQueue());
    controller_->updatePlaybackMarkerView();
    static_cast<void>(drainMainQueue());
    QCoreApplication::processEvents();
  }

  [[nodiscard]] std::string file(const char* name) const {
    return folder_.filePath(QString::fromLatin1(name)).toStdString();
  }

  static void settle() {
    static_cast<void>(awaitGlobalQueue());
    static_cast<void>(drainMainQueue());
    QCoreApplication::processEvents();
  }

 private:
  void capture() {
    std::vector<float> samples(2 * kChunkFrames);
    for (std::size_t i = 0; i < kChunkFrames; ++i) {
      const double t = static_cast<double>(captured_ + i) / kFramesPerSecond;
      const double loudness = std::abs(std::sin(t * 1.9) * std::sin(t * 0.37 + 0.4));
      double voice = 0.0;
      for (int k = 1; k <= 24; ++k) {
        voice += std::sin(t * 6.2831853 * 180.0 * k) / (k * 1.6);
      }
      const double noise = static_cast<double>(random_() % 2000U) / 1000.0 - 1.0;
      const auto sample = static_cast<float>(loudness * (0.35 * voice + 0.25 * noise));
      samples[2 * i] = sample;
      samples[2 * i + 1] = 0.8F * sample;
    }
    deliver(samples);
  }

  void deliver(const std::vector<float>& samples) {
    captured_ += kChunkFrames;
    queues_.input().deliver(samples, captured_);
    queues_->capturedFrames = captured_;
  }

  support::InstalledRecordingServices services_;
  support::InstalledSteppedQueues queues_;
  const QTemporaryDir folder_;
  Disk disk_;
  std::shared_ptr<VLRecorderWindowController> controller_;
  std::uint64_t captured_ = 0;
  std::mt19937 random_{5};
};

/// A stopped recording with the marker in its middle.
void makeRecorded(Document& document) {
  document.record(6.0);
  document.press("pauseButton");
  document.controller().waveFormViewReceivedClick(nullptr, {}, 0.38);
  document.controller().updatePlaybackMarkerView();
  Document::settle();
}

void play(Document& document) {
  document.press("playButton");
  const std::uint64_t position = document.controller().playbackPosition();
  document.controller().playerAdvancedToFrame(position + kFramesPerSecond / 2);
  document.controller().updatePlaybackMarkerView();
  Document::settle();
}

/// A file with a minute of the same signal.
void writeFile(const std::string& path) {
  const auto writer = OVAudioFileWriter::initWithFile(path, 0);
  std::vector<float> second(2 * kFramesPerSecond);
  std::mt19937 random(7);
  for (int i = 0; i < 60; ++i) {
    const double loudness = 0.3 + 0.25 * std::sin(i * 0.7);
    for (float& sample : second) {
      sample =
          static_cast<float>(loudness * (static_cast<double>(random() % 2000U) / 1000.0 - 1.0));
    }
    static_cast<void>(writer->sinkData(second.data(), second.size() * sizeof(float)));
  }
  static_cast<void>(writer->close());
}

void load(Document& document, Disk::Transfer until, int number) {
  const std::string path = document.file("speech.wav");
  writeFile(path);
  document.holdAt(until, number, [&] { document.controller().openFileNamed(path); });
}

void save(Document& document) {
  const std::string path = document.file("speech.wav");
  writeFile(path);
  document.controller().openFileNamed(path);
  static_cast<void>(runMainLoopUntil([&] { return !document.controller().isFileIOActive(); }));
  document.controller().waveFormViewReceivedClick(nullptr, {}, 0.62);  // a line below the text
  document.holdAt(Disk::Transfer::read, 5,
                  [&] { document.controller().saveFileNamed(document.file("take.wav"), 0); });
}

void cut(Document& document) {
  makeRecorded(document);
  document.holdAt(Disk::Transfer::read, 1,
                  [&] { document.controller().removeAfterMarker(nullptr); });
}

void makeSmallest(Document& document) {
  document.window().resize(1, 1);
  static_cast<void>(drainMainQueue());
  QCoreApplication::processEvents();
}

}  // namespace

void forEachGalleryWindow(double scale, const std::function<void(const QString&, QWidget&)>& show) {
  const auto each = [&](const char* name, const std::function<void(Document&)>& prepare) {
    Document document(scale);
    prepare(document);
    show(QStringLiteral("window-") + QString::fromLatin1(name), document.window());
  };
  each("empty", [](Document&) {});
  each("recorded", makeRecorded);
  each("recording", [](Document& document) { document.record(3.0); });
  each("silence", [](Document& document) {
    document.record(3.0);
    document.recordLevel(5.0, 0.0F);
  });
  each("clipped", [](Document& document) {
    document.record(3.0);
    document.recordLevel(0.1, 1.0F);
  });
  each("interrupted", [](Document& document) {
    document.record(3.0);
    document.press("pauseButton");
    document.press("recButton");
    document.controller().undoCommand();
    document.recordLevel(0.0, 0.0F);  // not recorded: only waits for the notice
  });
  each("stopped", [](Document& document) {
    makeRecorded(document);
    document.press("stopButton");
    document.controller().updatePlaybackMarkerView();
    Document::settle();
  });
  each("playing", [](Document& document) {
    makeRecorded(document);
    play(document);
  });
  each("spectrum", [](Document& document) {
    makeRecorded(document);
    play(document);
    document.showSpectrum();
  });
  each("recording-spectrum", [](Document& document) {
    document.record(2.0);
    document.showSpectrum();
  });
  each("smallest", [](Document& document) {
    makeRecorded(document);
    makeSmallest(document);
  });
  each("loading", [](Document& document) { load(document, Disk::Transfer::write, 5); });
  each("drawing", [](Document& document) { load(document, Disk::Transfer::read, 8); });
  each("saving", save);
  each("saving-smallest", [](Document& document) {
    save(document);
    makeSmallest(document);
  });
  each("refreshing", cut);
  for (const QString& language : OVTranslations::languages()) {
    const OVTranslations translations({language});
    each(("drawing-" + language.toStdString()).c_str(), [](Document& document) {
      load(document, Disk::Transfer::read, 8);
      makeSmallest(document);
    });
  }
  const support::DarkPalette dark;
  each("dark-desktop", makeRecorded);
  each("dark-desktop-saving", save);
}
