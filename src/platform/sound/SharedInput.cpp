#include "platform/sound/SharedInput.h"

#include <algorithm>
#include <utility>

namespace platform {

std::shared_ptr<SharedInput> SharedInput::create(std::shared_ptr<DeviceTasks> control,
                                                 std::shared_ptr<AudioClock> clock,
                                                 std::weak_ptr<StallWatch> stallWatch) {
  std::shared_ptr<SharedInput> input(
      new SharedInput(std::move(control), std::move(clock), std::move(stallWatch)));
  const auto signal = [&](void (*task)(SharedInput&, AudioDevice&)) {
    return input->control_->makeSignal([weak = std::weak_ptr(input), task](AudioDevice& device) {
      if (const auto self = weak.lock()) {
        task(*self, device);
      }
    });
  };
  input->failureSignal_ =
      signal([](SharedInput& self, AudioDevice& device) { self.tearDownFailed(device); });
  input->inputsSignal_ =
      signal([](SharedInput& self, AudioDevice& device) { self.lookAtInputs(device, true); });
  input->control_->post(
      [changed = input->inputsSignal_, weak = std::weak_ptr(input->control_)](AudioDevice& device) {
        // A sound system may notify late. The signal belongs to the control thread's tasks.
        device.setInputsChangedHandler([changed, control = weak.lock()] { changed->raise(); });
      });
  input->control_->postAtEnd([input](AudioDevice&) { input->close(); });
  return input;
}

SharedInput::SharedInput(std::shared_ptr<DeviceTasks> control, std::shared_ptr<AudioClock> clock,
                         std::weak_ptr<StallWatch> stallWatch)
    : control_(std::move(control)), clock_(std::move(clock)), stallWatch_(std::move(stallWatch)) {}

AudioStatus SharedInput::acquire(const std::shared_ptr<InputSubscriber>& user) {
  auto question = std::make_shared<TimedReply>();
  AudioClock::TimePoint deadline;
  std::uint64_t opening = 0;
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
    opening = state_ == State::kOpening ? opening_ : beginOpening();
    questions_.push_back(question);
    deadline = openingSince_ + kMaxWait;
  }
  // From here on, since the control thread may hang and not even begin.
  watchForStall(opening);
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

bool SharedInput::claimFailureAlert() {
  const MutexLock lock(mutex_);
  return std::exchange(unreported_, false);
}

std::uint64_t SharedInput::beginOpening() {
  state_ = State::kOpening;
  preparing_ = false;
  openingSince_ = clock_->now();
  ++opening_;
  control_->post([self = shared_from_this(), opening = opening_](AudioDevice& device) {
    self->open(device, opening);
  });
  return opening_;
}

bool SharedInput::isCurrent(std::uint64_t opening) {
  const MutexLock lock(mutex_);
  return opening == opening_;
}

void SharedInput::watchForStall(std::uint64_t opening) {
  const auto watch = stallWatch_.lock();
  if (!watch) {
    return;
  }
  {
    const MutexLock lock(mutex_);
    if (watched_ || opening != opening_) {
      return;
    }
  }
  auto watched = watch->watch(calls_, [weak = weak_from_this(), opening] {
    if (const auto self = weak.lock()) {
      self->stalled(opening);
    }
  });
  const MutexLock lock(mutex_);
  if (!watched_ && opening == opening_ && (state_ == State::kOpening || state_ == State::kOpen)) {
    watched_.swap(watched);
  }
}

void SharedInput::scheduleClosing() {
  unusedSince_ = clock_->now();
  control_->postAfter(kLinger,
                      [self = shared_from_this()](AudioDevice&) { self->closeIfUnused(); });
}

void SharedInput::open(AudioDevice& device, std::uint64_t opening) {
  if (!isCurrent(opening)) {
    return;  // it was given up before it began
  }
  watchForStall(opening);
  detector_.reset();
  pendingFailure_.store(kAudioStatusOk);
  auto made = device.openInput(*this);
  if (!made) {
    pendingFailure_.store(kAudioStatusOk);
    if (claimEnd(opening)) {
      fail(made.error());
    }
    lookForInput(device);
    return;
  }
  stream_ = *std::move(made);
  streamsOpening_ = opening;
  if (isCurrent(opening)) {  // otherwise it has stalled, and its end is posted
    tracker_.opened(device, *stream_);
    opened(opening);
  }
}

void SharedInput::opened(std::uint64_t opening) {
  decltype(questions_) questions;
  {
    const MutexLock lock(mutex_);
    if (opening != opening_) {
      return;  // it has stalled while its input was looked up
    }
    questions.swap(questions_);
    failing_ = false;
    state_ = State::kOpen;
    failure_.clear();
    if (users_.empty()) {
      scheduleClosing();
    }
  }
  for (const auto& question : questions) {
    question->give(kAudioStatusOk);
  }
  scheduleLook(kLookAtStream);
}

bool SharedInput::claimEnd(std::uint64_t opening) {
  const MutexLock lock(mutex_);
  if (opening != opening_) {
    return false;
  }
  ++opening_;
  return true;
}

void SharedInput::fail(AudioStatus status) {
  {
    const MutexLock lock(mutex_);
    noteFailing();
    failure_.note(status, clock_->now());
  }
  endUsers(status, LastBlock::kDelivered, State::kFailed);
}

void SharedInput::noteFailing() {
  unreported_ = unreported_ || !failing_;
  failing_ = true;
}

void SharedInput::endUsers(AudioStatus status, LastBlock lastBlock, State next) {
  decltype(users_) users;
  decltype(questions_) questions;
  decltype(watched_) watched;
  {
    const MutexLock lock(mutex_);
    users.swap(users_);
    questions.swap(questions_);
    watched.swap(watched_);
    state_ = next;
  }
  for (const auto& user : users) {
    user->inputFailed(status, lastBlock);
  }
  for (const auto& question : questions) {
    question->give(status);
  }
}

void SharedInput::tearDownFailed(AudioDevice& device) {
  const AudioStatus status = pendingFailure_.exchange(kAudioStatusOk);
  if (status == kAudioStatusOk || !stream_) {
    return;
  }
  if (claimEnd(streamsOpening_)) {
    tracker_.setLost();
    fail(status);  // first: closing a dead stream may hang
  }
  stream_.reset();
  lookForInput(device);
}

void SharedInput::stalled(std::uint64_t opening) {
  if (!claimEnd(opening)) {
    return;
  }
  tracker_.setLost();
  fail(kDeviceStalledStatus);
  control_->post([self = shared_from_this(), opening](AudioDevice& device) {
    if (self->streamsOpening_ == opening) {  // otherwise there is a new one
      self->stream_.reset();
    }
    if (!self->stream_) {
      self->lookForInput(device);
    }
  });
}

void SharedInput::scheduleLook(std::chrono::nanoseconds delay) {
  const AudioClock::TimePoint due = clock_->now() + delay;
  if (nextLook_ && *nextLook_ <= due) {
    return;
  }
  nextLook_ = due;
  control_->postAfter(delay, [self = shared_from_this(), due](AudioDevice& device) {
    if (self->nextLook_ == due) {  // otherwise an earlier one has taken its place
      self->nextLook_.reset();
      self->lookAtInputs(device, false);
    }
  });
}

void SharedInput::lookAtInputs(AudioDevice& device, bool changed) {
  if (!stream_) {
    if (changed) {
      scheduleLook(kLookAtStream);  // some sound systems choose the default after the change
    }
    lookForInput(device);
    return;
  }
  if (!isCurrent(streamsOpening_)) {
    return;  // it has stalled, and its end is posted
  }
  if (tracker_.look(device, *stream_, changed) != InputSourceTracker::Change::kLost) {
    scheduleLook(kLookAtStream);
    return;
  }
  if (claimEnd(streamsOpening_)) {  // otherwise it has stalled meanwhile
    lose();
    stream_.reset();
    scheduleLook(kLookAtStream);  // some sound systems choose the next default later
    lookForInput(device);
  }
}

void SharedInput::lose() {
  if (tracker_.source().kind != AudioInputSource::Kind::kMicrophone) {
    const MutexLock lock(mutex_);
    noteFailing();
  }
  // Another input may be there already: the next user opens it at once.
  endUsers(kDeviceLostStatus, LastBlock::kDropped, State::kClosed);
}

void SharedInput::lookForInput(AudioDevice& device) {
  constexpr auto none = AudioInputSource::Kind::kNone;
  const bool wasMissing = tracker_.source().kind == none;
  tracker_.closed(device);
  const bool hasAppeared = wasMissing && tracker_.source().kind != none;
  {
    const MutexLock lock(mutex_);
    unreported_ = unreported_ || (failing_ && hasAppeared);
    if (state_ != State::kFailed && tracker_.source().kind == AudioInputSource::Kind::kMicrophone) {
      return;
    }
  }
  scheduleLook(kLookForInput);
}

void SharedInput::closeIfUnused() {
  decltype(watched_) watched;
  {
    const MutexLock lock(mutex_);
    if (state_ != State::kOpen || !users_.empty() || clock_->now() - unusedSince_ < kLinger) {
      return;
    }
    state_ = State::kClosed;
    ++opening_;  // it cannot stall any more
    watched.swap(watched_);
  }
  stream_.reset();
}

void SharedInput::close() {
  stream_.reset();
}

void SharedInput::deviceCaptured(const float* samples, std::uint32_t frames) noexcept {
  calls_->fetch_add(1, std::memory_order_relaxed);
  const CaptureLossDetector::Loss lost = detector_.captured(frames, clock_->nowWithSleep());
  if (lost.frames > 0) {
    framesLostInSystem_.fetch_add(lost.frames, std::memory_order_relaxed);
    fanOut_.skip(lost.frames, lost.capturedSince);
  }
  fanOut_.distribute(samples, frames);
}

void SharedInput::deviceInputFailed(AudioStatus status) noexcept {
  pendingFailure_.store(status == kAudioStatusOk ? kDeviceLostStatus : status);
  failureSignal_->raise();
}

}  // namespace platform
