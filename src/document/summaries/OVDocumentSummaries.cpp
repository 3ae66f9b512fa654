#include "document/summaries/OVDocumentSummaries.h"

#include <new>
#include <utility>

#include "platform/base/AudioTypes.h"
#include "platform/mainloop/MainQueue.h"
#include "platform/views/ViewRedraw.h"
#include "storage/OVAudioBufferInterface.h"
#include "waveform/OVDynamicWaveForm.h"
#include "waveform/OVStaticWaveform.h"

namespace {

using Build = std::function<std::shared_ptr<OVWaveformSummary>()>;

/// The summary and a copy of it; neither if memory runs out.
std::pair<std::shared_ptr<OVWaveformSummary>, std::shared_ptr<OVWaveformSummary>> buildWithMemory(
    const Build& build) try {
  const auto summary = build();
  return {summary, summary ? summary->copy() : nullptr};
} catch (const std::bad_alloc&) {
  return {};
}

// Recordings longer than this many seconds, which means all, use a fixed-size summary while they
// are overwritten.
constexpr double kStaticSummaryThreshold = 0.0;

}  // namespace

OVDocumentSummaries::OVDocumentSummaries()
    : work_(std::make_shared<OVSummaryWork>()),
      extensionQueued_(std::make_shared<std::atomic<bool>>(false)) {}

OVDocumentSummaries::~OVDocumentSummaries() = default;

void OVDocumentSummaries::setBuffer(std::shared_ptr<OVAudioBufferInterface> buffer) {
  abandonWork();
  buffer_ = std::move(buffer);
  waveForm_.set(OVDynamicWaveForm::initWithBuffer(buffer_));
  putIntoView();
}

void OVDocumentSummaries::putIntoView() {
  if (view_) {
    view_->setWaveForm(waveForm());
  }
}

void OVDocumentSummaries::show() {
  putIntoView();
  if (view_) {
    view_->setShouldRedrawWaveform(true);
    requestRedraw(view_);
  }
}

// Edits -----------------------------------------------------------------------------------------

void OVDocumentSummaries::keep() {
  const std::uint64_t length = buffer_->bufferSizeInFrames();
  formerKept_ = std::exchange(
      kept_, {.summary = waveForm()->copy(), .inARefresh = isRefreshing_, .length = length});
  if (waveForm()->readerPos() > length) {
    // A redo may leave it ahead of the audio: new audio would then not be added.
    waveForm()->setShouldRegenerateWaveform(true);
  }
}

void OVDocumentSummaries::willExchange() {
  abandonWork();  // first: no generation begins from here on
  // A running generation reads on in the exchanged audio; a summary being built is not installed.
  leavingIsStale_ = work_->isGenerating(*waveForm()) || waveformIsChanging_;
}

bool OVDocumentSummaries::exchange() {
  const auto shown = waveForm();
  waveForm_.set(std::exchange(kept_.summary, shown));
  show();
  return std::exchange(kept_.isStale, leavingIsStale_) || waveForm()->isRegenerating();
}

void OVDocumentSummaries::abandonWork() {
  work_->beginEpoch();
  isRefreshing_ = false;
  extensionQueued_ = std::make_shared<std::atomic<bool>>(false);
}

void OVDocumentSummaries::refresh(bool regenerate, std::function<void()> ended) {
  abandonWork();
  isRefreshing_ = true;
  if (regenerate) {
    // At once: a copy made before the task begins needs the flag, too.
    waveForm()->setShouldRegenerateWaveform(true);
  }
  platform::globalQueue().async([self = weak_from_this(), summary = waveForm(), work = work_,
                                 epoch = work_->epoch(), ended = std::move(ended)] {
    static_cast<void>(work->generate(*summary, epoch));  // the main thread checks the epoch
    platform::mainQueue().async([self, epoch, ended] {
      if (const auto summaries = self.lock()) {
        summaries->refreshEnded(epoch, ended);
      }
    });
  });
}

void OVDocumentSummaries::refreshEnded(std::uint64_t epoch, const std::function<void()>& ended) {
  if (epoch == work_->epoch() && !work_->cancelled()) {  // a later change has its own refresh
    isRefreshing_ = false;
    ended();
  }
}

// Recording -------------------------------------------------------------------------------------

void OVDocumentSummaries::follow(std::uint64_t position, std::uint64_t chunkFrames) {
  if (!waveformIsChanging_) {
    choose(position, chunkFrames);
  }
  if (waveForm()->isRegenerating()) {
    requestRedraw(view_);
  } else {
    extend();
  }
}

// A growing summary while appending, a fixed-size one while overwriting.
void OVDocumentSummaries::choose(std::uint64_t position, std::uint64_t chunkFrames) {
  const std::uint64_t size = buffer_->bufferSizeInFrames();
  const auto dynamic = std::dynamic_pointer_cast<OVDynamicWaveForm>(waveForm());
  if (position >= size) {
    if (!dynamic) {
      replace({.build =
                   [buffer = buffer_, work = work_] {
                     auto summary = OVDynamicWaveForm::initWithBuffer(buffer);
                     summary->generate(&work->cancelled());
                     return summary;
                   },
               .holdsNewAudio = true});
    }
    return;
  }
  const double threshold = kStaticSummaryThreshold * buffer_->format().mSampleRate;
  if (static_cast<double>(size) > threshold && dynamic && position + chunkFrames < size) {
    // A summary still being generated is awaited; it also includes audio recorded meanwhile.
    const bool unfinished = isRefreshing_ || kept_.inARefresh;
    replace({.build = [dynamic, work = work_,
                       epoch = work_->epoch()]() -> std::shared_ptr<OVWaveformSummary> {
               return work->generate(*dynamic, epoch)
                          ? OVStaticWaveform::initWithDynamicWaveform(dynamic)
                          : nullptr;
             },
             .mayMissChunks = unfinished,
             // Also if the recording went past the end before it was moved back.
             .holdsNewAudio = unfinished || size > kept_.length});
  }
}

void OVDocumentSummaries::replace(Replacement replacement) {
  waveformIsChanging_ = true;
  platform::globalQueue().async(
      [self = weak_from_this(), replacement = std::move(replacement), epoch = work_->epoch()] {
        auto [summary, copy] = buildWithMemory(replacement.build);
        platform::mainQueue().async(
            [self, replacement, epoch, summary = std::move(summary), copy = std::move(copy)] {
              if (const auto summaries = self.lock()) {
                summaries->waveformIsChanging_ = false;
                // Otherwise an edit or undo came first: this is a summary of older audio.
                if (summary && epoch == summaries->work_->epoch()) {
                  summaries->install(replacement, summary, copy);
                }
              }
            });
      });
}

void OVDocumentSummaries::install(const Replacement& replacement,
                                  const std::shared_ptr<OVWaveformSummary>& summary,
                                  const std::shared_ptr<OVWaveformSummary>& copy) {
  waveForm_.set(summary);
  putIntoView();
  kept_.summary = copy;
  kept_.isStale = kept_.isStale || replacement.holdsNewAudio;
  extensionQueued_ = std::make_shared<std::atomic<bool>>(false);
  if (replacement.mayMissChunks) {
    summary->setShouldRegenerateWaveform(true);
    extend();
  }
}

void OVDocumentSummaries::extend() {
  if (extensionQueued_->exchange(true)) {
    return;
  }
  fft_queue_.async([view = view_, summary = waveForm(), queued = extensionQueued_, work = work_,
                    epoch = work_->epoch()] {
    *queued = false;  // audio written from here on needs another extension
    if (work->generate(*summary, epoch)) {
      platform::mainQueue().async([view] {
        if (view) {
          view->setShouldRedrawWaveform(true);
          requestRedraw(view);
        }
      });
    }
  });
}

void OVDocumentSummaries::chunkWritten(const float* chunk, std::uint32_t byteCount,
                                       std::uint64_t position) {
  const auto summary = std::dynamic_pointer_cast<OVStaticWaveform>(waveForm());
  if (!summary) {
    return;
  }
  const auto buffer = summary->audioBuffer();
  const std::uint64_t frames = byteCount / buffer->format().mBytesPerFrame;
  const std::uint64_t start = position >= 2 * frames ? position - 2 * frames : 0;
  const auto length = static_cast<double>(buffer->bufferFillSizeInFrames());
  summary->updateWithDataChunk(chunk, byteCount / sizeof(float),
                               static_cast<double>(start) / length);
}
