#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <vector>

#include "platform/base/ThreadSafety.h"

class OVAudioBufferInterface;

/// The common interface of both waveform summaries: a short list of elements, each the difference
/// between the largest and the smallest sample magnitude over a stretch of the audio, 0 to 1 for
/// full-scale audio.
///
/// Two locks. lock() and unlock() use the one that generate() holds for its whole run, so that
/// generations never overlap. A separate short lock guards the elements, so that a view never waits
/// for a generation or reads a half-written element.
///
/// Threads: any, unless noted. Real-time: not safe.
class CAPABILITY("waveform summary") OVWaveformSummary {
 public:
  virtual ~OVWaveformSummary() = default;

  /// Brings the summary up to date with the audio under the lock.
  ///
  /// @param cancelled once set by any thread, the generation stops after the current batch and
  ///                   leaves the summary unfinished; the next generation completes it. May be
  ///                   null; must outlive the call
  virtual void generate(const std::atomic<bool>* cancelled) = 0;
  /// The same without taking the lock: the caller holds it, or no other thread generates.
  virtual void generateNoLock(const std::atomic<bool>* cancelled) = 0;
  /// The same without cancellation.
  void generate() { generate(nullptr); }
  void generateNoLock() { generateNoLock(nullptr); }
  /// Makes the next generate() start from the beginning of the audio.
  virtual void setShouldRegenerateWaveform(bool should) = 0;
  /// Whether a generation from scratch is running.
  [[nodiscard]] virtual bool isRegenerating() const = 0;
  virtual void reset() = 0;

  /// Frames of audio summarised so far.
  [[nodiscard]] virtual std::uint64_t readerPos() const = 0;
  /// Number of elements to draw.
  [[nodiscard]] virtual std::uint64_t elementCount() const = 0;
  /// The element array; use it only while no thread generates.
  [[nodiscard]] virtual const float* data() const = 0;
  /// Copies the current elements into `elements`, resized to their number; waits only for the short
  /// lock. For drawing.
  virtual void copyElementsInto(std::vector<float>& elements) const = 0;
  /// The element at a fraction of the whole, clamped to 0..1 and to the last element; 0 for an
  /// empty summary.
  [[nodiscard]] virtual double powerAtPosition(double fraction) const = 0;
  [[nodiscard]] virtual double maxAmplitude() const = 0;

  /// An independent summary of the same audio with the same state; waits only for the short lock.
  [[nodiscard]] virtual std::shared_ptr<OVWaveformSummary> copy() const = 0;

  [[nodiscard]] virtual std::shared_ptr<OVAudioBufferInterface> audioBuffer() const = 0;

  virtual void lock() ACQUIRE() = 0;
  virtual void unlock() RELEASE() = 0;

 protected:
  [[nodiscard]] static bool isSet(const std::atomic<bool>* cancelled) {
    return cancelled != nullptr && *cancelled;
  }
};
