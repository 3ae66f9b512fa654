#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "platform/base/Mutex.h"
#include "platform/sound/AudioQueue.h"

/// A gap in a recording: frames that were lost before they could be written.
struct OVRecordingLoss {
  /// What stands in their place.
  enum class Place {
    silence,  ///< of the same length
    nothing,  ///< the gap was too long, or at the end of the recording
  };
  std::uint64_t atFrame = 0;  ///< in the document
  std::uint64_t frames = 0;
  Place place = Place::silence;
  std::chrono::system_clock::time_point noticedAt;
};

/// The gaps of one recording, gathered from its buffers.
///
/// Threads: any. Real-time: not safe.
class OVRecordingLosses {
 public:
  /// A recording begins; `lostFrames` is AudioInputQueue::lostFrames().
  void begin(std::uint64_t lostFrames);
  /// A buffer is written at `atFrame` of the document.
  void written(const platform::AudioQueueBuffer& buffer, std::uint64_t atFrame);
  /// What the buffer tells was lost before the recording, and is none of its gaps.
  void disregard(const platform::AudioQueueBuffer& buffer);
  /// The recording ends at `atFrame`. `lostFrames` is what the queue had lost at that moment: what
  /// no buffer reported of it was lost at the end.
  void end(std::uint64_t lostFrames, std::uint64_t atFrame);

  /// The gaps whose length is known, in the order of the recording.
  [[nodiscard]] std::vector<OVRecordingLoss> all() const;
  [[nodiscard]] std::size_t count() const;

 private:
  void finish() REQUIRES(mutex_);

  mutable platform::Mutex mutex_;
  std::vector<OVRecordingLoss> losses_ GUARDED_BY(mutex_);
  // the gap whose silence is being written
  std::optional<OVRecordingLoss> current_ GUARDED_BY(mutex_);
  std::uint64_t lostBefore_ GUARDED_BY(mutex_) = 0;  // when the recording began
  std::uint64_t noted_ GUARDED_BY(mutex_) = 0;       // frames, since then
};
