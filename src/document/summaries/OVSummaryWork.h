#pragma once

#include <atomic>
#include <cstdint>
#include <vector>

#include "platform/base/Mutex.h"

class OVWaveformSummary;

/// Keeps the generations that a document has in the background apart from its edits.
///
/// An epoch ends with every change of the audio. A generation that was asked for in an epoch and
/// has not begun when it ends never begins: it would read other audio than it was meant for. One
/// that is under way then goes on, and what it yields is a mixture: who keeps the summary has to
/// ask for that when the epoch has begun and the audio has not changed yet.
///
/// Threads: any, except where said. Real-time: not safe.
class OVSummaryWork {
 public:
  [[nodiscard]] std::uint64_t epoch() const;
  /// Threads: main.
  void beginEpoch();

  /// For good: nothing begins any more, and what is under way ends with the batch that it is at.
  void cancel();
  /// Set by cancel(); for generations that this does not run.
  [[nodiscard]] const std::atomic<bool>& cancelled() const { return cancelled_; }

  /// Runs the summary's generate() unless `epoch` is over. True if it was not over at the end
  /// either: the summary is one of the present audio. False also when there was no memory for it;
  /// the summary then asks to be made again.
  [[nodiscard]] bool generate(OVWaveformSummary& summary, std::uint64_t epoch);

  /// A generation of this summary is under way, whatever its epoch.
  [[nodiscard]] bool isGenerating(const OVWaveformSummary& summary) const;

 private:
  [[nodiscard]] bool begin(const OVWaveformSummary& summary, std::uint64_t epoch);
  [[nodiscard]] bool end(const OVWaveformSummary& summary, std::uint64_t epoch);

  std::atomic<bool> cancelled_ = false;  // only ever becomes true, by any thread

  mutable platform::Mutex mutex_;  // never held during a generation
  std::uint64_t epoch_ GUARDED_BY(mutex_) = 0;
  std::vector<const OVWaveformSummary*> underWay_ GUARDED_BY(mutex_);  // one entry a generation
};
