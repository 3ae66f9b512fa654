#pragma once

#include <atomic>
#include <cstdint>
#include <string>
#include <vector>

#include "platform/base/Mutex.h"
#include "platform/sound/AudioDevice.h"
#include "platform/sound/AudioQueue.h"

namespace platform {

/// Follows which input the shared stream captures from. A sound server moves a stream whose input
/// was unplugged to another one, often to the monitor of an output, without an error: only the
/// stream's current input tells.
///
/// An input that no longer exists is lost. A stream that was moved while its former input still
/// exists was moved by the user, and follows.
///
/// Threads: the control thread, except where noted. Real-time: not safe.
class InputSourceTracker {
 public:
  enum class Change { kNone, kMoved, kLost };

  /// A stream was opened.
  void opened(AudioDevice& device, AudioInputStream& stream);
  /// No stream could be opened, or it has ended: the source is now the default input.
  void closed(AudioDevice& device);

  /// Compares an open stream's input with the last one. `inputsChanged`: the list of inputs is
  /// compared too, which asks the sound system. After a loss the source is the default input.
  [[nodiscard]] Change look(AudioDevice& device, AudioInputStream& stream, bool inputsChanged);

  /// AudioQueues::inputSource() and lostInput(). Threads: any.
  [[nodiscard]] AudioInputSource source() const EXCLUDES(mutex_);
  [[nodiscard]] AudioInputSource lost() const EXCLUDES(mutex_);
  /// AudioQueues::inputSourceRevision(). Threads: any.
  [[nodiscard]] std::uint64_t revision() const { return revision_.load(std::memory_order_acquire); }
  /// The stream's source was lost; what there is now is unknown. Threads: any.
  void setLost() EXCLUDES(mutex_);

 private:
  using Inputs = std::vector<AudioInputDevice>;

  /// What the next stream would capture from.
  [[nodiscard]] static AudioInputSource standardOf(const Inputs& inputs);
  [[nodiscard]] static const AudioInputDevice* find(const Inputs& inputs, const std::string& id);
  void setSource(AudioInputSource source) EXCLUDES(mutex_);

  // Whether the list of inputs has had the source. Not every sound system uses the same ids in
  // both.
  bool isListed_ = false;

  // Incremented with every change of source_, under the lock; read without it.
  std::atomic<std::uint64_t> revision_{0};

  mutable Mutex mutex_;
  AudioInputSource source_ GUARDED_BY(mutex_);
  AudioInputSource lost_ GUARDED_BY(mutex_);
};

}  // namespace platform
