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
/// merging. With the default capacity of 1024 there are 512 to 1024 elements once the first 65536
/// frames (1.49 s) are full. An element's value is the spread between the largest and the smallest
/// magnitude of the samples that were looked at: of each block that is read, the left channel of
/// the first half of its frames.
///
/// generate() takes in only what lies beyond readerPos(). Audio that does not fill an element yet
/// stays pending and is not shown until a later generate() completes the element. After an edit
/// the owner asks for a fresh start with setShouldRegenerateWaveform().
///
/// A generation reads and looks at samples without the short lock and publishes a batch of blocks
/// at a time under it, so elements and counters always belong together. One that is reset
/// meanwhile goes on from the beginning of the audio.
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

  /// The element that is being built: what has gone into it, not shown yet.
  struct PendingElement {
    std::uint64_t readCount = 0;   ///< blocks read
    std::uint64_t frameCount = 0;  ///< frames of those blocks
    double smallest = 1.0;         ///< magnitudes of the samples looked at
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

  /// The next generation starts from the beginning. One that is running is not cut short, and the
  /// request outlasts it.
  void setShouldRegenerateWaveform(bool should) override;
  [[nodiscard]] bool isRegenerating() const override;

  /// Back to the beginning of the audio; the elements' memory and number stay. isRegenerating() is
  /// true from here until the next generation has taken in all audio.
  void reset() override;
  /// Merges neighbouring elements in pairs, the larger one stays; with an odd capacity the last one
  /// stands alone. Elements from now on cover twice the frames.
  void consolidate();
  /// Adds one element, after consolidate() when there is no room.
  void appendSample(float value);
  /// Makes room for that many elements, at least 2, and asks for a fresh start. Elements that no
  /// longer fit are gone at once.
  void setCapacity(std::uint64_t elements);
  [[nodiscard]] std::uint64_t capacity() const;

  [[nodiscard]] std::uint64_t readerPos() const override;
  /// Finished elements.
  [[nodiscard]] std::uint64_t elementCount() const override;
  /// Finished elements since the reset, at most the capacity: merging takes none back.
  [[nodiscard]] std::uint64_t producedElementCount() const;
  /// Frames that each element covers.
  [[nodiscard]] std::uint64_t chunksize() const;
  [[nodiscard]] PendingElement pendingElement() const;

  /// The array, capacity() long; only for a caller that knows that no one generates or resizes.
  [[nodiscard]] const float* data() const override;
  void copyElementsInto(std::vector<float>& elements) const override;
  [[nodiscard]] double powerAtPosition(double fraction) const override;
  /// Largest magnitude that has gone into an element, at least 1.0.
  [[nodiscard]] double maxAmplitude() const override;

  /// The copy has every element, counter and flag of one moment. Taken during a generation it says
  /// isRegenerating() as the original did, until a generation of its own ends; that one takes in
  /// what was missing.
  [[nodiscard]] std::shared_ptr<OVWaveformSummary> copy() const override;

  [[nodiscard]] std::shared_ptr<OVAudioBufferInterface> audioBuffer() const override;

  void lock() override ACQUIRE();
  void unlock() override RELEASE();

 private:
  /// The summary proper, without regard to threads.
  struct Elements {
    std::vector<float> buffer = std::vector<float>(kInitialCapacity);  ///< capacity long
    std::uint64_t elementCount = 0;  ///< produced, at most the capacity
    std::uint64_t reader_pos = 0;    ///< byte offset up to which audio was taken in
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

  /// Where a generation reads next, and of which state of the counters that is true.
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
