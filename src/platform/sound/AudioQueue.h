#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "platform/base/AudioTypes.h"
#include "platform/base/Installed.h"
#include "platform/base/Result.h"

/// Audio queues move buffers between the program and the sound device. A recorder or player
/// allocates a few buffers and enqueues them. The queue calls back on its own thread with each
/// filled or played buffer.
///
/// The device's real-time thread never runs a callback; it moves samples through a lock-free ring.
/// Callbacks run on the queue's thread and may lock, write files and block. If that thread stalls,
/// no frame is lost until the ring is full (kInputRingFrames; before prepareToRecord()
/// kMonitoringRingFrames). For frames lost after that, or
/// inside the sound system, an input queue delivers silence of the same length, so that what
/// follows keeps its time; they are also logged to the diagnostics console.
namespace platform {

/// Capacity in frames of an input queue's ring, nearly 6 s: the longest stall of the queue's thread
/// without loss.
inline constexpr std::uint32_t kInputRingFrames = 64 * kRecordingChunkFrames;

/// The same while nothing is recorded, half a second: the levels need no more.
inline constexpr std::uint32_t kMonitoringRingFrames = 6 * kRecordingChunkFrames;

/// The longest gap, in frames, for which an input queue delivers silence: a minute. Above that,
/// silence would only fill the disk.
inline constexpr std::uint64_t kMaxSilencedFrames = 60 * std::uint64_t{kWorkingRate};

/// One buffer of a queue. The queue owns it; the pointer is valid until the queue is disposed of.
struct AudioQueueBuffer {
  std::byte* mAudioData = nullptr;            ///< aligned for float
  std::uint32_t mAudioDataBytesCapacity = 0;  ///< bytes
  std::uint32_t mAudioDataByteSize = 0;       ///< bytes of valid data
  std::uint32_t mPacketDescriptionCount = 0;  ///< always 0 for linear PCM
  /// Input only: frames captured from the queue's start to the end of this buffer, lost ones
  /// included. Compares with AudioInputQueue::capturedFrames().
  std::uint64_t endFrame = 0;
  /// Input only: how many of this buffer's frames were lost, and are silence: all or none.
  std::uint32_t silencedFrames = 0;
  /// Input only: frames lost before this buffer that no silence stands for: more than
  /// kMaxSilencedFrames, otherwise 0.
  std::uint64_t missingBefore = 0;
  /// Input only, for silencedFrames and missingBefore: the frame, counted as endFrame is, before
  /// which these are missing, at the latest. A loss inside the sound system is found about a second
  /// later, and silence can only be delivered then.
  std::uint64_t lostAtFrame = 0;
};

/// The input that recordings come from.
struct AudioInputSource {
  enum class Kind {
    kUnknown,     ///< not looked at yet, or the sound system does not say
    kNone,        ///< there is no input at all
    kMicrophone,  ///< any input but a monitor
    kMonitor,     ///< what the computer plays
  };
  Kind kind = Kind::kUnknown;
  bool isOpen = false;  ///< captured from now; otherwise the one that would be
  std::string id;       ///< of the sound system; empty if unknown
  std::string name;     ///< as the sound system has it: UTF-8 of any length and content, also empty

  friend bool operator==(const AudioInputSource&, const AudioInputSource&) = default;
};

/// The common base of input and output queues.
///
/// Threads: one owner thread of any kind, and the queue's own thread from inside its callback,
/// except where noted. Real-time: not safe. No call waits more than 250 ms for the sound system.
class AudioQueue {
 public:
  /// Stops and disposes of the queue unless already done.
  virtual ~AudioQueue() = default;

  /// A buffer of `byteCapacity` bytes, a multiple of the frame size; kInvalidParameterStatus for
  /// other sizes, more than 64 buffers, or an input buffer longer than half the ring. The smallest
  /// buffer of an input queue when it starts sets the frames per delivery.
  [[nodiscard]] virtual Result<AudioQueueBuffer*, AudioStatus> allocateBuffer(
      std::uint32_t byteCapacity) = 0;

  /// Enqueues a buffer: an input queue fills it, an output queue plays its mAudioDataByteSize
  /// bytes. May be called from the callback. kInvalidParameterStatus for a buffer of another queue,
  /// one already enqueued, or one whose byte size exceeds its capacity.
  [[nodiscard]] virtual AudioStatus enqueueBuffer(AudioQueueBuffer* buffer) = 0;

  /// Starts, or resumes after a pause. kNoThreadStatus when the system cannot create the callback
  /// thread. A failure returned here does not reach a listener as well. A stopped queue cannot be
  /// restarted, whatever stopped it: create a new one.
  [[nodiscard]] virtual AudioStatus start() = 0;

  /// Stops at once and drops queued buffers. After it returns no callback or listener runs. Called
  /// from a callback or listener of this queue, it returns at once, and the running call is the
  /// last. Stopping again does nothing.
  [[nodiscard]] virtual AudioStatus stopImmediately() = 0;

  /// Ends the queue and releases its buffers. Implies stopImmediately(). A second call does
  /// nothing.
  [[nodiscard]] virtual AudioStatus dispose() = 0;

  [[nodiscard]] virtual AudioStatus streamDescription(
      AudioStreamBasicDescription& description) const = 0;

  [[nodiscard]] virtual AudioStatus enableLevelMetering(bool enabled) = 0;

  /// Level of each channel over the last buffer filled (input) or passed to the device (output).
  /// Writes at most `capacity` channels into `levels` and their number into `count`. Silence while
  /// metering is off or before the first measurement. Any thread.
  [[nodiscard]] virtual AudioStatus currentLevels(AudioQueueLevelMeterState* levels,
                                                  std::size_t capacity,
                                                  std::size_t& count) const = 0;
};

class AudioInputQueue : public AudioQueue {
 public:
  /// Called on the queue's thread with each filled buffer, in the order of capture. Only the last
  /// one before the failure listener, or before lost frames, and the last one of the silence that
  /// stands for these may be partly filled.
  using Callback = std::function<void(AudioInputQueue&, AudioQueueBuffer&)>;
  /// Called on the queue's thread, at most once, when the device fails or is unplugged. Its last
  /// frames are delivered first if enough buffers are enqueued.
  using FailureListener = std::function<void(AudioStatus)>;

  /// From now on the ring has kInputRingFrames instead of kMonitoringRingFrames. Does nothing
  /// before start(), or when called again. The owner's thread.
  virtual void prepareToRecord() = 0;

  /// Frames captured since start(), delivered or not, counted in whole buffers; all of them once
  /// the device has failed. Any thread.
  [[nodiscard]] virtual std::uint64_t capturedFrames() const = 0;

  /// Waits until the callback has returned from every buffer whose endFrame is at most `frame`, or
  /// the queue is stopped or has no enqueued buffer left. Not from inside the callback.
  virtual void waitUntilDelivered(std::uint64_t frame) = 0;

  /// Frames lost because the ring was full, or inside the sound system. Any thread.
  [[nodiscard]] virtual std::uint64_t lostFrames() const = 0;
};

class AudioOutputQueue : public AudioQueue {
 public:
  /// Called on the queue's thread with each buffer whose data the device has taken.
  using Callback = std::function<void(AudioOutputQueue&, AudioQueueBuffer&)>;
  /// Called on a thread of the queue whenever the running state changes: to true when start() has
  /// taken effect, to false when stopAfterQueued() has finished or the device failed. Not called by
  /// stopImmediately() and dispose(). Pausing does not change the state.
  using RunningListener = std::function<void(AudioOutputQueue&)>;

  /// Pauses and keeps queued data; start() resumes.
  [[nodiscard]] virtual AudioStatus pause() = 0;

  /// Plays the queued buffers to their last frame, then sets the running state to false. No more
  /// buffers may follow. Returns at once; may be called from the callback. A call before start()
  /// takes effect after it.
  [[nodiscard]] virtual AudioStatus stopAfterQueued() = 0;

  /// Whether the queue runs (1) or not (0), a 32-bit flag. Any thread.
  [[nodiscard]] virtual AudioStatus isRunning(std::uint32_t& running) const = 0;

  /// Set before start().
  virtual AudioStatus setRunningListener(RunningListener listener) = 0;

  /// The status of the failure that ended the queue; 0 for none. Any thread.
  [[nodiscard]] virtual AudioStatus failure() const = 0;

  /// Frames of silence passed to the device because no buffer was ready in time. Any thread.
  [[nodiscard]] virtual std::uint64_t underrunFrames() const = 0;
};

/// Implements AudioQueues::completeFormat(): fills the fields of `format` that follow from its
/// rate, kind, flags and channel count.
[[nodiscard]] AudioStatus completeWorkingFormat(AudioStreamBasicDescription& format);

/// Creates queues. One instance serves the whole process and shares one input stream among all
/// input queues. The application installs one for the real device, tests one for the scripted
/// device. With none installed every queue is refused with kDeviceUnavailableStatus and a line on
/// standard error.
///
/// Threads: any. Real-time: not safe.
class AudioQueues {
 public:
  virtual ~AudioQueues() = default;
  static std::shared_ptr<AudioQueues> whenNoneIsInstalled();

  using NewInput = Result<std::unique_ptr<AudioInputQueue>, AudioStatus>;
  using NewOutput = Result<std::unique_ptr<AudioOutputQueue>, AudioStatus>;

  /// Completes a description whose identifying fields are set; kInvalidParameterStatus unless it is
  /// interleaved float PCM like kWorkingFormat.
  [[nodiscard]] virtual AudioStatus completeFormat(AudioStreamBasicDescription& format) const = 0;

  /// A stopped input queue. Waits at most 250 ms for the sound system, then assumes success; a
  /// later failure is reported through `failed`, once. A failure less than a second old is returned
  /// at once.
  [[nodiscard]] virtual NewInput newInput(const AudioStreamBasicDescription& format,
                                          AudioInputQueue::Callback callback,
                                          AudioInputQueue::FailureListener failed) = 0;

  /// A stopped output queue; waits as newInput() does. Its first buffers can be enqueued at once.
  [[nodiscard]] virtual NewOutput newOutput(const AudioStreamBasicDescription& format,
                                            AudioOutputQueue::Callback callback) = 0;

  /// True for the first caller after the input device began to fail, which alerts the user. False
  /// until the device's state changes again, so one failure shows one alert for any number of
  /// recorders. An input that appears is such a change.
  [[nodiscard]] virtual bool claimInputFailureAlert() = 0;

  /// The input that is captured from; while none is open, the default one. Never waits.
  [[nodiscard]] virtual AudioInputSource inputSource() const { return {}; }
  /// Another number whenever inputSource() has changed. Cheap.
  [[nodiscard]] virtual std::uint64_t inputSourceRevision() const { return 0; }

  /// The input that was captured from when a queue's failure listener was last called.
  [[nodiscard]] virtual AudioInputSource lostInput() const { return {}; }
};

inline std::shared_ptr<AudioQueues> audioQueues() {
  return Installed<AudioQueues>::get();
}

}  // namespace platform
