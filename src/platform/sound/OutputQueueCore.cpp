#include "platform/sound/OutputQueueCore.h"

#include <utility>

#include "platform/base/ApplicationServices.h"

namespace platform {

std::shared_ptr<OutputQueueCore> OutputQueueCore::create(AudioOutputQueue& owner,
                                                         AudioOutputQueue::Callback callback,
                                                         std::shared_ptr<DeviceTasks> control,
                                                         std::shared_ptr<AudioClock> clock,
                                                         std::weak_ptr<StallWatch> stallWatch,
                                                         std::shared_ptr<RecentFailure> known) {
  std::shared_ptr<OutputQueueCore> core(
      new OutputQueueCore(owner, std::move(callback), std::move(control), std::move(clock),
                          std::move(stallWatch), std::move(known)));
  core->failureSignal_ = core->control_->makeSignal([weak = std::weak_ptr(core)](AudioDevice&) {
    if (const auto self = weak.lock()) {
      const AudioStatus status = self->pendingFailure_.exchange(kAudioStatusOk);
      if (status != kAudioStatusOk) {
        self->fail(status, nullptr);
      }
    }
  });
  return core;
}

OutputQueueCore::OutputQueueCore(AudioOutputQueue& owner, AudioOutputQueue::Callback callback,
                                 std::shared_ptr<DeviceTasks> control,
                                 std::shared_ptr<AudioClock> clock,
                                 std::weak_ptr<StallWatch> stallWatch,
                                 std::shared_ptr<RecentFailure> known)
    : owner_(owner),
      control_(std::move(control)),
      clock_(std::move(clock)),
      known_(std::move(known)),
      created_(clock_->now()),
      callback_(std::move(callback)),
      stallWatch_(std::move(stallWatch)) {}

// --- Calls of the owner.

AudioStatus OutputQueueCore::open() {
  auto answer = std::make_shared<TimedReply>();
  control_->post([self = shared_from_this(), answer](AudioDevice& device) {
    self->openStream(device, *answer);
  });
  return answer->wait(*clock_, created_ + kMaxWait).value_or(kAudioStatusOk);
}

AudioStatus OutputQueueCore::ask(void (OutputQueueCore::*task)(TimedReply&)) {
  auto answer = std::make_shared<TimedReply>();
  control_->post(
      [self = shared_from_this(), task, answer](AudioDevice&) { ((*self).*task)(*answer); });
  AudioClock::TimePoint deadline = clock_->now() + kMaxWait;
  {
    const MutexLock lock(mutex_);
    if (!openSettled_) {
      // After a hanging opening: creation and start together wait 250 ms.
      deadline = created_ + kMaxWait;
    }
  }
  return answer->wait(*clock_, deadline).value_or(kAudioStatusOk);
}

Result<AudioQueueBuffer*, AudioStatus> OutputQueueCore::allocate(std::uint32_t byteCapacity) {
  const MutexLock lock(mutex_);
  if (state_ == State::kStopped) {
    return kInvalidQueueStateStatus;
  }
  return buffers_.allocate(byteCapacity);
}

AudioStatus OutputQueueCore::enqueue(AudioQueueBuffer* buffer) {
  const MutexLock lock(mutex_);
  if (state_ == State::kStopped || state_ == State::kEnded || draining_) {
    return kInvalidQueueStateStatus;
  }
  const AudioStatus status = buffers_.markEnqueued(buffer);
  if (status == kAudioStatusOk) {
    feeder_.push(buffer);
  }
  return status;
}

AudioStatus OutputQueueCore::start() {
  {
    const MutexLock lock(mutex_);
    if (state_ == State::kStopped) {
      return kInvalidQueueStateStatus;
    }
    if (failure_ != kAudioStatusOk) {
      return failure_;
    }
    if (state_ == State::kEnded) {
      return kInvalidQueueStateStatus;
    }
    if (state_ == State::kRunning) {
      return kAudioStatusOk;
    }
    if (state_ == State::kCreated) {
      const AudioStatus status = thread_.start([self = shared_from_this()] { self->serve(); });
      if (status != kAudioStatusOk) {
        return status;
      }
    }
    state_ = State::kRunning;
  }
  watchForStall();  // from here on, since the control thread may hang and not even begin
  return ask(&OutputQueueCore::startStream);
}

void OutputQueueCore::watchForStall() {
  const auto watch = stallWatch_.lock();
  if (!watch) {
    return;
  }
  auto watched = watch->watch(calls_, [weak = weak_from_this()] {
    if (const auto self = weak.lock()) {
      self->stalled();
    }
  });
  const MutexLock lock(mutex_);
  if (state_ == State::kRunning) {
    watched_.swap(watched);
  }
}

AudioStatus OutputQueueCore::pause() {
  decltype(watched_) watched;
  {
    const MutexLock lock(mutex_);
    if (state_ == State::kStopped) {
      return kInvalidQueueStateStatus;
    }
    if (state_ != State::kRunning) {
      return kAudioStatusOk;
    }
    state_ = State::kPaused;
    watched.swap(watched_);
  }
  return ask(&OutputQueueCore::pauseStream);
}

AudioStatus OutputQueueCore::stopAfterQueued() {
  {
    const MutexLock lock(mutex_);
    if (state_ == State::kStopped) {
      return kInvalidQueueStateStatus;
    }
    if (std::exchange(draining_, true)) {
      return kAudioStatusOk;
    }
  }
  feeder_.beginDraining();
  control_->post([self = shared_from_this()](AudioDevice&) { self->watchDrain(); });
  return kAudioStatusOk;
}

void OutputQueueCore::stop() {
  bool first = false;
  decltype(watched_) watched;
  {
    const MutexLock lock(mutex_);
    first = state_ != State::kStopped;
    state_ = State::kStopped;
    running_ = false;
    changes_.clear();
    watched.swap(watched_);
  }
  feeder_.close();
  if (first) {
    control_->post([self = shared_from_this()](AudioDevice&) { self->stream_.reset(); });
    logUnderruns();
  }
  thread_.end();
}

void OutputQueueCore::logUnderruns() const {
  if (const std::uint64_t frames = underrunFrames()) {
    ConsoleLog(
        "Audio output: %llu frames of silence came in between, the audio was not there in time",
        static_cast<unsigned long long>(frames));
  }
}

void OutputQueueCore::dispose() {
  stop();
  if (thread_.isCurrent()) {
    return;  // buffers and callbacks are still in use; the thread releases them
  }
  // Released outside the lock: they may hold the last reference to the owner of this queue.
  const auto callback = std::exchange(callback_, nullptr);
  AudioOutputQueue::RunningListener listener;
  const MutexLock lock(mutex_);
  listener.swap(listener_);
  buffers_.clear();
}

AudioStatus OutputQueueCore::setRunningListener(AudioOutputQueue::RunningListener listener) {
  const MutexLock lock(mutex_);
  if (state_ != State::kCreated) {
    return kInvalidQueueStateStatus;
  }
  listener_ = std::move(listener);
  return kAudioStatusOk;
}

bool OutputQueueCore::isRunning() const {
  if (thread_.isCurrent() && notified_) {
    return *notified_;
  }
  const MutexLock lock(mutex_);
  return running_;
}

AudioStatus OutputQueueCore::failure() const {
  const MutexLock lock(mutex_);
  return failure_;
}

// --- The device's threads.

void OutputQueueCore::deviceWants(float* samples, std::uint32_t frames) noexcept {
  calls_->fetch_add(1, std::memory_order_relaxed);
  if (feeder_.fill(samples, frames) > 0) {
    thread_.wake();
  }
}

void OutputQueueCore::deviceOutputFailed(AudioStatus status) noexcept {
  pendingFailure_.store(status == kAudioStatusOk ? kDeviceLostStatus : status);
  failureSignal_->raise();
}

// --- The control thread.

void OutputQueueCore::openStream(AudioDevice& device, TimedReply& answer) {
  {
    const MutexLock lock(mutex_);
    if (state_ == State::kStopped) {
      return;
    }
  }
  auto opened = device.openOutput(*this);
  {
    const MutexLock lock(mutex_);
    openSettled_ = true;
  }
  if (opened) {
    stream_ = *std::move(opened);
    known_->clear();
    answer.give(kAudioStatusOk);
  } else {
    fail(opened.error(), &answer);
  }
}

void OutputQueueCore::startStream(TimedReply& answer) {
  AudioStatus status = kAudioStatusOk;
  {
    const MutexLock lock(mutex_);
    if (state_ == State::kStopped || state_ == State::kPaused) {
      answer.give(kAudioStatusOk);
      return;
    }
    status = failure_;
  }
  if (status == kAudioStatusOk && stream_) {
    status = stream_->start();
  }
  if (status != kAudioStatusOk) {
    fail(status, &answer);
    return;
  }
  {
    const MutexLock lock(mutex_);
    if (state_ != State::kStopped && !running_) {
      running_ = true;
      changes_.push_back(true);
    }
  }
  thread_.wake();
  answer.give(kAudioStatusOk);
  watchDrain();
}

void OutputQueueCore::pauseStream(TimedReply& answer) {
  {
    const MutexLock lock(mutex_);
    if (state_ != State::kPaused) {
      answer.give(kAudioStatusOk);
      return;
    }
  }
  const AudioStatus status = stream_ ? stream_->stop() : kAudioStatusOk;
  if (status == kAudioStatusOk) {
    answer.give(status);
  } else {
    fail(status, &answer);
  }
}

void OutputQueueCore::watchDrain() {
  {
    const MutexLock lock(mutex_);
    if (state_ != State::kRunning || !running_ || !draining_) {
      return;
    }
  }
  if (!stream_ || watching_) {
    return;
  }
  if (feeder_.isAllTaken()) {
    const std::uint64_t end = feeder_.realEndFrame();
    if (stream_->position() >= end || feeder_.givenFrames() >= end + kMaxDrainFrames) {
      endDrained();
      return;
    }
  }
  watching_ = true;
  control_->postAfter(kDrainLook, [self = shared_from_this()](AudioDevice&) {
    self->watching_ = false;
    self->watchDrain();
  });
}

void OutputQueueCore::endDrained() {
  decltype(watched_) watched;
  {
    const MutexLock lock(mutex_);
    if (state_ != State::kRunning) {
      return;  // paused or stopped meanwhile
    }
    state_ = State::kEnded;
    running_ = false;
    changes_.push_back(false);
    watched.swap(watched_);
  }
  thread_.wake();
  stream_.reset();
}

void OutputQueueCore::fail(AudioStatus status, TimedReply* answer) {
  end(status, answer);
  stream_.reset();
}

void OutputQueueCore::stalled() {
  {
    const MutexLock lock(mutex_);
    if (state_ != State::kRunning) {
      return;
    }
  }
  feeder_.close();  // the stream may go on before it is closed
  end(kDeviceStalledStatus, nullptr);
  control_->post([self = shared_from_this()](AudioDevice&) { self->stream_.reset(); });
}

void OutputQueueCore::end(AudioStatus status, TimedReply* answer) {
  decltype(watched_) watched;
  known_->note(status, clock_->now());
  {
    const MutexLock lock(mutex_);
    const bool first = failure_ == kAudioStatusOk;
    if (first) {
      failure_ = status;
    }
    // Under the lock, so that a failure returned by start() is not also reported to the listener.
    const bool answered = answer != nullptr && answer->give(status);
    const bool started = state_ == State::kRunning || state_ == State::kPaused;
    if (started) {
      state_ = State::kEnded;
      running_ = false;
      if (!answered) {
        changes_.push_back(false);
      }
    }
    watched.swap(watched_);
  }
  thread_.wake();
}

// --- The queue's thread.

void OutputQueueCore::serve() {
  returnTaken();
  while (!thread_.isEnding()) {
    bool running = false;
    {
      const MutexLock lock(mutex_);
      if (changes_.empty()) {
        return;
      }
      running = changes_.front();
      changes_.pop_front();
    }
    // Buffers that the device took before the change are returned before it.
    returnTaken();
    if (!thread_.isEnding()) {
      notifyListener(running);
    }
  }
}

void OutputQueueCore::returnTaken() {
  while (!thread_.isEnding()) {
    AudioQueueBuffer* buffer = feeder_.popTaken();
    if (buffer == nullptr) {
      return;
    }
    levels_.measure(reinterpret_cast<const float*>(buffer->mAudioData),
                    buffer->mAudioDataByteSize / kWorkingFrameBytes);
    {
      const MutexLock lock(mutex_);
      buffers_.markReturned(buffer);
    }
    if (callback_) {
      callback_(owner_, *buffer);
    }
  }
}

void OutputQueueCore::notifyListener(bool running) {
  notified_ = running;
  if (listener_) {
    listener_(owner_);
  }
  notified_.reset();
}

}  // namespace platform
