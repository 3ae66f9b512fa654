#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/sound/AudioQueue.h"

/// Audio queues without threads: a test steps them call by call, checks the order of the calls and
/// can make any single one fail.
///
/// Threads: one, the test's.
namespace support {

using platform::AudioQueueBuffer;
using platform::AudioStatus;

/// State shared by the queues of one test: the log of calls, planned failures, reported values.
struct QueueScript {
  std::vector<std::string> calls;
  platform::AudioStreamBasicDescription description = platform::kWorkingFormat;
  std::vector<platform::AudioQueueLevelMeterState> levels = {{0.25F, 0.5F}, {0.75F, 1.0F}};
  std::uint64_t capturedFrames = 0;
  std::uint32_t running = 0;
  AudioStatus failure = platform::kAudioStatusOk;
  bool inputFailureReportPending = true;
  platform::AudioInputSource inputSource;
  int inputSourceCopies = 0;  ///< calls of AudioQueues::inputSource()
  platform::AudioInputSource lostInput;
  std::uint64_t lostFrames = 0;
  int queuesAlive = 0;
  std::function<void(std::uint64_t)> whileWaiting;  ///< inside waitUntilDelivered()

  /// The nth future call named `call` fails with `status`.
  void fail(const std::string& call, AudioStatus status, int nth = 1) {
    failures_[call] = {status, nth};
  }

  /// Runs inside future calls named `call`, in place of a concurrent thread.
  void during(const std::string& call, std::function<void()> run) {
    during_[call] = std::move(run);
  }

  AudioStatus called(const std::string& call) {
    calls.push_back(call);
    if (const auto run = during_.find(call); run != during_.end()) {
      const auto meanwhile = run->second;  // a copy: it may make the same call
      meanwhile();
    }
    const auto planned = failures_.find(call);
    if (planned == failures_.end() || --planned->second.countdown != 0) {
      return platform::kAudioStatusOk;
    }
    const auto status = planned->second.status;
    failures_.erase(planned);
    return status;
  }

  std::size_t count(const std::string& call) const {
    return static_cast<std::size_t>(std::count(calls.begin(), calls.end(), call));
  }

 private:
  struct Failure {
    AudioStatus status;
    int countdown;
  };
  std::map<std::string, Failure> failures_;
  std::map<std::string, std::function<void()>> during_;
};

/// The common part of input and output queues, as a mixin over their interfaces.
template <typename Interface>
class SteppedQueue : public Interface {
 public:
  explicit SteppedQueue(std::shared_ptr<QueueScript> script) : script_(std::move(script)) {
    ++script_->queuesAlive;
  }
  ~SteppedQueue() override { --script_->queuesAlive; }

  platform::Result<AudioQueueBuffer*, AudioStatus> allocateBuffer(
      std::uint32_t byteCapacity) override {
    const auto status = script_->called("allocateBuffer");
    if (status != platform::kAudioStatusOk) {
      return status;
    }
    auto& made = *buffers_.emplace_back(std::make_unique<Allocated>());
    made.bytes.resize(byteCapacity);
    made.buffer.mAudioData = made.bytes.data();
    made.buffer.mAudioDataBytesCapacity = byteCapacity;
    return &made.buffer;
  }
  AudioStatus enqueueBuffer(AudioQueueBuffer* buffer) override {
    const auto status = script_->called("enqueueBuffer");
    if (status == platform::kAudioStatusOk) {
      enqueued.push_back(buffer);
    }
    return status;
  }
  AudioStatus start() override { return script_->called("start"); }
  AudioStatus stopImmediately() override { return script_->called("stopImmediately"); }
  AudioStatus dispose() override { return script_->called("dispose"); }
  AudioStatus streamDescription(platform::AudioStreamBasicDescription& description) const override {
    description = script_->description;
    return script_->called("streamDescription");
  }
  AudioStatus enableLevelMetering(bool) override { return script_->called("enableLevelMetering"); }
  AudioStatus currentLevels(platform::AudioQueueLevelMeterState* levels, std::size_t capacity,
                            std::size_t& count) const override {
    count = std::min(capacity, script_->levels.size());
    const auto status = script_->called("currentLevels/" + std::to_string(capacity));
    if (status == platform::kAudioStatusOk) {
      std::copy_n(script_->levels.begin(), count, levels);
    }
    return status;
  }

  std::size_t allocated() const { return buffers_.size(); }

  std::deque<AudioQueueBuffer*> enqueued;

 protected:
  struct Allocated {
    AudioQueueBuffer buffer;
    std::vector<std::byte> bytes;
  };
  std::shared_ptr<QueueScript> script_;
  std::vector<std::unique_ptr<Allocated>> buffers_;
};

class SteppedInputQueue : public SteppedQueue<platform::AudioInputQueue> {
 public:
  SteppedInputQueue(std::shared_ptr<QueueScript> script, Callback callback, FailureListener failed)
      : SteppedQueue(std::move(script)),
        callback_(std::move(callback)),
        failed_(std::move(failed)) {}

  void prepareToRecord() override { script_->calls.emplace_back("prepareToRecord"); }
  std::uint64_t capturedFrames() const override { return script_->capturedFrames; }
  void waitUntilDelivered(std::uint64_t frame) override {
    script_->calls.push_back("waitUntilDelivered/" + std::to_string(frame));
    if (script_->whileWaiting) {
      script_->whileWaiting(frame);
    }
  }
  std::uint64_t lostFrames() const override { return script_->lostFrames; }

  /// Fills the first enqueued buffer and passes it to the callback; false when none is enqueued.
  bool deliver(const std::vector<float>& samples, std::uint64_t endFrame,
               std::uint64_t missingBefore = 0) {
    if (enqueued.empty()) {
      return false;
    }
    auto* buffer = enqueued.front();
    enqueued.pop_front();
    buffer->mAudioDataByteSize = static_cast<std::uint32_t>(samples.size() * sizeof(float));
    std::memcpy(buffer->mAudioData, samples.data(), buffer->mAudioDataByteSize);
    buffer->endFrame = endFrame;
    buffer->silencedFrames = 0;
    buffer->missingBefore = missingBefore;
    buffer->lostAtFrame = endFrame;
    callback_(*this, *buffer);
    return true;
  }
  /// Passes a buffer of silence for `frames` lost frames, at most a buffer. They are missing before
  /// `lostAtFrame` at the latest; right here without one.
  bool deliverSilence(std::uint32_t frames, std::uint64_t endFrame,
                      std::optional<std::uint64_t> lostAtFrame = std::nullopt) {
    if (enqueued.empty()) {
      return false;
    }
    auto* buffer = enqueued.front();
    enqueued.pop_front();
    buffer->mAudioDataByteSize = frames * platform::kWorkingFrameBytes;
    std::memset(buffer->mAudioData, 0, buffer->mAudioDataByteSize);
    buffer->endFrame = endFrame;
    buffer->silencedFrames = frames;
    buffer->missingBefore = 0;
    buffer->lostAtFrame = lostAtFrame.value_or(endFrame);
    callback_(*this, *buffer);
    return true;
  }
  void failLate(AudioStatus status) { failed_(status); }

 private:
  Callback callback_;
  FailureListener failed_;
};

class SteppedOutputQueue : public SteppedQueue<platform::AudioOutputQueue> {
 public:
  SteppedOutputQueue(std::shared_ptr<QueueScript> script, Callback callback)
      : SteppedQueue(std::move(script)), callback_(std::move(callback)) {}

  AudioStatus pause() override { return script_->called("pause"); }
  AudioStatus stopAfterQueued() override { return script_->called("stopAfterQueued"); }
  AudioStatus isRunning(std::uint32_t& running) const override {
    running = script_->running;
    return script_->called("isRunning");
  }
  AudioStatus setRunningListener(RunningListener listener) override {
    listener_ = std::move(listener);
    return script_->called("setRunningListener");
  }
  AudioStatus failure() const override { return script_->failure; }
  std::uint64_t underrunFrames() const override { return 0; }

  /// Plays the first enqueued buffer: returns its samples and passes it to the callback.
  std::vector<float> playOne() {
    if (enqueued.empty()) {
      return {};
    }
    auto* buffer = enqueued.front();
    enqueued.pop_front();
    std::vector<float> samples(buffer->mAudioDataByteSize / sizeof(float));
    std::memcpy(samples.data(), buffer->mAudioData, buffer->mAudioDataByteSize);
    callback_(*this, *buffer);
    return samples;
  }
  void changeRunning(std::uint32_t running) {
    script_->running = running;
    listener_(*this);
  }

 private:
  Callback callback_;
  RunningListener listener_;
};

class SteppedAudioQueues : public platform::AudioQueues {
 public:
  explicit SteppedAudioQueues(std::shared_ptr<QueueScript> script) : script_(std::move(script)) {}

  AudioStatus completeFormat(platform::AudioStreamBasicDescription&) const override {
    return script_->called("completeFormat");
  }
  NewInput newInput(const platform::AudioStreamBasicDescription& format,
                    platform::AudioInputQueue::Callback callback,
                    platform::AudioInputQueue::FailureListener failed) override {
    if (const auto status = answered("newInput", format); status != platform::kAudioStatusOk) {
      return status;
    }
    auto made =
        std::make_unique<SteppedInputQueue>(script_, std::move(callback), std::move(failed));
    input = made.get();
    return made;
  }
  NewOutput newOutput(const platform::AudioStreamBasicDescription& format,
                      platform::AudioOutputQueue::Callback callback) override {
    if (const auto status = answered("newOutput", format); status != platform::kAudioStatusOk) {
      return status;
    }
    auto made = std::make_unique<SteppedOutputQueue>(script_, std::move(callback));
    output = made.get();
    return made;
  }
  bool claimInputFailureAlert() override {
    return std::exchange(script_->inputFailureReportPending, false);
  }
  platform::AudioInputSource inputSource() const override {
    ++script_->inputSourceCopies;
    return script_->inputSource;
  }
  std::uint64_t inputSourceRevision() const override {
    if (script_->inputSource != lastSource_) {
      lastSource_ = script_->inputSource;
      ++sourceRevision_;
    }
    return sourceRevision_;
  }
  platform::AudioInputSource lostInput() const override { return script_->lostInput; }

  SteppedInputQueue* input = nullptr;    ///< the last one made
  SteppedOutputQueue* output = nullptr;  ///< the last one made

 private:
  AudioStatus answered(const std::string& call,
                       const platform::AudioStreamBasicDescription& format) {
    const auto status = script_->called(call);
    const bool known = format == platform::kWorkingFormat;
    return known || status != platform::kAudioStatusOk ? status : platform::kInvalidParameterStatus;
  }

  std::shared_ptr<QueueScript> script_;
  mutable platform::AudioInputSource lastSource_;
  mutable std::uint64_t sourceRevision_ = 0;
};

/// Stepped queues as a member of a test fixture, installed while it lives.
class InstalledSteppedQueues {
 public:
  QueueScript* operator->() const { return script_.get(); }
  SteppedInputQueue& input() const { return *queues_->input; }
  SteppedOutputQueue& output() const { return *queues_->output; }

 private:
  std::shared_ptr<QueueScript> script_ = std::make_shared<QueueScript>();
  std::shared_ptr<SteppedAudioQueues> queues_ = std::make_shared<SteppedAudioQueues>(script_);
  platform::Installed<platform::AudioQueues>::Scope installation_{queues_};
};

}  // namespace support
