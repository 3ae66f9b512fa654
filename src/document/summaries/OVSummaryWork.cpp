#include "document/summaries/OVSummaryWork.h"

#include <algorithm>
#include <new>

#include "platform/base/ApplicationServices.h"
#include "waveform/OVWaveformSummary.h"

std::uint64_t OVSummaryWork::epoch() const {
  const platform::MutexLock lock(mutex_);
  return epoch_;
}

void OVSummaryWork::beginEpoch() {
  const platform::MutexLock lock(mutex_);
  ++epoch_;
}

void OVSummaryWork::cancel() {
  cancelled_ = true;
}

bool OVSummaryWork::generate(OVWaveformSummary& summary, std::uint64_t epoch) {
  if (!begin(summary, epoch)) {
    return false;
  }
  try {
    summary.generate(&cancelled_);
  } catch (const std::bad_alloc&) {
    ConsoleLog("no memory to draw the waveform");
    summary.setShouldRegenerateWaveform(true);
    static_cast<void>(end(summary, epoch));
    return false;
  }
  return end(summary, epoch);
}

bool OVSummaryWork::isGenerating(const OVWaveformSummary& summary) const {
  const platform::MutexLock lock(mutex_);
  return std::find(underWay_.begin(), underWay_.end(), &summary) != underWay_.end();
}

bool OVSummaryWork::begin(const OVWaveformSummary& summary, std::uint64_t epoch) {
  const platform::MutexLock lock(mutex_);
  if (cancelled_ || epoch != epoch_) {
    return false;
  }
  underWay_.push_back(&summary);
  return true;
}

bool OVSummaryWork::end(const OVWaveformSummary& summary, std::uint64_t epoch) {
  const platform::MutexLock lock(mutex_);
  underWay_.erase(std::find(underWay_.begin(), underWay_.end(), &summary));
  return !cancelled_ && epoch == epoch_;
}
