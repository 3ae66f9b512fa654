#include "platform/sound/SharedInput.h"

#include <algorithm>
#include <utility>

namespace platform {

std::shared_ptr<SharedInput> SharedInput::create(std::shared_ptr<DeviceTasks> control,
                                                 std::shared_ptr<AudioClock> clock) {
  std::shared_ptr<SharedInput> input(new SharedInput(std::move(control), std::move(clock)));
  input->failureSignal_ = input->control_->makeSignal([weak = std::weak_ptr(input)](AudioDevice&) {
    if (const auto self = weak.lock()) {
      self->tearDownFailed();
    }
  });
  input->control_->postAtEnd([input](AudioDevice&) { input->close(); });
  return input;
}

SharedInput::SharedInput(std::shared_ptr<DeviceTasks> control, std::shared_ptr<AudioClock> clock)
    : control_(std::move(control)), clock_(std::move(clock)) {}

AudioStatus SharedInput::acquire(const std::shared_ptr<InputSubscriber>& user) {
  auto question = std::make_shared<TimedReply>();
  AudioClock::TimePoint deadline;
  {
    const MutexLock lock(mutex_);
    if (state_ == State::kFailed) {
      const AudioStatus known = failure_.recent(clock_->now());
      if (known != kAudioStatusOk) {
        return known;
      }
    }
    if (users_.empty()) {
      // Losses without a user do not matter.
      static_cast<void>(takeFramesLostInSystem());
    }
    users_.push_back(user);
    if (state_ == State::kOpen || (state_ == State::kOpening && preparing_)) {
      return kAudioStatusOk;
    }
    if (state_ != State::kOpening) {
      beginOpening();
    }
    questions_.push_back(question);
    deadline = openingSince_ + kMaxWait;
  }
  return question->wait(*clock_, deadline).value_or(kAudioStatusOk);
}

void SharedInput::release(const InputSubscriber& user) {
  std::shared_ptr<InputSubscriber>
      released;  // may be the last reference: released outside the lock
  const MutexLock lock(mutex_);
  const auto found = std::find_if(users_.begin(), users_.end(),
                                  [&](const auto& other) { return other.get() == &user; });
  if (found == users_.end()) {
    return;
  }
  released = std::move(*found);
  users_.erase(found);
  if (users_.empty() && state_ == State::kOpen) {
    scheduleClosing();
  }
}

void SharedInput::prepare() {
  const MutexLock lock(mutex_);
  if (state_ == State::kClosed || state_ == State::kFailed) {
    beginOpening();
    preparing_ = true;
  }
}

bool SharedInput::takeFailureReport() {
  const MutexLock lock(mutex_);
  return std::exchange(untold_, false);
}

void SharedInput::beginOpening() {
  state_ = State::kOpening;
  preparing_ = false;
  openingSince_ = clock_->now();
  control_->post([self = shared_from_this()](AudioDevice& device) { self->open(device); });
}

void SharedInput::scheduleClosing() {
  unusedSince_ = clock_->now();
  control_->postAfter(kLinger,
                      [self = shared_from_this()](AudioDevice&) { self->closeIfUnused(); });
}

void SharedInput::open(AudioDevice& device) {
  detector_.reset();
  pendingFailure_.store(kAudioStatusOk);
  auto opened = device.openInput(*this);
  const AudioStatus status = opened.error();
  if (opened) {
    stream_ = *std::move(opened);
  } else {
    pendingFailure_.store(kAudioStatusOk);
  }
  settle(status);
}

void SharedInput::settle(AudioStatus status) {
  decltype(users_) failedUsers;
  decltype(questions_) questions;
  {
    const MutexLock lock(mutex_);
    questions.swap(questions_);
    const bool failedBefore = std::exchange(failing_, status != kAudioStatusOk);
    if (failing_) {
      untold_ = untold_ || !failedBefore;
      state_ = State::kFailed;
      failure_.note(status, clock_->now());
      failedUsers.swap(users_);
    } else {
      state_ = State::kOpen;
      failure_.clear();
      if (users_.empty()) {
        scheduleClosing();
      }
    }
  }
  for (const auto& user : failedUsers) {
    user->inputFailed(status);
  }
  for (const auto& question : questions) {
    question->give(status);
  }
}

void SharedInput::tearDownFailed() {
  const AudioStatus status = pendingFailure_.exchange(kAudioStatusOk);
  if (status == kAudioStatusOk || !stream_) {
    return;
  }
  settle(status);  // first: closing a dead stream may hang
  stream_.reset();
}

void SharedInput::closeIfUnused() {
  {
    const MutexLock lock(mutex_);
    if (state_ != State::kOpen || !users_.empty() || clock_->now() - unusedSince_ < kLinger) {
      return;
    }
    state_ = State::kClosed;
  }
  stream_.reset();
}

void SharedInput::close() {
  stream_.reset();
}

void SharedInput::deviceCaptured(const float* samples, std::uint32_t frames) noexcept {
  fanOut_.distribute(samples, frames);
  const std::uint64_t lost = detector_.captured(frames, clock_->now());
  if (lost > 0) {
    framesLostInSystem_.fetch_add(lost, std::memory_order_relaxed);
  }
}

void SharedInput::deviceInputFailed(AudioStatus status) noexcept {
  pendingFailure_.store(status == kAudioStatusOk ? kDeviceLostStatus : status);
  failureSignal_->raise();
}

}  // namespace platform
