#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <vector>

#include "platform/base/Mutex.h"
#include "platform/sound/realtime/RealTimeGracePeriod.h"

namespace platform {

/// Takes captured samples on the device's real-time thread; implemented by InputQueueCore.
class InputSink {
 public:
  virtual ~InputSink() = default;

  /// Threads: the device's real-time thread.
  /// Real-time: must be safe.
  virtual void captured(const float* samples, std::uint32_t frames) noexcept = 0;

  /// `frames` frames were lost before they reached the program; at the latest before the last
  /// `capturedSince` ones that did.
  ///
  /// Threads: the device's real-time thread.
  /// Real-time: must be safe.
  virtual void skipped(std::uint64_t frames, std::uint64_t capturedSince) noexcept = 0;
};

/// Passes every captured chunk to all sinks of a set that may change while the device runs.
///
/// The real-time thread reads an immutable list through an atomic pointer; add() and remove()
/// publish a new list and free the old one once the real-time thread cannot hold it any more.
///
/// Threads: construction and destruction while no other thread uses it.
class InputFanOut {
 public:
  InputFanOut();
  ~InputFanOut();
  InputFanOut(const InputFanOut&) = delete;
  InputFanOut& operator=(const InputFanOut&) = delete;

  /// The sink gets every chunk from the next one on.
  ///
  /// Threads: any but the real-time thread.
  /// Real-time: not safe.
  void add(InputSink& sink) EXCLUDES(mutex_);

  /// After it returns the sink is not called. No effect for a sink not in the set.
  ///
  /// Threads: any but the real-time thread.
  /// Real-time: not safe.
  void remove(InputSink& sink) EXCLUDES(mutex_);

  /// Passes `frames` interleaved stereo frames to every sink.
  ///
  /// Threads: the device's real-time thread.
  /// Real-time: safe.
  void distribute(const float* samples, std::uint32_t frames) noexcept;

  /// Reports lost frames to every sink; see InputSink::skipped().
  ///
  /// Threads: the device's real-time thread.
  /// Real-time: safe.
  void skip(std::uint64_t frames, std::uint64_t capturedSince) noexcept;

 private:
  using Sinks = std::vector<InputSink*>;

  void publish(std::unique_ptr<const Sinks> sinks) REQUIRES(mutex_);

  RealTimeGracePeriod section_;

  // Read by the real-time thread. Invariant: points to *owned_, or, within publish(), to the list
  // that replaces it. Only writer: publish().
  std::atomic<const Sinks*> current_;

  Mutex mutex_;
  std::unique_ptr<const Sinks> owned_ GUARDED_BY(mutex_);
};

}  // namespace platform
