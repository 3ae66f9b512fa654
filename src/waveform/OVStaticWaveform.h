#pragma once

#include <array>
#include <atomic>
#include <bitset>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "platform/base/Mutex.h"
#include "waveform/OVWaveformSummary.h"
#include "waveform/SummaryReader.h"

class OVDynamicWaveForm;

/// A summary of fixed size: 1024 elements spread evenly over the whole audio.
///
/// For audio of known length: read from the buffer, stretched from a dynamic summary, or patched
/// chunk by chunk as audio is written. An element's value is the spread of magnitudes over the same
/// samples of each block as in the dynamic summary. Elements never written are 0.0.
///
/// A generation reads and examines samples without the short lock and publishes a batch of elements
/// at a time under it. Chunks that arrive meanwhile show at once. The generation does not overwrite
/// their elements, since it may have read older audio there.
///
/// Threads: any. The generation lock is held for the whole of regenerate(); every other operation
/// waits for the short lock only. Real-time: not safe.
class OVStaticWaveform final : public OVWaveformSummary {
  struct Passkey {
    explicit Passkey() = default;
  };
  struct Elements;

 public:
  static constexpr std::uint64_t kElementCount = 1024;

  /// Summarises the whole buffer before it returns. Without a buffer all elements are 0.0.
  [[nodiscard]] static std::shared_ptr<OVStaticWaveform> initWithBuffer(
      std::shared_ptr<OVAudioBufferInterface> audioBuffer);

  /// Spreads the finished elements of a dynamic summary, n of them, over the elements: its element
  /// k goes to slot k × 1024 / n, rounded down. Nothing is averaged or interpolated; slots between
  /// stay 0.0; the gaps are intended. The result keeps the dynamic summary and shares its audio
  /// buffer.
  [[nodiscard]] static std::shared_ptr<OVStaticWaveform> initWithDynamicWaveform(
      std::shared_ptr<OVDynamicWaveForm> dynamicWaveform);

  OVStaticWaveform(Passkey, std::shared_ptr<OVAudioBufferInterface> audioBuffer,
                   std::shared_ptr<OVDynamicWaveForm> dynamicWaveform, const Elements& elements);
  OVStaticWaveform(const OVStaticWaveform&) = delete;
  OVStaticWaveform& operator=(const OVStaticWaveform&) = delete;

  /// Summarises the whole buffer: each element covers the buffer's length divided by 1024, rounded
  /// down. Frames left over by the division are not summarised. With fewer than 1024 frames, or
  /// after a hole, elements stay unchanged. A cancelled generation requests another.
  void regenerate(const std::atomic<bool>* cancelled = nullptr);

  /// regenerate() if shouldRegenerateWaveform() is set, else nothing.
  using OVWaveformSummary::generate;
  using OVWaveformSummary::generateNoLock;
  void generate(const std::atomic<bool>* cancelled) override;
  void generateNoLock(const std::atomic<bool>* cancelled) override;
  void setShouldRegenerateWaveform(bool should) override;
  [[nodiscard]] bool shouldRegenerateWaveform() const;
  [[nodiscard]] bool isRegenerating() const override;

  /// Overwrites the elements that a chunk of audio covers.
  ///
  /// `ofSize` counts floats, while the length of the buffer counts frames, so a stereo chunk
  /// covers twice its share; callers place it accordingly. `atPosition` is a fraction of the
  /// buffer: below 0 counts as 0, at 1 and beyond nothing is covered. An empty buffer, or a chunk
  /// that has fewer floats than it would have elements, changes nothing.
  void updateWithDataChunk(const float* dataChunk, std::uint64_t ofSize, double atPosition);

  /// Does nothing: no state is kept between generations.
  void reset() override;

  [[nodiscard]] std::uint64_t readerPos() const override;
  /// Always 1024.
  [[nodiscard]] std::uint64_t elementCount() const override;
  /// Elements that a generation produced, minus the last one if it was complete; for a stretched
  /// summary, those of its source.
  [[nodiscard]] std::uint64_t producedElementCount() const;
  /// The 1024 elements; use them only while no thread changes them.
  [[nodiscard]] const float* data() const override NO_THREAD_SAFETY_ANALYSIS;
  void copyElementsInto(std::vector<float>& elements) const override;
  [[nodiscard]] double powerAtPosition(double fraction) const override;
  /// Always 1.6.
  [[nodiscard]] double maxAmplitude() const override;

  /// The copy has the elements, counters and flags of one moment, the audio buffer and the dynamic
  /// summary, if any.
  [[nodiscard]] std::shared_ptr<OVWaveformSummary> copy() const override;

  [[nodiscard]] std::shared_ptr<OVAudioBufferInterface> audioBuffer() const override;

  void lock() override ACQUIRE();
  void unlock() override RELEASE();

 private:
  using Slots = std::bitset<kElementCount>;

  /// A chunk's effect on the elements, computed before the short lock is taken.
  struct Patch {
    std::uint64_t firstSlot = 0;         ///< clearing starts here, at most kElementCount
    std::uint64_t clearedByteCount = 0;  ///< not always whole elements; ends at the last one
    Slots stored;                        ///< slots with a new value
    std::array<float, kElementCount> values = {};
  };

  struct Elements {
    std::array<float, kElementCount> buffer = {};
    std::uint64_t elementCount = 0;
    std::uint64_t reader_pos = 0;  ///< byte offset up to which a generation has read
    std::uint64_t buffer_pos = 0;  ///< write index of a generation
  };

  void regenerateNoLock(const std::atomic<bool>* cancelled);
  void summariseInBlocksOf(std::uint64_t frameCount, const std::atomic<bool>* cancelled);
  [[nodiscard]] bool publish(std::span<const SummaryReader::Block> blocks) EXCLUDES(elementsLock_);
  static void fillPatch(Patch& patch, const float* samples, std::uint64_t sampleCount,
                        std::uint64_t samplesPerElement, double slotsPerStep, double slot);
  void apply(const Patch& patch) EXCLUDES(elementsLock_);

  const std::shared_ptr<OVAudioBufferInterface> audioBuffer_;
  const std::shared_ptr<OVDynamicWaveForm> dynwaveform_;  ///< null unless stretched from one

  /// Held by regenerate(), so that generations do not overlap.
  platform::Mutex bufferLock_;

  /// The short lock. Innermost: nothing else is locked and no buffer is called under it.
  mutable platform::Mutex elementsLock_;
  Elements elements_ GUARDED_BY(elementsLock_);
  /// Slots that chunks set since the last generation began, which it does not overwrite.
  Slots patched_ GUARDED_BY(elementsLock_);

  /// Set by any thread, cleared at the start of a generation. Read without a lock.
  std::atomic<bool> shouldRegenerateWaveform_ = false;
  /// Written by the thread that generates. Read without a lock.
  std::atomic<bool> isRegenerating_ = false;
};
