#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>

class OVAQRecorder;

/// Reports failed writes to a document's temporary file, which occur on the writer's thread, in a
/// single alert.
///
/// The buffer reports a failed write first and then, if the chunk was mapped nevertheless, the
/// chunk. The first failure of a recording is reported at that point, when the lost range is known;
/// later ones are not. A load polls for its failures.
///
/// Threads: stated with each operation. Real-time: not safe.
class OVWriteFailures {
 public:
  /// A recording's first failed write, and the byte range that was to be written.
  struct Failure {
    int error = 0;  ///< errno
    std::weak_ptr<OVAQRecorder> recorder;
    std::uint64_t atByteOffset = 0;
    std::uint32_t withSize = 0;
    std::uint64_t revision = 0;  ///< of the history, see recordingBegins()
  };

  /// `recordingFailed` is called on the writer's thread, at most once per recording.
  explicit OVWriteFailures(std::function<void(const Failure&)> recordingFailed);

  /// The first two discard earlier failures. `revision` is the history's once the recording's step
  /// has begun. Threads: main.
  void recordingBegins(std::uint64_t revision);
  void loadingBegins();
  void loadingEnded();

  /// Called by the buffer, with the document's current recorder, which may be null.
  /// Threads: the writer's.
  void failedToWrite(int error, const std::shared_ptr<OVAQRecorder>& recorder);
  void chunkWritten(const std::shared_ptr<OVAQRecorder>& recorder, std::uint64_t atByteOffset,
                    std::uint32_t withSize);

  /// The errno of a write that failed since the last call, 0 for none; clears it.
  /// Threads: the loading job's.
  [[nodiscard]] int takeLoadingError() { return writeError_.exchange(0); }

  /// Alerts the user that the recording has ended because of this errno.
  /// Threads: main.
  static void tellRecordingStopped(int error);

 private:
  const std::function<void(const Failure&)> recordingFailed_;

  // Set and read by the writer's thread, cleared on main before a recording or a load begins. They
  // order no other data, so relaxed order would suffice.
  std::atomic<int> writeError_ = 0;             // errno of the write being reported
  std::atomic<bool> isLoading_ = false;         // the loading job writes into the buffer
  std::atomic<bool> writeFailureTold_ = false;  // once per recording
  std::atomic<std::uint64_t> revision_ = 0;     // of the history when the recording began
};
