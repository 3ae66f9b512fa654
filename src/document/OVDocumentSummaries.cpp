#include "document/OVDocumentSummaries.h"

#include <utility>

#include "document/ViewRedraw.h"
#include "platform/AudioTypes.h"
#include "platform/Dispatch.h"
#include "storage/OVAudioBufferInterface.h"
#include "waveform/OVDynamicWaveForm.h"
#include "waveform/OVStaticWaveform.h"

namespace {

// Recordings longer than this many seconds are drawn from a static summary when they are recorded
// over: all of them.
constexpr double kStaticSummaryThreshold = 0.0;

}  // namespace

OVDocumentSummaries::OVDocumentSummaries(std::function<void()> refreshed)
    : refreshed_(std::move(refreshed)),
      extensionQueued_(std::make_shared<std::atomic<bool>>(false)) {}

OVDocumentSummaries::~OVDocumentSummaries() = default;

void OVDocumentSummaries::setBuffer(std::shared_ptr<OVAudioBufferInterface> buffer) {
  ++epoch_;
  buffer_ = std::move(buffer);
  setWaveForm(OVDynamicWaveForm::initWithBuffer(buffer_));
  if (view_) {
    view_->setWaveForm(waveForm_);
  }
}

std::shared_ptr<OVWaveformSummary> OVDocumentSummaries::waveForm() const {
  const std::lock_guard lock(waveFormLock_);
  return waveForm_;
}

// The former summary leaves with the parameter, after the lock.
void OVDocumentSummaries::setWaveForm(std::shared_ptr<OVWaveformSummary> waveForm) {
  const std::lock_guard lock(waveFormLock_);
  waveForm_.swap(waveForm);
}

void OVDocumentSummaries::show() {
  if (view_) {
    view_->setWaveForm(waveForm_);
    view_->setShouldRedrawWaveform(true);
    requestRedraw(view_);
  }
}

// Edits -----------------------------------------------------------------------------------------

void OVDocumentSummaries::keep() {
  prevWaveform_ = waveForm_->copy();
}

void OVDocumentSummaries::exchange() {
  const auto shown = waveForm_;
  setWaveForm(prevWaveform_);
  prevWaveform_ = shown;
  show();
}

void OVDocumentSummaries::takeBack() {
  setWaveForm(prevWaveform_);
  ++epoch_;
}

void OVDocumentSummaries::refresh(bool regenerate) {
  ++epoch_;
  if (regenerate) {
    // At once: a copy that is taken before the task begins has to know it, too.
    waveForm_->setShouldRegenerateWaveform(true);
  }
  platform::globalQueue().async([self = weak_from_this(), summary = waveForm_, epoch = epoch_] {
    summary->generate();
    platform::mainQueue().async([self, epoch] {
      if (const auto summaries = self.lock()) {
        summaries->refreshEnded(epoch);
      }
    });
  });
}

void OVDocumentSummaries::refreshEnded(std::uint64_t epoch) {
  if (epoch == epoch_) {  // what came after it shows itself
    refreshed_();
  }
}

// Recording -------------------------------------------------------------------------------------

void OVDocumentSummaries::follow(std::uint64_t position, std::uint64_t chunkFrames) {
  if (!waveformIsChanging_) {
    choose(position, chunkFrames);
  }
  if (waveForm_->isRegenerating()) {
    requestRedraw(view_);
  } else {
    extend();
  }
}

// A growing summary while appending, one of fixed size while recording over what is there.
void OVDocumentSummaries::choose(std::uint64_t position, std::uint64_t chunkFrames) {
  const std::uint64_t size = buffer_->bufferSizeInFrames();
  const auto dynamic = std::dynamic_pointer_cast<OVDynamicWaveForm>(waveForm_);
  if (position >= size) {
    if (!dynamic) {
      replace([buffer = buffer_]() -> std::shared_ptr<OVWaveformSummary> {
        auto summary = OVDynamicWaveForm::initWithBuffer(buffer);
        summary->generate();
        return summary;
      });
    }
    return;
  }
  const double threshold = kStaticSummaryThreshold * buffer_->format().mSampleRate;
  if (static_cast<double>(size) > threshold && dynamic && position + chunkFrames < size) {
    replace([dynamic]() -> std::shared_ptr<OVWaveformSummary> {
      return OVStaticWaveform::initWithDynamicWaveform(dynamic);
    });
  }
}

void OVDocumentSummaries::replace(Build build) {
  waveformIsChanging_ = true;
  platform::globalQueue().async(
      [self = weak_from_this(), build = std::move(build), epoch = epoch_] {
        const auto summary = build();
        const std::shared_ptr<OVWaveformSummary> copy = summary->copy();
        platform::mainQueue().async([self, summary, copy, epoch] {
          if (const auto summaries = self.lock()) {
            summaries->install(summary, copy, epoch);
          }
        });
      });
}

void OVDocumentSummaries::install(const std::shared_ptr<OVWaveformSummary>& summary,
                                  const std::shared_ptr<OVWaveformSummary>& copy,
                                  std::uint64_t epoch) {
  waveformIsChanging_ = false;
  if (epoch != epoch_) {
    return;  // an edit or an undo came first: this is a summary of older audio
  }
  if (view_) {
    view_->setWaveForm(summary);
  }
  setWaveForm(summary);
  prevWaveform_ = copy;
}

void OVDocumentSummaries::extend() {
  if (extensionQueued_->exchange(true)) {
    return;
  }
  fft_queue_.async([view = view_, summary = waveForm_, queued = extensionQueued_] {
    *queued = false;  // what is written from here on asks anew
    summary->generate();
    platform::mainQueue().async([view] {
      if (view) {
        view->setShouldRedrawWaveform(true);
        requestRedraw(view);
      }
    });
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
