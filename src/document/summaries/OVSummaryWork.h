#pragma once

#include <atomic>
#include <cstdint>
#include <vector>

#include "platform/base/Mutex.h"

class OVWaveformSummary;

/// Separates a document's background summary generations from its edits.
///
/// Every change of the audio begins a new epoch. A generation requested in an earlier epoch and not
/// yet begun never begins, since it would read the wrong audio. A running generation continues and
/// may mix old and new audio; call isGenerating() after beginEpoch() and before changing the audio.
///
/// Threads: any, unless stated otherwise. Real-time: not safe.
class OVSummaryWork {
 public:
  [[nodiscard]] std::uint64_t epoch() const;
  /// Threads: main.
  void beginEpoch();

  /// Permanent: no generation begins any more, and a running one ends after its current batch.
  void cancel();
  /// Set by cancel(); for generations run elsewhere.
  [[nodiscard]] const std::atomic<bool>& cancelled() const { return cancelled_; }

  /// Runs the summary's generate() unless `epoch` is over. True if `epoch` is still current at the
  /// end: the summary describes the present audio. False also if memory ran out; the summary then
  /// requests regeneration.
  [[nodiscard]] bool generate(OVWaveformSummary& summary, std::uint64_t epoch);

  /// A generation of this summary is under way, whatever its epoch.
  [[nodiscard]] bool isGenerating(const OVWaveformSummary& summary) const;

 private:
  [[nodiscard]] bool begin(const OVWaveformSummary& summary, std::uint64_t epoch);
  [[nodiscard]] bool end(const OVWaveformSummary& summary, std::uint64_t epoch);

  std::atomic<bool> cancelled_ = false;  // only ever becomes true, by any thread

  mutable platform::Mutex mutex_;  // never held during a generation
  std::uint64_t epoch_ GUARDED_BY(mutex_) = 0;
  std::vector<const OVWaveformSummary*> underWay_ GUARDED_BY(mutex_);  // one per generation
};
