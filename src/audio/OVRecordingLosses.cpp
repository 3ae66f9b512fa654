#include "audio/OVRecordingLosses.h"

#include <utility>

namespace {

OVRecordingLoss lossNow(std::uint64_t atFrame, std::uint64_t frames, OVRecordingLoss::Place place) {
  return {atFrame, frames, place, std::chrono::system_clock::now()};
}

}  // namespace

void OVRecordingLosses::begin(std::uint64_t lostFrames) {
  const platform::MutexLock lock(mutex_);
  losses_.clear();
  current_.reset();
  lostBefore_ = lostFrames;
  noted_ = 0;
}

void OVRecordingLosses::written(const platform::AudioQueueBuffer& buffer, std::uint64_t atFrame) {
  const platform::MutexLock lock(mutex_);
  if (buffer.silencedFrames > 0) {
    if (!current_) {
      current_ = lossNow(atFrame, 0, OVRecordingLoss::Place::silence);
    }
    current_->frames += buffer.silencedFrames;
    noted_ += buffer.silencedFrames;
    return;
  }
  finish();
  if (buffer.missingBefore > 0) {
    losses_.push_back(lossNow(atFrame, buffer.missingBefore, OVRecordingLoss::Place::nothing));
    noted_ += buffer.missingBefore;
  }
}

void OVRecordingLosses::disregard(const platform::AudioQueueBuffer& buffer) {
  const platform::MutexLock lock(mutex_);
  finish();
  noted_ += buffer.silencedFrames + buffer.missingBefore;
}

void OVRecordingLosses::end(std::uint64_t lostFrames, std::uint64_t atFrame) {
  const platform::MutexLock lock(mutex_);
  finish();
  const std::uint64_t lost = lostFrames - lostBefore_;
  if (lost > noted_) {
    losses_.push_back(lossNow(atFrame, lost - noted_, OVRecordingLoss::Place::nothing));
    noted_ = lost;
  }
}

std::vector<OVRecordingLoss> OVRecordingLosses::all() const {
  const platform::MutexLock lock(mutex_);
  return losses_;
}

std::size_t OVRecordingLosses::count() const {
  const platform::MutexLock lock(mutex_);
  return losses_.size();
}

void OVRecordingLosses::finish() {
  if (auto finished = std::exchange(current_, std::nullopt)) {
    losses_.push_back(*finished);
  }
}
