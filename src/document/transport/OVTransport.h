#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "audio/OVAQPlayerDelegate.h"
#include "document/transport/OVWriteFailures.h"
#include "platform/base/GuardedPointer.h"

class OVAQRecorder;
class OVDocumentAudio;
class OVDocumentLife;
class OVDocumentSummaries;
class OVEditHistory;
class OVFileOperation;
class OVFramePositions;

/// What the transport is doing. Paused and stopped differ in the positions alone.
enum class OVTransportState { resting, recording, playing };

/// Starts and ends recording and playing, and moves the two positions. Owns the recorder, whose
/// input is live from the start, and the player, which is there only while it plays. Knows no view.
///
/// Threads: main, except where said. Real-time: not safe.
class OVTransport {
 public:
  /// The parts of the document that it works on; they outlive it.
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

  /// Who hears of the playback's advance and end, and what is called when recording or playing has
  /// begun or ended.
  void setDelegate(std::weak_ptr<OVAQPlayerDelegate> delegate) { delegate_ = std::move(delegate); }
  void setChangeHandler(std::function<void()> handler) { changed_ = std::move(handler); }
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

  /// Level of each channel of what plays or, first, of what is recorded; none at rest.
  [[nodiscard]] std::optional<std::vector<float>> powerLevels(OVTransportState first) const;

  // Commands ------------------------------------------------------------------------------------

  /// Nothing while a file operation runs or where there is no input device, which is told.
  void record();
  /// Nothing while a file operation runs or where there is no output device, which is told.
  void play();
  /// The way out of recording and playing. The recorder is replaced: none is used again after a
  /// pause.
  void pause();
  void pauseIfRunning();
  /// As pause(), then the marker at the start and the recording position at the end.
  void stop();
  /// These move the positions of what runs, too.
  void toStart();
  void toEnd();
  void moveTo(std::uint64_t frames);

  /// Sets the recording position where a cut or a load leaves it; the marker is set apart.
  void setRecordingPosition(std::uint64_t frames);
  /// Sets the marker and what the player reads next.
  void setPlaybackPosition(std::uint64_t frames);
  /// An undo may have left it past the end: a recording or an import there would leave a hole.
  void bringRecordingPositionInside();

  // Set-up and tear-down ------------------------------------------------------------------------

  /// Makes the recorder of a new buffer.
  void bufferChanged();
  /// Before the buffer is exchanged.
  void prepareForNewBuffer();
  /// The window has closed: nothing is reported any more.
  void close();

  // Reports -------------------------------------------------------------------------------------

  /// The player's end, or null for one that nobody tells apart.
  void playbackEnded(const OVAQPlayer* player);
  /// The recorder while it records, otherwise null.
  /// Threads: any.
  [[nodiscard]] std::shared_ptr<OVAQRecorder> runningRecorder() const;
  /// It has written a chunk that ends at this frame.
  /// Threads: the writer's.
  void recordedUpTo(std::uint64_t frames);
  /// The storage failed with this errno.
  /// Threads: the writer's; the reader's.
  void failedToWrite(int error);
  void failedToRead(int error) { readError_ = error; }

  [[nodiscard]] std::shared_ptr<OVWriteFailures> writeFailures() const { return writeFailures_; }

 private:
  std::shared_ptr<OVAQRecorder> makeRecorder();
  void replaceRecorder();
  void endRecording();
  void endPlaying();
  void inputFailed(const std::weak_ptr<OVAQRecorder>& recorder);
  void writingFailed(const OVWriteFailures::Failure& failure);
  void dropLostEnd(std::uint64_t atByteOffset, std::uint32_t withSize);
  void changed() const;

  const Parts parts_;

  // Main thread only.
  std::weak_ptr<OVAQPlayerDelegate> delegate_;
  std::function<void()> changed_;
  std::function<void()> cut_;
  std::shared_ptr<OVAQPlayer> player_;
  std::uint64_t recordingRevision_ = 0;  // of the history, with the last recording's step begun

  // Replaced on the main thread; any thread reads it.
  platform::GuardedPointer<std::shared_ptr<OVAQRecorder>> recorder_;

  // The writer's thread sets it, the main thread reads and clears it: it stands for itself.
  std::atomic<bool> writtenSincePress_ = false;
  // errno of the last read that failed since Play was pressed; any reader's thread writes.
  std::atomic<int> readError_ = 0;

  const std::shared_ptr<OVWriteFailures> writeFailures_;  // guards itself; a load shares it
};
