#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>

#include <QPointer>

#include "document/summaries/OVSummaryWork.h"
#include "platform/base/GuardedPointer.h"
#include "platform/base/SerialQueue.h"
#include "waveform/views/OVWaveFormView.h"

class OVAudioBufferInterface;
class OVWaveformSummary;

/// The waveform summaries of one document: the one shown, the one kept for undo, and the background
/// work that keeps them up to date with the audio.
///
/// The kind follows the recording: growing while appending, fixed-size while overwriting. A summary
/// of the other kind is built on the global queue and installed when ready, one at a time. Recorded
/// audio is added on a serial queue, so that two additions never overlap. After an edit the whole
/// summary is generated on the global queue.
///
/// Undo and redo exchange the two. A restored summary is regenerated if it was kept during a
/// generation, was being generated or replaced when its audio was exchanged, or holds audio that
/// was recorded later.
///
/// Threads: main, unless stated otherwise. Real-time: not safe.
class OVDocumentSummaries : public std::enable_shared_from_this<OVDocumentSummaries> {
 public:
  OVDocumentSummaries();
  ~OVDocumentSummaries();
  OVDocumentSummaries(const OVDocumentSummaries&) = delete;
  OVDocumentSummaries& operator=(const OVDocumentSummaries&) = delete;

  /// The view that shows the summary, if there is one.
  void setView(const QPointer<OVWaveFormView>& view) { view_ = view; }

  /// Starts over with an empty growing summary of this audio.
  void setBuffer(std::shared_ptr<OVAudioBufferInterface> buffer);

  /// The summary of the document's audio; null before setBuffer().
  /// Threads: any.
  [[nodiscard]] std::shared_ptr<OVWaveformSummary> waveForm() const { return waveForm_.get(); }
  /// The summary that the next undo or redo restores; null before the first undoable step.
  [[nodiscard]] std::shared_ptr<OVWaveformSummary> prevWaveform() const { return kept_.summary; }
  /// A summary of the other kind is being built.
  [[nodiscard]] bool isChanging() const { return waveformIsChanging_; }

  /// A refresh of the present audio has not ended.
  [[nodiscard]] bool isRefreshing() const { return isRefreshing_; }

  /// Puts the summary into the view.
  void putIntoView();
  /// As putIntoView(), and redraws.
  void show();

  // Edits ---------------------------------------------------------------------------------------

  /// Before an undoable step: keeps a copy for its undo.
  void keep();
  /// Before an undo or redo changes the audio.
  void willExchange();
  /// After it: exchanges the summary and the kept one, and shows it. True if it must be
  /// generated from scratch.
  [[nodiscard]] bool exchange();
  /// The step that keep() was called for has failed: restores the summary kept before it.
  void forgetKept() { kept_ = formerKept_; }
  /// Call before a load: discards the work begun so far.
  void abandonWork();
  /// The document closes: running work ends soon, and none begins any more.
  void cancelWork() { work_->cancel(); }
  /// Brings the summary up to date in the background; with `regenerate` from scratch. `ended` is
  /// called on the main thread afterwards, also when memory ran out, but not if the audio has
  /// changed meanwhile.
  void refresh(bool regenerate, std::function<void()> ended);

  // Recording -----------------------------------------------------------------------------------

  /// A tick of the display loop while recording: chooses the kind of summary and adds the audio
  /// written since. `position`, in frames, is the end of the last chunk written, and `chunkFrames`
  /// the length of that chunk.
  void follow(std::uint64_t position, std::uint64_t chunkFrames);
  /// Adds the audio not yet summarised in the background, then redraws the view.
  void extend();
  /// Adds a written chunk that ends at the frame `position` to a fixed-size summary at once.
  /// Threads: the writer's.
  void chunkWritten(const float* chunk, std::uint32_t byteCount, std::uint64_t position);

 private:
  /// The summary that an undo or a redo restores.
  struct Kept {
    std::shared_ptr<OVWaveformSummary> summary;
    bool isStale = false;      // it does not describe the audio restored with it
    bool inARefresh = false;   // the step began before a refresh had ended
    std::uint64_t length = 0;  // of the audio when the step began, in frames
  };

  /// How a summary of the other kind is built while recording.
  struct Replacement {
    /// Runs in the background; returns null if an edit came first.
    std::function<std::shared_ptr<OVWaveformSummary>()> build;
    /// Chunks may be written where it has already read: it is generated again after install().
    bool mayMissChunks = false;
    /// It may hold audio being recorded, which its copy must not show after an undo.
    bool holdsNewAudio = false;
  };

  void choose(std::uint64_t position, std::uint64_t chunkFrames);
  void replace(Replacement replacement);
  void install(const Replacement& replacement, const std::shared_ptr<OVWaveformSummary>& summary,
               const std::shared_ptr<OVWaveformSummary>& copy);
  void refreshEnded(std::uint64_t epoch, const std::function<void()>& ended);

  // Fixed after construction.
  platform::SerialQueue fft_queue_{"fft"};
  const std::shared_ptr<OVSummaryWork> work_;

  // Replaced on the main thread; any thread reads it.
  platform::GuardedPointer<std::shared_ptr<OVWaveformSummary>> waveForm_;

  // Main thread only.
  QPointer<OVWaveFormView> view_;
  std::shared_ptr<OVAudioBufferInterface> buffer_;
  Kept kept_;
  Kept formerKept_;              // before the last step
  bool leavingIsStale_ = false;  // the summary about to be exchanged for the kept one is stale
  bool isRefreshing_ = false;
  bool waveformIsChanging_ = false;
  // At most one extension is queued for each summary and epoch. The flag is set on the main thread
  // and cleared by the queued block before it reads the audio.
  std::shared_ptr<std::atomic<bool>> extensionQueued_;
};
