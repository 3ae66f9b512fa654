#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include <gmock/gmock.h>

#include "audio/OVAQRecorder.h"
#include "server/ServerFixture.h"
#include "support/MainLoop.h"

namespace {

using support::equalFrames;
using support::findStart;
using support::noise;
using support::Samples;
using testing::IsEmpty;
using testserver::contents;
using testserver::duration;
using testserver::kMaxCall;
using testserver::kSecond;
using testserver::withoutSilence;

/// Number of frames of `signal` that `recorded` holds from the start of the signal on.
std::size_t framesFound(const Samples& signal, const Samples& recorded) {
  const auto start = findStart(signal, recorded);
  return start ? equalFrames(signal, recorded, *start) : 0;
}

/// Stalls the writer once, at its third write, until a condition holds.
class StallingDelegate : public OVAudioBufferDelegate {
 public:
  explicit StallingDelegate(std::function<void()> stall) : stall_(std::move(stall)) {}
  void audioBufferDidWriteData(const void*, std::uint64_t, std::uint32_t) override {
    if (++writes_ == 3) {
      stall_();
      stalled = true;
    }
  }
  std::atomic<bool> stalled{false};

 private:
  std::function<void()> stall_;
  int writes_ = 0;  // writer's thread
};

class RecordFromServerTest : public testserver::ServerFixture {
 protected:
  void SetUp() override {
    ServerFixture::SetUp();
    if (HasFatalFailure()) {
      return;
    }
    recorder_ = OVAQRecorder::initWithBuffer(buffer_);
    ASSERT_NE(recorder_, nullptr);
    ASSERT_TRUE(awaitCapturing());
  }
  void TearDown() override {
    if (recorder_) {
      recorder_->prepareForDestruction();
      recorder_.reset();
    }
    ServerFixture::TearDown();
  }

  /// The recording from a frame on, without silence.
  [[nodiscard]] Samples recorded(std::uint64_t fromFrame = 0) const {
    const Samples all = contents(*buffer_);
    return withoutSilence(Samples(
        all.begin() + static_cast<std::ptrdiff_t>(fromFrame * support::kChannels), all.end()));
  }

  /// Expects the recording from a frame on to be an exact part of `signal`.
  void expectPartOf(const Samples& signal, std::uint64_t fromFrame = 0) const {
    const Samples part = recorded(fromFrame);
    ASSERT_FALSE(part.empty());
    const auto start = findStart(part, signal);
    ASSERT_TRUE(start.has_value());
    const Samples played(signal.begin() + static_cast<std::ptrdiff_t>(*start * support::kChannels),
                         signal.end());
    EXPECT_EQ(equalFrames(part, played, 0), part.size() / support::kChannels);
  }

  /// Plays the signal into the default source; null on failure.
  [[nodiscard]] std::unique_ptr<support::ChildProcess> feed(const Samples& signal) const {
    return support::writeRaw(folder_.file("signal"), signal)
               ? server_->playIntoFeed(folder_.file("signal"))
               : nullptr;
  }

  /// Waits until the signal reaches the recorder: every buffer filled afterwards holds only the
  /// signal.
  [[nodiscard]] bool awaitSignal() {
    return support::eventually([this] {
      const auto levels = recorder_->powerLevels();
      return levels && levels->at(0) > 0;
    });
  }

  /// Records until the whole signal has arrived or nothing more comes. Returns the frames arrived.
  [[nodiscard]] std::size_t recordAll(const Samples& signal) {
    const auto frames = signal.size() / support::kChannels;
    std::size_t found = 0;
    static_cast<void>(support::eventually([&] {
      found = framesFound(signal, recorded());
      return found == frames;
    }));
    return found;
  }

  std::shared_ptr<OVBlockBuffer> buffer_ = OVBlockBuffer::init();
  std::shared_ptr<OVAQRecorder> recorder_;
};

TEST_F(RecordFromServerTest, WhatTheSourceCapturesIsRecordedSampleForSampleWithoutAGap) {
  const Samples signal = noise(4 * kSecond, 1);
  recorder_->record();
  const auto player = feed(signal);
  ASSERT_NE(player, nullptr);
  EXPECT_EQ(recordAll(signal), 4 * kSecond);
  recorder_->pause();
  EXPECT_EQ(recorder_->writingPosition(), buffer_->bufferSizeInFrames() * testserver::kFrameBytes);
  EXPECT_EQ(recorder_->queue()->lostFrames(), 0U);
  EXPECT_THAT(services_->consoleLines(), IsEmpty());
}

TEST_F(RecordFromServerTest, AStallOfTheWritingSideOf250MillisecondsLosesNothing) {
  constexpr std::uint64_t kStallFrames = kSecond / 4;
  const auto* queue = recorder_->queue();
  const auto delegate = std::make_shared<StallingDelegate>([queue] {
    const auto begin = queue->capturedFrames();
    EXPECT_TRUE(
        support::eventually([&] { return queue->capturedFrames() >= begin + kStallFrames; }));
  });
  buffer_->setDelegate(delegate);
  const Samples signal = noise(2 * kSecond, 2);
  const auto player = feed(signal);
  ASSERT_NE(player, nullptr);
  ASSERT_TRUE(awaitSignal());
  recorder_->record();
  ASSERT_TRUE(support::eventually(
      [&] { return delegate->stalled && buffer_->bufferSizeInFrames() > 2 * kStallFrames; }));
  recorder_->pause();
  expectPartOf(signal);
  EXPECT_EQ(recorder_->queue()->lostFrames(), 0U);
  EXPECT_THAT(services_->consoleLines(), IsEmpty());
}

TEST_F(RecordFromServerTest, AServerKilledWhileRecordingKeepsEverythingIsToldOnceAndCanReturn) {
  std::atomic<platform::AudioStatus> told{0};
  recorder_->setFailureHandler([&](platform::AudioStatus status) { told = status; });
  const Samples signal = noise(20 * kSecond, 3);
  recorder_->record();
  const auto player = feed(signal);
  ASSERT_NE(player, nullptr);
  ASSERT_TRUE(support::eventually([&] { return framesFound(signal, recorded()) > kSecond / 2; }));
  testing::internal::CaptureStderr();  // every failed attempt prints a line
  server_->kill();
  ASSERT_TRUE(support::eventually([&] { return told != 0; }));
  EXPECT_EQ(told, platform::kDeviceLostStatus);
  EXPECT_LE(duration([&] { recorder_->pause(); }), kMaxCall);

  expectPartOf(signal);
  EXPECT_EQ(recorder_->writingPosition(), buffer_->bufferSizeInFrames() * testserver::kFrameBytes);

  EXPECT_LE(duration([&] { recorder_->prepareForDestruction(); }), kMaxCall);
  recorder_.reset();
  EXPECT_LE(duration([&] { EXPECT_EQ(OVAQRecorder::initWithBuffer(buffer_), nullptr); }), kMaxCall);
  ASSERT_TRUE(runMainLoopUntil([&] { return !services_->postedAlerts().empty(); }));
  EXPECT_EQ(services_->alerts().size() + services_->postedAlerts().size(), 1U);

  ASSERT_TRUE(server_->restart());
  EXPECT_TRUE(support::eventually([&] {
    if (!recorder_) {
      recorder_ = OVAQRecorder::initWithBuffer(buffer_);
    }
    return recorder_ != nullptr && server_->isCapturing(getpid());
  }));
  testing::internal::GetCapturedStderr();
}

TEST_F(RecordFromServerTest, AServerThatHangsHoldsUpNoCall) {
  recorder_->record();
  ASSERT_TRUE(support::eventually([&] { return buffer_->bufferSizeInFrames() > 0; }));
  server_->freeze();
  EXPECT_LE(duration([&] { static_cast<void>(recorder_->powerLevels()); }), kMaxCall);
  EXPECT_LE(duration([&] { recorder_->pause(); }), kMaxCall);
  for (int i = 0; i < 3; ++i) {
    EXPECT_LE(duration([&] { recorder_->prepareForDestruction(); }), kMaxCall);
    EXPECT_LE(duration([&] { recorder_.reset(); }), kMaxCall);
    EXPECT_LE(duration([&] { recorder_ = OVAQRecorder::initWithBuffer(buffer_); }), kMaxCall);
    ASSERT_NE(recorder_, nullptr);
  }
  const auto before = buffer_->bufferSizeInFrames();
  recorder_->setWritingPosition(before * testserver::kFrameBytes);
  EXPECT_LE(duration([&] { recorder_->record(); }), kMaxCall);
  server_->thaw();
  EXPECT_TRUE(support::eventually([&] { return buffer_->bufferSizeInFrames() > before; }));
  EXPECT_THAT(services_->alerts(), IsEmpty());
}

TEST_F(RecordFromServerTest, PausesInARowReplaceTheRecorderWithoutClosingTheInput) {
  const Samples signal = noise(10 * kSecond, 4);
  const auto player = feed(signal);
  ASSERT_NE(player, nullptr);
  ASSERT_TRUE(awaitSignal());
  for (int take = 0; take < 5; ++take) {
    const auto before = buffer_->bufferSizeInFrames();
    recorder_->setWritingPosition(before * testserver::kFrameBytes);
    recorder_->record();
    ASSERT_TRUE(support::eventually([&] { return buffer_->bufferSizeInFrames() > before + 8000; }));
    recorder_->pause();
    recorder_->prepareForDestruction();
    recorder_ = OVAQRecorder::initWithBuffer(buffer_);
    ASSERT_NE(recorder_, nullptr);
    SCOPED_TRACE(take);
    expectPartOf(signal, before);
  }
  EXPECT_TRUE(server_->isCapturing(getpid()));
  EXPECT_THAT(services_->consoleLines(), IsEmpty());
}

}  // namespace
