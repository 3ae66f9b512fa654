#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "audio/OVAQPlayerDelegate.h"
#include "audio/OVAQRecorder.h"
#include "document/transport/OVWriteFailures.h"
#include "platform/base/GuardedPointer.h"
#include "platform/desktop/SleepInhibitor.h"

class OVDocumentAudio;
class OVDocumentLife;
class OVDocumentSummaries;
class OVEditHistory;
class OVFileOperation;
class OVFramePositions;

/// State of the transport. Paused and stopped differ only in the positions.
enum class OVTransportState { resting, recording, playing };

/// Starts and ends recording and playing, and moves the two positions. Owns the recorder, whose
/// input is live from the start, and the player, which exists only during playback. Keeps the
/// machine from suspending while it records. Uses no view.
///
/// Threads: main, unless stated otherwise. Real-time: not safe.
class OVTransport {
 public:
  /// The parts of the document that it uses; they outlive it.
  struct Parts {
    const OVDocumentLife& life;
    OVDocumentAudio& audio;
    OVFramePositions& positions;
    OVDocumentSummaries& summaries;
    OVEditHistory& history;
    const OVFileOperation& operation;
  };

  explicit OVTransport(const Parts& parts);
  ~OVTransport();
  OVTransport(const OVTransport&) = delete;
  OVTransport& operator=(const OVTransport&) = delete;

  /// The delegate is notified of the advance and end of playback; the handler is called when
  /// recording or playing has begun or ended.
  void setDelegate(std::weak_ptr<OVAQPlayerDelegate> delegate) { delegate_ = std::move(delegate); }
  void setChangeHandler(std::function<void()> handler) { changed_ = std::move(handler); }
  /// Called whenever state() has changed, after the change handler.
  void addStateHandler(std::function<void(OVTransportState)> handler) {
    stateHandlers_.push_back(std::move(handler));
  }
  /// Called before a recording begins, ahead of its first chunk.
  void setRecordingHandler(std::function<void()> handler) { recording_ = std::move(handler); }
  /// Called by record() in a document without a buffer, to make one.
  void setBufferMaker(std::function<void()> make) { makeBuffer_ = std::move(make); }
  /// Called when audio was cut because it could not be written.
  void setCutHandler(std::function<void()> handler) { cut_ = std::move(handler); }

  [[nodiscard]] OVTransportState state() const;
  [[nodiscard]] bool isRecording() const;
  [[nodiscard]] bool isPlaying() const;
  /// Threads: any.
  [[nodiscard]] std::shared_ptr<OVAQRecorder> recorder() const { return recorder_.get(); }
  [[nodiscard]] std::shared_ptr<OVAQPlayer> player() const { return player_; }
  /// The running recording has written something.
  [[nodiscard]] bool hasRecorded() const { return writtenSincePress_; }

  /// How many recordings have begun.
  [[nodiscard]] std::uint64_t recordings() const { return recordings_; }
  /// The gaps of the running recording, or of the last one, and how many there are.
  [[nodiscard]] std::vector<OVRecordingLoss> losses() const;
  [[nodiscard]] std::size_t lossCount() const;

  /// Level of each channel of playback or recording; `first` is preferred, none at rest.
  [[nodiscard]] std::optional<std::vector<float>> powerLevels(OVTransportState first) const;

  // Commands ------------------------------------------------------------------------------------

  /// Does nothing during a file operation or playback. Without an input device, alerts the user.
  void record();
  /// Does nothing during a file operation or a recording. Without an output device, alerts the
  /// user.
  void play();
  /// Ends recording and playing. The recorder is replaced, since a recorder is not reused after a
  /// pause.
  void pause();
  void pauseIfRunning();
  /// As pause(), then moves the marker to the start and the recording position to the end.
  void stop();
  /// These also move the positions of a running recording or playback.
  void toStart();
  void toEnd();
  void moveTo(std::uint64_t frames);

  /// Sets the recording position after a cut or a load; the marker is set separately.
  void setRecordingPosition(std::uint64_t frames);
  /// Sets the marker and the player's reading position.
  void setPlaybackPosition(std::uint64_t frames);
  /// Limits the recording position to the audio's length. An undo may leave it past the end, where
  /// a recording or an import would leave a gap.
  void bringRecordingPositionInside();

  // Set-up and tear-down ------------------------------------------------------------------------

  /// Creates the recorder for a new buffer.
  void bufferChanged();
  /// Call before the buffer is replaced.
  void prepareForNewBuffer();
  /// Call when the window closes: nothing is reported afterwards.
  void close();

  // Reports -------------------------------------------------------------------------------------

  /// `player` has ended; null if it is unknown which.
  void playbackEnded(const OVAQPlayer* player);
  /// The recorder while it records, otherwise null.
  /// Threads: any.
  [[nodiscard]] std::shared_ptr<OVAQRecorder> runningRecorder() const;
  /// The recorder has written a chunk that ends at this frame.
  /// Threads: the writer's.
  void recordedUpTo(std::uint64_t frames);
  /// The storage failed with this errno.
  /// Threads: the writer's; the reader's.
  void failedToWrite(int error);
  void failedToRead(int error) { readError_ = error; }

  [[nodiscard]] std::shared_ptr<OVWriteFailures> writeFailures() const { return writeFailures_; }

 private:
  std::shared_ptr<OVAQRecorder> makeRecorder(OVAQRecorder::DeviceAlerts alerts);
  void replaceRecorder(OVAQRecorder::DeviceAlerts alerts);
  void endRecording();
  void endPlaying();
  void inputFailed(const std::weak_ptr<OVAQRecorder>& recorder);
  void writingFailed(const OVWriteFailures::Failure& failure);
  void dropLostEnd(std::uint64_t atByteOffset, std::uint32_t withSize);
  void changed();
  void keepAwake(bool awake);

  const Parts parts_;

  // Main thread only.
  std::weak_ptr<OVAQPlayerDelegate> delegate_;
  std::function<void()> changed_;
  std::function<void()> cut_;
  std::function<void()> makeBuffer_;
  std::vector<std::function<void(OVTransportState)>> stateHandlers_;
  OVTransportState lastState_ = OVTransportState::resting;  // the one that was reported
  std::unique_ptr<platform::SleepInhibitor::Hold> awake_;
  std::function<void()> recording_;
  std::shared_ptr<OVAQPlayer> player_;
  std::vector<OVRecordingLoss> losses_;  // of the last recording that has ended
  std::uint64_t recordings_ = 0;

  // Replaced on the main thread; any thread reads it.
  platform::GuardedPointer<std::shared_ptr<OVAQRecorder>> recorder_;

  // Set by the writer's thread, read and cleared on main; orders no other data.
  std::atomic<bool> writtenSincePress_ = false;
  // errno of the last failed read since Play was pressed; written by any reader's thread.
  std::atomic<int> readError_ = 0;

  const std::shared_ptr<OVWriteFailures> writeFailures_;  // thread-safe; shared with a load
};
