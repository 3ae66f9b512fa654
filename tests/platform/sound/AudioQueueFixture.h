#pragma once

#include <algorithm>
#include <condition_variable>
#include <cstdint>
#include <cstring>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

#include <gmock/gmock.h>

#include "platform/sound/DeviceAudioQueues.h"
#include "support/Eventually.h"
#include "support/Gate.h"
#include "support/TestAudio.h"
#include "support/fakes/ManualAudioClock.h"
#include "support/fakes/RecordingServices.h"
#include "support/fakes/ScriptedAudioDevice.h"

namespace platform::test {

inline constexpr std::uint32_t kRecordFrames = 4096;
inline constexpr std::uint32_t kPlayFrames = 1024;

using support::Gate;
using support::ramp;

/// Records values from other threads in order and waits for them.
template <typename Value>
class Record {
 public:
  void add(Value value) {
    // Notified under the lock: a waiting thread may destroy this as soon as it has the lock.
    const std::lock_guard lock(mutex_);
    values_.push_back(std::move(value));
    changed_.notify_all();
  }
  [[nodiscard]] bool awaitCount(std::size_t count) const {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, support::kPatience, [&] { return values_.size() >= count; });
  }
  [[nodiscard]] std::vector<Value> values() const {
    const std::lock_guard lock(mutex_);
    return values_;
  }
  [[nodiscard]] std::size_t count() const {
    const std::lock_guard lock(mutex_);
    return values_.size();
  }

 private:
  mutable std::mutex mutex_;
  mutable std::condition_variable changed_;
  std::vector<Value> values_;  // guarded by mutex_
};

/// An input queue with the recorder's buffers; its callback keeps all samples.
struct Recording {
  Recording() = default;
  Recording(const Recording&) = delete;
  Recording& operator=(const Recording&) = delete;
  ~Recording() { queue.reset(); }  // before the members that its callbacks use

  std::unique_ptr<AudioInputQueue> queue;
  Record<std::uint64_t> endFrames;
  Record<AudioStatus> failures;
  bool reenqueue = true;
  std::function<void(AudioInputQueue&, AudioQueueBuffer&)> also;

  AudioStatus make(AudioQueues& queues) {
    auto made = queues.newInput(
        kWorkingFormat,
        [this](AudioInputQueue& its, AudioQueueBuffer& buffer) {
          const auto* samples = reinterpret_cast<const float*>(buffer.mAudioData);
          {
            const std::lock_guard lock(mutex);
            kept.insert(kept.end(), samples, samples + buffer.mAudioDataByteSize / sizeof(float));
          }
          if (also) {
            also(its, buffer);
          }
          if (reenqueue) {
            static_cast<void>(its.enqueueBuffer(&buffer));
          }
          endFrames.add(buffer.endFrame);
        },
        [this](AudioStatus status) { failures.add(status); });
    if (made) {
      queue = *std::move(made);
    }
    return made.error();
  }
  AudioStatus prime(std::uint32_t frames = kRecordFrames) {
    for (int i = 0; i < 3; ++i) {
      const auto buffer = queue->allocateBuffer(frames * 8);
      const AudioStatus status = buffer ? queue->enqueueBuffer(*buffer) : buffer.error();
      if (status != kAudioStatusOk) {
        return status;
      }
    }
    return kAudioStatusOk;
  }
  AudioStatus begin(AudioQueues& queues, std::uint32_t frames = kRecordFrames) {
    const AudioStatus status = monitor(queues, frames);
    if (status == kAudioStatusOk) {
      queue->prepareToRecord();
    }
    return status;
  }
  AudioStatus monitor(AudioQueues& queues, std::uint32_t frames = kRecordFrames) {
    AudioStatus status = make(queues);
    if (status == kAudioStatusOk) {
      status = prime(frames);
    }
    return status == kAudioStatusOk ? queue->start() : status;
  }
  std::vector<float> samples() {
    const std::lock_guard lock(mutex);
    return kept;
  }

  std::mutex mutex;
  std::vector<float> kept;  // guarded by mutex
};

/// An output queue that plays given samples through the player's buffers and ends like the player.
struct Playback {
  Playback() = default;
  Playback(const Playback&) = delete;
  Playback& operator=(const Playback&) = delete;
  ~Playback() { queue.reset(); }  // before the members that its callbacks use

  std::vector<float> source;
  std::size_t readAt = 0;  // samples
  bool done = false;
  std::unique_ptr<AudioOutputQueue> queue;
  Record<std::uint32_t> states;    // the listener's notifications
  Record<std::uint32_t> returned;  // frames of each returned buffer, after its refill
  std::function<void(AudioOutputQueue&)> inCallback;
  std::function<void(AudioOutputQueue&)> inListener;

  AudioStatus make(AudioQueues& queues) {
    auto made =
        queues.newOutput(kWorkingFormat, [this](AudioOutputQueue& its, AudioQueueBuffer& buffer) {
          const std::uint32_t frames = buffer.mAudioDataByteSize / 8;
          if (inCallback) {
            inCallback(its);
          }
          refill(its, buffer);
          returned.add(frames);
        });
    if (made) {
      queue = *std::move(made);
      queue->setRunningListener([this](AudioOutputQueue& its) {
        std::uint32_t running = 9;
        static_cast<void>(its.isRunning(running));
        states.add(running);
        if (inListener) {
          inListener(its);
        }
      });
    }
    return made.error();
  }
  void refill(AudioOutputQueue& its, AudioQueueBuffer& buffer) {
    if (done) {
      return;
    }
    const std::size_t room = buffer.mAudioDataBytesCapacity / sizeof(float);
    const std::size_t count = std::min(room, source.size() - readAt);
    if (count == 0) {
      static_cast<void>(its.stopAfterQueued());
      done = true;
      return;
    }
    std::memcpy(buffer.mAudioData, &source[readAt], count * sizeof(float));
    buffer.mAudioDataByteSize = static_cast<std::uint32_t>(count * sizeof(float));
    readAt += count;
    static_cast<void>(its.enqueueBuffer(&buffer));
  }
  AudioStatus begin(AudioQueues& queues) {
    const AudioStatus status = make(queues);
    if (status != kAudioStatusOk) {
      return status;
    }
    prime();
    return queue->start();
  }
  void prime(std::uint32_t frames = kPlayFrames) {
    for (int i = 0; i < 3 && !done; ++i) {
      const auto buffer = queue->allocateBuffer(frames * 8);
      ASSERT_TRUE(buffer);
      refill(*queue, **buffer);
    }
  }
};

/// Queues on a scripted device with the system's clock.
class AudioQueueFixture : public testing::Test {
 protected:
  ~AudioQueueFixture() override { device->release(); }

  support::InstalledRecordingServices services;
  std::shared_ptr<ScriptedAudioDevice> device = std::make_shared<ScriptedAudioDevice>();
  std::shared_ptr<DeviceAudioQueues> queues = std::make_shared<DeviceAudioQueues>(device);
};

/// The same with a clock that the test advances.
class TurnedClockFixture : public testing::Test {
 protected:
  ~TurnedClockFixture() override { device->release(); }

  /// Returns once the control thread has run all due tasks.
  void settle() {
    const std::size_t before = device->preparations();
    queues->prepareInput();
    ASSERT_TRUE(support::eventually([&] { return device->preparations() > before; }));
  }

  support::InstalledRecordingServices services;
  std::shared_ptr<ManualAudioClock> clock = std::make_shared<ManualAudioClock>();
  std::shared_ptr<ScriptedAudioDevice> device = std::make_shared<ScriptedAudioDevice>();
  std::shared_ptr<DeviceAudioQueues> queues = std::make_shared<DeviceAudioQueues>(device, clock);
};

}  // namespace platform::test
