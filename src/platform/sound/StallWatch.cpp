#include "platform/sound/StallWatch.h"

#include <algorithm>
#include <system_error>
#include <utility>

namespace platform {

bool StallCount::look(AudioClock::TimePoint now, std::chrono::nanoseconds late,
                      std::uint64_t progress) {
  if (progress != progress_) {
    progress_ = progress;
    hasMoved_ = true;
    since_ = now;
    return false;
  }
  if (late > kLateness) {
    since_ = now;
    return false;
  }
  return now - since_ >= (hasMoved_ ? kPatience : kFirstPatience);
}

StallWatch::~StallWatch() {
  std::thread ending;
  {
    const MutexLock lock(mutex_);
    isEnding_ = true;
    ending.swap(thread_);
  }
  wake_.post();
  if (ending.joinable()) {
    ending.join();
  }
}

std::shared_ptr<StallWatch::Stream> StallWatch::watch(std::shared_ptr<const Progress> progress,
                                                      std::function<void()> stalled) {
  auto stream = std::make_shared<Stream>(Stream{std::move(progress), std::move(stalled)});
  const std::uint64_t begun = stream->progress->load(std::memory_order_relaxed);
  const MutexLock lock(mutex_);
  if (!isRunning_) {
    if (thread_.joinable()) {
      thread_.join();  // it has ended but for its last instructions, and needs no lock
    }
    try {
      thread_ = std::thread([this] { run(); });
    } catch (const std::system_error&) {
      return stream;
    }
    isRunning_ = true;
  }
  watched_.push_back({stream, StallCount(clock_->now(), begun)});
  return stream;
}

void StallWatch::run() {
  std::chrono::nanoseconds late{};
  do {
    // From here on, so that a stop of the program between two looks shows; and by the clock that
    // goes on while the machine sleeps, since the other one, which the wait uses, does not.
    const AudioClock::TimePoint last = clock_->nowWithSleep();
    const AudioClock::TimePoint due = clock_->now() + kInterval;
    while (clock_->waitUntil(wake_, due)) {
      const MutexLock lock(mutex_);
      if (isEnding_) {
        return;
      }
    }
    late = clock_->nowWithSleep() - last - kInterval;
  } while (lookAtAll(late));
}

bool StallWatch::lookAtAll(std::chrono::nanoseconds late) {
  const AudioClock::TimePoint now = clock_->now();
  std::vector<std::shared_ptr<Stream>> kept;  // released outside the lock
  std::vector<std::shared_ptr<Stream>> stalled;
  {
    const MutexLock lock(mutex_);
    std::erase_if(watched_, [&](Watched& watched) {
      auto stream = watched.stream.lock();
      if (!stream) {
        return true;
      }
      const bool stands =
          watched.count.look(now, late, stream->progress->load(std::memory_order_relaxed));
      (stands ? stalled : kept).push_back(std::move(stream));
      return stands;
    });
  }
  for (const auto& stream : stalled) {
    stream->stalled();
  }
  // After the calls: from here on watch() may wait for the end of this thread.
  const MutexLock lock(mutex_);
  isRunning_ = !watched_.empty();
  return isRunning_;
}

}  // namespace platform
