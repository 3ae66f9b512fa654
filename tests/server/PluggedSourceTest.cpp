#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <pthread.h>
#include <unistd.h>
#include <csignal>

#include <gmock/gmock.h>

#include "server/LostInputFixture.h"

// Sources of each kind that a server offers, taken away while they are recorded from.
namespace {

using platform::AudioInputSource;
using support::noise;
using support::PrivateSoundServer;
using support::Samples;
using testserver::contents;
using testserver::kFrameBytes;
using testserver::kSecond;

/// Writes samples into a pipe as fast as a microphone would, a little ahead: a server that finds
/// too few in it takes silence instead.
class PipeFeed {
 public:
  static constexpr std::size_t kLead = 2048;  // frames

  PipeFeed(const std::string& path, const Samples& samples)
      : pipe_(open(path.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC)),
        thread_([this, &samples] { run(samples); }) {}
  ~PipeFeed() {
    isEnding_ = true;
    thread_.join();
    close(pipe_);
  }
  PipeFeed(const PipeFeed&) = delete;
  PipeFeed& operator=(const PipeFeed&) = delete;

  [[nodiscard]] std::size_t framesWritten() const { return bytesWritten_ / kFrameBytes; }

 private:
  void run(const Samples& samples) {
    sigset_t pipeSignal;  // the reader goes with its source
    sigemptyset(&pipeSignal);
    sigaddset(&pipeSignal, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &pipeSignal, nullptr);
    const auto begin = std::chrono::steady_clock::now();
    const auto* const bytes = reinterpret_cast<const char*>(samples.data());
    const std::size_t size = samples.size() * sizeof(float);
    while (!isEnding_ && bytesWritten_ < size) {
      const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - begin;
      const auto due = (kLead + static_cast<std::size_t>(passed.count() * kSecond)) * kFrameBytes;
      if (due > bytesWritten_) {
        const std::size_t part = std::min(due, size) - bytesWritten_;
        const ssize_t written = write(pipe_, bytes + bytesWritten_, part);
        bytesWritten_ += written > 0 ? static_cast<std::size_t>(written) : 0;
      }
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
  }

  const int pipe_;
  std::atomic<bool> isEnding_{false};
  std::atomic<std::size_t> bytesWritten_{0};
  std::thread thread_;  // last: it uses the others
};

enum class Source { remapped, pipe, silent };

class PluggedSourceTest : public testserver::LostInputFixture,
                          public testing::WithParamInterface<Source> {
 protected:
  static bool isPipeWire() {
    return PrivateSoundServer::installedKind() == PrivateSoundServer::Kind::kPipeWire;
  }
  [[nodiscard]] std::string pipePath() const { return folder_.file("pipe"); }

  void plugSource() {
    const std::vector<std::string> format{"rate=44100", "channels=2"};
    const auto with = [&](std::vector<std::string> arguments) {
      arguments.insert(arguments.end(), format.begin(), format.end());
      return arguments;
    };
    switch (GetParam()) {
      case Source::remapped:
        plug("mic", "USB Mic");
        return;
      case Source::pipe:
        plug_ = server_->plugSource("module-pipe-source", "mic",
                                    with({"file=" + pipePath(), "format=float32le",
                                          "source_properties=\"device.description='USB Mic'\""}));
        break;
      case Source::silent:
        plug_ =
            isPipeWire()
                ? server_->plugSource("module-null-sink", "mic",
                                      with({"media.class=Audio/Source/Virtual",
                                            "sink_properties=\"device.description='USB Mic'\""}))
                : server_->plugSource("module-null-source", "mic", with({"description='USB Mic'"}));
        break;
    }
    ASSERT_TRUE(plug_.has_value());
  }

  void beginFeed() {
    if (GetParam() == Source::remapped) {
      feed(signal_);
    } else if (GetParam() == Source::pipe) {
      pipe_.emplace(pipePath(), signal_);
    }
  }

  /// Frames recorded from the first one on that is of the source.
  std::size_t framesRecorded() {
    if (GetParam() == Source::silent) {
      return buffer_->bufferSizeInFrames();
    }
    std::size_t after = 0;
    return framesOf(signal_, after);
  }

  /// Frames at the end that are not of the source: what another program plays, or nothing.
  std::size_t foreignFrames() {
    if (GetParam() != Source::silent) {
      std::size_t after = 0;
      framesOf(signal_, after);
      return after;
    }
    const Samples all = contents(*buffer_);
    const auto loud = std::find_if(all.begin(), all.end(), [](float s) { return s != 0; });
    return static_cast<std::size_t>(all.end() - loud) / support::kChannels;
  }

  void recordASecond() {
    makeRecorder();
    if (HasFatalFailure()) {
      return;
    }
    recorder_->record();
    beginFeed();
    ASSERT_TRUE(support::eventually([&] { return framesRecorded() > kSecond; }));
  }

  const Samples signal_ = noise(30 * kSecond, 31);
  std::optional<PipeFeed> pipe_;
};

TEST_P(PluggedSourceTest,
       TakenAwayWhileRecordingItIsToldOnceWithEverythingKeptAndItsReturnRecords) {
  ASSERT_TRUE(server_->setDefaultSource(PrivateSoundServer::kHeardMonitor));
  ASSERT_NO_FATAL_FAILURE(playAloud());
  ASSERT_NO_FATAL_FAILURE(plugSource());
  ASSERT_NO_FATAL_FAILURE(recordASecond());
  ASSERT_TRUE(awaitSource(AudioInputSource::Kind::kMicrophone, "mic"));
  const std::size_t fed = pipe_ ? pipe_->framesWritten() : 0;
  const std::size_t before = framesRecorded();
  ASSERT_NO_FATAL_FAILURE(unplug());
  ASSERT_TRUE(awaitFailure(platform::kDeviceLostStatus));
  recorder_->pause();
  const std::size_t kept = framesRecorded();
  EXPECT_GE(kept, before);
  // What the server and the device still held, and the block that was being filled.
  EXPECT_GE(kept + PipeFeed::kLead + 4 * platform::kRecordingChunkFrames, fed);
  EXPECT_LE(foreignFrames(), mostForeignFrames());
  EXPECT_LE(failedAt_.load() - unpluggedAt_, std::chrono::seconds(1));
  ASSERT_NO_FATAL_FAILURE(expectOneAlertThatSays("The sound input “USB Mic” has gone"));
  recorder_->prepareForDestruction();
  pipe_.reset();
  player_.reset();

  buffer_ = OVBlockBuffer::init();
  ASSERT_NO_FATAL_FAILURE(plugSource());
  ASSERT_TRUE(awaitSource(AudioInputSource::Kind::kMicrophone));
  ASSERT_NO_FATAL_FAILURE(recordASecond());
  EXPECT_EQ(failure_, 0);
  EXPECT_THAT(services_->postedAlerts(), testing::SizeIs(1));
}

INSTANTIATE_TEST_SUITE_P(Kinds, PluggedSourceTest,
                         testing::Values(Source::remapped, Source::pipe, Source::silent));

}  // namespace
