#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "platform/base/AudioTypes.h"
#include "platform/base/Installed.h"
#include "platform/base/Result.h"

/// Audio queues: buffers that travel between a program and the sound device. A recorder or player
/// allocates a few buffers, enqueues them, and is called back on the queue's own thread with each
/// buffer that was filled or played.
///
/// The device's real-time thread never runs a callback. It moves samples through a lock-free ring;
/// the queue's thread, which may lock, write files and take its time, runs the callbacks. A stall
/// of that thread loses no frame until the ring is full (kInputRingFrames); frames lost beyond are
/// counted and told on the diagnostics console.
namespace platform {

/// Frames that the ring of one input queue holds while the queue's thread is held up: nearly 6 s.
inline constexpr std::uint32_t kInputRingFrames = 64 * kRecordingChunkFrames;

/// One buffer of a queue. The queue owns it; the pointer is valid until the queue is disposed of.
struct AudioQueueBuffer {
  std::byte* mAudioData = nullptr;            ///< aligned for float
  std::uint32_t mAudioDataBytesCapacity = 0;  ///< bytes
  std::uint32_t mAudioDataByteSize = 0;       ///< bytes of valid data
  std::uint32_t mPacketDescriptionCount = 0;  ///< always 0 for linear PCM
  /// Input only: frames that the device had captured since the queue's start when the last frame
  /// of this buffer was captured. Compares with AudioInputQueue::capturedFrames().
  std::uint64_t endFrame = 0;
};

/// What input and output queues share.
///
/// Threads: any one owner thread, and the queue's own thread from inside its callback, except
/// where said. Real-time: not safe. No call waits for the sound system for more than 250 ms.
class AudioQueue {
 public:
  /// Stops and disposes of the queue if that was not done.
  virtual ~AudioQueue() = default;

  /// A buffer of `byteCapacity` bytes, a multiple of the frame size; kInvalidParameterStatus for
  /// other sizes, for more than 64 buffers, or for an input buffer longer than half the ring. The
  /// smallest buffer of an input queue at its start decides how many frames each delivery has.
  [[nodiscard]] virtual Result<AudioQueueBuffer*, AudioStatus> allocateBuffer(
      std::uint32_t byteCapacity) = 0;

  /// Hands a buffer to the queue: an input queue fills it, an output queue plays its
  /// mAudioDataByteSize bytes. Also from inside the callback. kInvalidParameterStatus for a buffer
  /// of another queue, one that is enqueued already or one with more bytes than it holds.
  [[nodiscard]] virtual AudioStatus enqueueBuffer(AudioQueueBuffer* buffer) = 0;

  /// Starts, or resumes after a pause. kNoThreadStatus when the system gives no thread for the
  /// callbacks. A failure that it answers is not told again by a listener.
  /// A queue that has stopped, by whatever cause, is not started again: make a new one.
  [[nodiscard]] virtual AudioStatus start() = 0;

  /// Stops at once and drops what is queued. When it has returned no callback and no listener
  /// runs any more. From inside a callback or listener of this queue it returns at once, and the
  /// running call is the last. Stopping again does nothing.
  [[nodiscard]] virtual AudioStatus stopImmediately() = 0;

  /// Ends the queue and releases its buffers. Implies stopImmediately(). Once more does nothing.
  [[nodiscard]] virtual AudioStatus dispose() = 0;

  [[nodiscard]] virtual AudioStatus streamDescription(
      AudioStreamBasicDescription& description) const = 0;

  [[nodiscard]] virtual AudioStatus enableLevelMetering(bool enabled) = 0;

  /// Level of each channel over the last buffer that was filled (input) or given to the device
  /// (output), into `levels`, at most `capacity` channels; `count` tells how many. Silence while
  /// metering is off or nothing was measured yet. Any thread.
  [[nodiscard]] virtual AudioStatus currentLevels(AudioQueueLevelMeterState* levels,
                                                  std::size_t capacity,
                                                  std::size_t& count) const = 0;
};

class AudioInputQueue : public AudioQueue {
 public:
  /// Called on the queue's thread with each filled buffer, in the order of capture. Only the last
  /// one before the failure listener may be filled in part.
  using Callback = std::function<void(AudioInputQueue&, AudioQueueBuffer&)>;
  /// Called on the queue's thread, at most once, when the device fails or vanishes; after the last
  /// frames that it gave, as long as there are buffers to deliver them into.
  using FailureListener = std::function<void(AudioStatus)>;

  /// Frames captured by the device since start() that already lie in whole buffers' worth of the
  /// ring, delivered or not; all of them once the device has failed. Any thread.
  [[nodiscard]] virtual std::uint64_t capturedFrames() const = 0;

  /// Waits until the callback has returned from every buffer whose endFrame is at most `frame`,
  /// or until the queue was stopped or has no enqueued buffer left to deliver into. Not from
  /// inside the callback.
  virtual void waitUntilDelivered(std::uint64_t frame) = 0;

  /// Frames that the device captured and the full ring could not take. Any thread.
  [[nodiscard]] virtual std::uint64_t lostFrames() const = 0;
};

class AudioOutputQueue : public AudioQueue {
 public:
  /// Called on the queue's thread with each buffer whose data has gone to the device.
  using Callback = std::function<void(AudioOutputQueue&, AudioQueueBuffer&)>;
  /// Called on a thread of the queue whenever the running state changes: true after start() has
  /// taken effect, false when a stop that lets the queued buffers play out has finished, or the
  /// device failed. Not called by stopImmediately() and dispose(). Pausing does not change it.
  using RunningListener = std::function<void(AudioOutputQueue&)>;

  /// Keeps queued data; start() resumes.
  [[nodiscard]] virtual AudioStatus pause() = 0;

  /// No more buffers will come: lets those queued be heard to their last frame, then the running
  /// state turns false. Returns at once, also from inside the callback. Before start() it is
  /// remembered and takes effect after start().
  [[nodiscard]] virtual AudioStatus stopAfterQueued() = 0;

  /// Whether the queue runs (1) or not (0), a 32-bit flag. Any thread.
  [[nodiscard]] virtual AudioStatus isRunning(std::uint32_t& running) const = 0;

  /// Set before start().
  virtual AudioStatus setRunningListener(RunningListener listener) = 0;

  /// The status that ended the queue by itself, 0 while there is none. Any thread.
  [[nodiscard]] virtual AudioStatus failure() const = 0;

  /// Frames of silence that the device was given because no buffer was ready in time. Any thread.
  [[nodiscard]] virtual std::uint64_t underrunFrames() const = 0;
};

/// What AudioQueues::completeFormat() does: fills the fields of `format` that follow from its
/// rate, kind, flags and channel count.
[[nodiscard]] AudioStatus completeWorkingFormat(AudioStreamBasicDescription& format);

/// Makes queues. One serves the whole process; it shares one input stream among all input queues.
/// The application installs those of the real device, a test those of the scripted one; with none
/// installed every queue is refused with kDeviceUnavailableStatus and a line on standard error.
///
/// Threads: any. Real-time: not safe.
class AudioQueues {
 public:
  virtual ~AudioQueues() = default;
  static std::shared_ptr<AudioQueues> whenNoneIsInstalled();

  using NewInput = Result<std::unique_ptr<AudioInputQueue>, AudioStatus>;
  using NewOutput = Result<std::unique_ptr<AudioOutputQueue>, AudioStatus>;

  /// Completes a description whose identifying fields are set; kInvalidParameterStatus for one
  /// that is not interleaved float PCM of kWorkingFormat's shape (an all-zero one, say).
  [[nodiscard]] virtual AudioStatus completeFormat(AudioStreamBasicDescription& format) const = 0;

  /// A stopped input queue. Waits at most 250 ms for the first answer of the sound system, past
  /// that it says yes; a failure that comes later arrives through `failed`, once. A failure known
  /// for less than a second is answered at once.
  [[nodiscard]] virtual NewInput newInput(const AudioStreamBasicDescription& format,
                                          AudioInputQueue::Callback callback,
                                          AudioInputQueue::FailureListener failed) = 0;

  /// A stopped output queue; waits as newInput() does. Its first buffers can be enqueued at once.
  [[nodiscard]] virtual NewOutput newOutput(const AudioStreamBasicDescription& format,
                                            AudioOutputQueue::Callback callback) = 0;

  /// True for the first caller after the input device began to fail: that one tells the user.
  /// False until the device's state has changed again, so that one failure is told once however
  /// many recorders meet it.
  [[nodiscard]] virtual bool claimInputFailureAlert() = 0;

  /// True for the first caller with a lost device (kDeviceLostStatus) to tell of, false for a
  /// second after it: a sound server that dies takes input and output along at once, and is told
  /// once.
  [[nodiscard]] virtual bool claimDeviceLossAlert() = 0;
};

inline std::shared_ptr<AudioQueues> audioQueues() {
  return Installed<AudioQueues>::get();
}

}  // namespace platform
