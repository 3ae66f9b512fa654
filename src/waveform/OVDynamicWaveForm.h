#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "platform/base/Mutex.h"
#include "waveform/OVWaveformSummary.h"
#include "waveform/SummaryReader.h"

/// A summary that grows with the recording and never exceeds a fixed number of elements: when it
/// is full, neighbouring elements are merged in pairs, and from then on each element stands for
/// twice as many frames.
///
/// One element covers chunksize() frames: 64 at first (1.45 ms at 44100 Hz), doubled by every
/// merge. With the default capacity of 1024 there are 512 to 1024 elements after the first 65536
/// frames (1.49 s). An element's value is the difference between the largest and the smallest
/// magnitude of the samples examined: the left channel of the first half of each block's frames.
///
/// generate() reads only the audio after readerPos(). Audio that does not yet fill an element stays
/// pending and is not shown until a later generate() completes the element. After an edit the owner
/// requests regeneration with setShouldRegenerateWaveform().
///
/// A generation reads and examines samples without the short lock and publishes a batch of blocks
/// at a time under it, so elements and counters are always consistent. If reset meanwhile, it
/// continues from the beginning of the audio.
///
/// Threads: any. The generation lock ("OVDynamicWaveForm lock") is held for the whole of
/// generate(); every other operation waits for the short lock only. Real-time: not safe.
class OVDynamicWaveForm final : public OVWaveformSummary {
  struct Passkey {
    explicit Passkey() = default;
  };
  struct Elements;

 public:
  static constexpr std::uint64_t kInitialCapacity = 1024;  ///< elements
  static constexpr std::uint64_t kInitialChunksize = 64;   ///< frames per element

  /// The unfinished element, not shown yet.
  struct PendingElement {
    std::uint64_t readCount = 0;   ///< blocks read
    std::uint64_t frameCount = 0;  ///< frames of those blocks
    double smallest = 1.0;         ///< magnitudes of the samples examined
    double largest = 0.0;

    friend bool operator==(const PendingElement&, const PendingElement&) = default;
  };

  /// An empty summary that will start from the beginning of the audio. Without a buffer it stays
  /// empty.
  [[nodiscard]] static std::shared_ptr<OVDynamicWaveForm> initWithBuffer(
      std::shared_ptr<OVAudioBufferInterface> audioBuffer);

  OVDynamicWaveForm(Passkey, std::shared_ptr<OVAudioBufferInterface> audioBuffer,
                    const Elements& elements);
  OVDynamicWaveForm(const OVDynamicWaveForm&) = delete;
  OVDynamicWaveForm& operator=(const OVDynamicWaveForm&) = delete;

  using OVWaveformSummary::generate;
  using OVWaveformSummary::generateNoLock;
  void generate(const std::atomic<bool>* cancelled) override;
  void generateNoLock(const std::atomic<bool>* cancelled) override;

  /// The next generation starts from the beginning. A running one is not interrupted, and the
  /// request remains set after it.
  void setShouldRegenerateWaveform(bool should) override;
  [[nodiscard]] bool isRegenerating() const override;

  /// Returns to the beginning of the audio; the elements' memory and number stay. isRegenerating()
  /// is true until the next generation has read all audio.
  void reset() override;
  /// Merges neighbouring elements in pairs, keeping the larger value; with an odd capacity the last
  /// one stays single. Elements then cover twice the frames.
  void consolidate();
  /// Adds one element, after consolidate() when there is no room.
  void appendSample(float value);
  /// Sets the capacity in elements, at least 2, and requests regeneration. Elements that no longer
  /// fit are dropped at once.
  void setCapacity(std::uint64_t elements);
  [[nodiscard]] std::uint64_t capacity() const;

  [[nodiscard]] std::uint64_t readerPos() const override;
  /// Finished elements.
  [[nodiscard]] std::uint64_t elementCount() const override;
  /// Finished elements since the reset, at most the capacity; merging does not reduce it.
  [[nodiscard]] std::uint64_t producedElementCount() const;
  /// Frames that each element covers.
  [[nodiscard]] std::uint64_t chunksize() const;
  [[nodiscard]] PendingElement pendingElement() const;

  /// The array, capacity() long; use it only while no thread generates or resizes.
  [[nodiscard]] const float* data() const override;
  void copyElementsInto(std::vector<float>& elements) const override;
  [[nodiscard]] double powerAtPosition(double fraction) const override;
  /// Largest magnitude in any element, at least 1.0.
  [[nodiscard]] double maxAmplitude() const override;

  /// The copy has every element, counter and flag of one moment. A copy made during a generation
  /// keeps the original's isRegenerating() until its own next generation, which reads the missing
  /// audio, ends.
  [[nodiscard]] std::shared_ptr<OVWaveformSummary> copy() const override;

  [[nodiscard]] std::shared_ptr<OVAudioBufferInterface> audioBuffer() const override;

  void lock() override ACQUIRE();
  void unlock() override RELEASE();

 private:
  /// The summary itself, without locking.
  struct Elements {
    std::vector<float> buffer = std::vector<float>(kInitialCapacity);  ///< capacity long
    std::uint64_t elementCount = 0;  ///< produced, at most the capacity
    std::uint64_t reader_pos = 0;    ///< byte offset up to which audio was read
    std::uint64_t buffer_pos = 0;    ///< write index: finished elements
    std::uint64_t chunksize = kInitialChunksize;
    std::uint64_t chunk_read_count = 0;
    std::uint64_t chunk_read_size = 0;  ///< frames
    double chunk_max = 0.0;
    double chunk_min = 1.0;
    double max_amplitude = 1.0;

    void restart();
    void resize(std::uint64_t capacity);
    void consolidate();
    void append(float value);
    void take(const SummaryReader::Block& block);
    void finishElement();
  };

  /// Where a generation reads next, and the revision for which that is valid.
  struct ReadPoint {
    std::uint64_t byteOffset;
    std::uint64_t revision;
  };

  [[nodiscard]] ReadPoint readPoint() const EXCLUDES(elementsLock_);
  [[nodiscard]] ReadPoint publish(std::span<const SummaryReader::Block> blocks, ReadPoint from)
      EXCLUDES(elementsLock_);

  const std::shared_ptr<OVAudioBufferInterface> audioBuffer_;

  /// "OVDynamicWaveForm lock": held by generate(), so that generations do not overlap.
  platform::Mutex bufferLock_;

  /// The short lock. Innermost: nothing else is locked and no buffer is called under it.
  mutable platform::Mutex elementsLock_;
  Elements elements_ GUARDED_BY(elementsLock_);
  std::uint64_t revision_ GUARDED_BY(elementsLock_) = 0;  ///< counts the moves of reader_pos

  /// Set by any thread, cleared by reset(). Read without a lock.
  std::atomic<bool> regenerate_ = true;
  /// Written under elementsLock_, by reset() and at the end of a generation, so that a copy's flag
  /// fits its elements. Read without a lock.
  std::atomic<bool> isRegenerating_ = false;
};
