#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <utility>

#include <QPointer>

#include "platform/mainloop/Timer.h"
#include "waveform/views/OVWaveFormView.h"

class OVClipping;
class OVDocumentAudio;
class OVDocumentLife;
class OVDocumentSummaries;
class OVFileOperation;
class OVFramePositions;
class OVMarkerAndTime;
class OVProgressDisplay;
class OVRecordingPlace;
class OVTransport;

/// Updates the displays 25 times a second, and rebuilds them after an edit.
///
/// Threads: main, unless stated otherwise. Real-time: not safe.
class OVDisplayLoop {
 public:
  /// The parts of the document that it uses; they outlive it.
  struct Parts {
    const OVDocumentLife& life;
    const OVDocumentAudio& audio;
    OVFramePositions& positions;
    const OVFileOperation& operation;
    OVDocumentSummaries& summaries;
    const OVTransport& transport;
    OVMarkerAndTime& markerAndTime;
    OVProgressDisplay& progress;
    OVRecordingPlace& recordingPlace;
    OVClipping& clipping;
  };

  explicit OVDisplayLoop(const Parts& parts) : parts_(parts) {}

  void setView(const QPointer<OVWaveFormView>& view) { wfView_ = view; }

  /// Called at every tick, also without a window.
  void setTickHandler(std::function<void()> handler) { ticked_ = std::move(handler); }

  void start();
  void end() { pollTimer_.reset(); }
  [[nodiscard]] bool isRunning() const { return pollTimer_ != nullptr; }

  /// Tick of the timer.
  void tick();
  /// Rebuilds the waveform in the background, then all displays; with `regenerate` from scratch.
  void refresh(bool regenerate);

  /// Ends the progress of a file operation: hides the bar, or shows the refresh of an edit if one
  /// is still running.
  void endProgress();

  /// The waveform of a file is being generated; the time display shows how far.
  [[nodiscard]] bool isRenderingWaveform() const { return isRenderingWaveform_; }
  void setIsRenderingWaveform(bool rendering) { isRenderingWaveform_ = rendering; }

  /// A recorded chunk of `frames` frames was written.
  /// Threads: the writer's.
  void chunkWritten(std::uint64_t frames) { _lastNumberOfFramesWritten = frames; }

 private:
  void updateRendering();
  void updatePlayback();
  void updateRecording();
  void show(std::uint64_t markerFrame, std::uint64_t playback);
  void refreshed();

  const Parts parts_;
  QPointer<OVWaveFormView> wfView_;
  std::function<void()> ticked_;
  std::unique_ptr<platform::Timer> pollTimer_;
  bool isRenderingWaveform_ = false;
  // Written by the writer's thread, read on main; orders no other data.
  std::atomic<std::uint64_t> _lastNumberOfFramesWritten = 0;
};
