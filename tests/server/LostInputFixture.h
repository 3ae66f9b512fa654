#pragma once

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include <gmock/gmock.h>

#include "audio/OVAQRecorder.h"
#include "server/ServerFixture.h"
#include "support/MainLoop.h"

namespace testserver {

/// A recorder on the private server, whose microphones can be unplugged.
class LostInputFixture : public ServerFixture {
 protected:
  void SetUp() override {
    ServerFixture::SetUp();
    if (HasFatalFailure()) {
      return;
    }
    testing::internal::CaptureStderr();  // every failure prints a line
  }
  void TearDown() override {
    if (recorder_) {
      recorder_->prepareForDestruction();
      recorder_.reset();
    }
    testing::internal::GetCapturedStderr();
    ServerFixture::TearDown();
  }

  void plug(const std::string& name, const std::string& description) {
    plug_ = server_->plugMicrophone(name, description);
    ASSERT_TRUE(plug_.has_value());
  }
  void unplug() {
    unpluggedAt_ = Clock::now();
    ASSERT_TRUE(server_->unplugMicrophone(*std::exchange(plug_, std::nullopt)));
  }

  void makeRecorder() {
    failure_ = 0;
    recorder_ = OVAQRecorder::initWithBuffer(buffer_);
    ASSERT_NE(recorder_, nullptr);
    recorder_->setWritingPosition(buffer_->bufferSizeInFrames() * kFrameBytes);
    recorder_->setFailureHandler([this](platform::AudioStatus status) {
      failedAt_ = Clock::now();
      failure_ = status;
    });
    ASSERT_TRUE(awaitCapturing());
  }

  void feed(const support::Samples& signal) {
    ASSERT_TRUE(support::writeRaw(folder_.file("signal"), signal));
    player_ = server_->playIntoFeed(folder_.file("signal"));
    ASSERT_NE(player_, nullptr);
  }

  /// Records while the signal is fed, until a second of it has arrived.
  void recordSome(const support::Samples& signal) {
    makeRecorder();
    if (HasFatalFailure()) {
      return;
    }
    recorder_->record();
    feed(signal);
    ASSERT_TRUE(support::eventually([&] {
      const support::Samples all = contents(*buffer_);
      const auto start = support::findStart(signal, all);
      return start && all.size() / support::kChannels - *start > kSecond;
    }));
  }

  [[nodiscard]] bool awaitFailure(platform::AudioStatus status) {
    return support::eventually([&] { return failure_ != 0; }) && failure_ == status;
  }

  /// The recording is the signal without a gap from its first frame on; returns how many frames it
  /// has of it, and `after` how many follow that are not the signal's.
  std::size_t framesOf(const support::Samples& signal, std::size_t& after) {
    const support::Samples all = contents(*buffer_);
    const auto start = support::findStart(signal, all);
    if (!start) {
      return 0;
    }
    const std::size_t found = support::equalFrames(signal, all, *start);
    after = all.size() / support::kChannels - *start - found;
    return found;
  }

  /// Another program plays loudly, which is what a monitor captures.
  void playAloud() {
    ASSERT_TRUE(support::writeRaw(folder_.file("loud"), support::tune(30)));
    other_ = server_->playAloud(folder_.file("loud"));
    ASSERT_NE(other_, nullptr);
  }

  /// At most so many frames can follow the last one of a microphone that was unplugged: what came
  /// from where the server moves the stream until the loss was noticed, and the buffers of the
  /// server and the device.
  [[nodiscard]] std::size_t mostForeignFrames() const {
    const std::chrono::duration<double> delay = failedAt_.load() - unpluggedAt_;
    return static_cast<std::size_t>(delay.count() * kSecond) + 2 * platform::kRecordingChunkFrames;
  }

  void expectOneAlertThatSays(const std::string& words) {
    ASSERT_TRUE(runMainLoopUntil([&] { return !services_->postedAlerts().empty(); }));
    EXPECT_THAT(services_->postedAlerts(), testing::SizeIs(1));
    EXPECT_THAT(services_->postedAlerts()[0].message, testing::HasSubstr(words));
    EXPECT_THAT(services_->alerts(), testing::IsEmpty());
  }

  [[nodiscard]] bool awaitSource(platform::AudioInputSource::Kind kind,
                                 const std::string& id = {}) {
    return support::eventually([&] {
      const auto source = queues_->inputSource();
      return source.kind == kind && (id.empty() || source.id == id);
    });
  }

  using Clock = std::chrono::steady_clock;

  std::atomic<platform::AudioStatus> failure_{0};
  std::atomic<Clock::time_point> failedAt_;
  Clock::time_point unpluggedAt_;
  std::optional<std::string> plug_;
  std::unique_ptr<support::ChildProcess> player_;
  std::unique_ptr<support::ChildProcess> other_;
  std::shared_ptr<OVBlockBuffer> buffer_ = OVBlockBuffer::init();
  std::shared_ptr<OVAQRecorder> recorder_;
};

}  // namespace testserver
