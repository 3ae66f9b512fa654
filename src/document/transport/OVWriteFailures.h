#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>

class OVAQRecorder;

/// Writes that the temporary file of a document did not take: from the thread that writes to the
/// one alert that tells of it.
///
/// The buffer tells of a failed write and, when the chunk has been mapped all the same, of the
/// chunk. The first failure of a recording is reported then, since only then it is known what is
/// lost; further ones are not. A load asks for its failures by itself.
///
/// Threads: as said with each operation. Real-time: not safe.
class OVWriteFailures {
 public:
  /// A recording's first failed write. The range is where it would have gone.
  struct Failure {
    int error = 0;  ///< errno
    std::weak_ptr<OVAQRecorder> recorder;
    std::uint64_t atByteOffset = 0;
    std::uint32_t withSize = 0;
  };

  /// `recordingFailed` is called on the writer's thread, at most once per recording.
  explicit OVWriteFailures(std::function<void(const Failure&)> recordingFailed);

  /// Forget what was before. Threads: main.
  void recordingBegins();
  void loadingBegins();
  void loadingEnded();

  /// The buffer's two calls, with the document's recorder of that moment, which may be null.
  /// Threads: the writer's.
  void failedToWrite(int error, const std::shared_ptr<OVAQRecorder>& recorder);
  void chunkWritten(const std::shared_ptr<OVAQRecorder>& recorder, std::uint64_t atByteOffset,
                    std::uint32_t withSize);

  /// The errno of a write that failed since the last call, 0 for none.
  /// Threads: the loading job's.
  [[nodiscard]] int takeLoadingError() { return writeError_.exchange(0); }

  /// Tells the user that the recording has ended because of it.
  /// Threads: main.
  static void tellRecordingStopped(int error);

 private:
  const std::function<void(const Failure&)> recordingFailed_;

  // Set and taken by the writer's thread, cleared by the main thread before a recording or a load
  // begins: each stands for itself, so relaxed order would do.
  std::atomic<int> writeError_ = 0;             // errno of the write being reported
  std::atomic<bool> isLoading_ = false;         // the loading job writes into the buffer
  std::atomic<bool> writeFailureTold_ = false;  // once per recording
};
