#pragma once

#include <atomic>
#include <cstdint>
#include <limits>
#include <optional>

#include <QPointer>

#include "controls/buttons/OVClippingLamp.h"

class OVDocumentAudio;
class OVDocumentLife;
class OVRecorderWindow;

/// Watches the samples of a recording for clipping, and lights the clipping lamp, which may be
/// missing. The lamp stays until the next recording begins or the user turns it off.
///
/// Threads: main, unless stated otherwise. Real-time: not safe.
class OVClipping {
 public:
  /// From this magnitude on a sample counts as clipped: the largest of 16 bits.
  static constexpr float kClipped = 32767.0F / 32768.0F;

  /// Parts of the document; they outlive it.
  OVClipping(const OVDocumentLife& life, const OVDocumentAudio& audio)
      : life_(life), audio_(audio) {}

  void connect(OVRecorderWindow* window);

  /// Forgets the former recording, and turns the lamp off. Before the first chunk of a new one.
  void begin();
  /// A recorded chunk of floats was written at this place. Takes no lock for its samples.
  /// Threads: the writer's.
  void chunkWritten(const void* data, std::uint64_t atByteOffset, std::uint32_t withSize);
  /// Lights the lamp if a sample has been clipped since the last call; otherwise draws nothing.
  void update();

  /// The frame of the recording's first clipped sample, in either channel; none if there was none.
  /// Threads: any.
  [[nodiscard]] std::optional<std::uint64_t> firstFrame() const;

 private:
  static constexpr std::uint64_t kNone = std::numeric_limits<std::uint64_t>::max();

  const OVDocumentLife& life_;
  const OVDocumentAudio& audio_;
  QPointer<OVClippingLamp> lamp_;
  std::optional<std::uint64_t> shown_;  // the frame that the lamp was lit for

  // Written by the writer's thread, and by main before a recording. Read by itself, orders no other
  // data: relaxed order.
  std::atomic<std::uint64_t> firstFrame_ = kNone;
};
