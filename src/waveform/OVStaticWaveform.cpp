#include "waveform/OVStaticWaveform.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

#include "storage/OVAudioBufferInterface.h"
#include "waveform/ElementIndex.h"
#include "waveform/OVDynamicWaveForm.h"

namespace {

constexpr auto kSlots = static_cast<double>(OVStaticWaveform::kElementCount);

/// Truncates a non-negative value, limited to `limit`.
std::uint64_t truncated(double value, std::uint64_t limit) {
  return value < static_cast<double>(limit) ? static_cast<std::uint64_t>(value) : limit;
}

}  // namespace

std::shared_ptr<OVStaticWaveform> OVStaticWaveform::initWithBuffer(
    std::shared_ptr<OVAudioBufferInterface> audioBuffer) {
  auto summary =
      std::make_shared<OVStaticWaveform>(Passkey(), std::move(audioBuffer), nullptr, Elements());
  summary->regenerate();
  return summary;
}

std::shared_ptr<OVStaticWaveform> OVStaticWaveform::initWithDynamicWaveform(
    std::shared_ptr<OVDynamicWaveForm> dynamicWaveform) {
  std::vector<float> source;
  std::shared_ptr<OVAudioBufferInterface> audioBuffer;
  if (dynamicWaveform) {
    dynamicWaveform->copyElementsInto(source);
    audioBuffer = dynamicWaveform->audioBuffer();
  }
  Elements elements;
  elements.elementCount = source.size();
  const double step = kSlots / static_cast<double>(source.size());
  double position = 0.0;
  for (const float value : source) {
    const std::uint64_t slot = truncated(position, kElementCount);
    if (slot < kElementCount) {
      elements.buffer[slot] = value;
    }
    position += step;
  }
  return std::make_shared<OVStaticWaveform>(Passkey(), std::move(audioBuffer),
                                            std::move(dynamicWaveform), elements);
}

OVStaticWaveform::OVStaticWaveform(Passkey, std::shared_ptr<OVAudioBufferInterface> audioBuffer,
                                   std::shared_ptr<OVDynamicWaveForm> dynamicWaveform,
                                   const Elements& elements)
    : audioBuffer_(std::move(audioBuffer)),
      dynwaveform_(std::move(dynamicWaveform)),
      elements_(elements) {}

void OVStaticWaveform::regenerate(const std::atomic<bool>* cancelled) {
  // The flag is set even while waiting for the lock.
  isRegenerating_.store(true, std::memory_order_relaxed);
  const platform::MutexLock generation(bufferLock_);
  regenerateNoLock(cancelled);
}

void OVStaticWaveform::regenerateNoLock(const std::atomic<bool>* cancelled) {
  isRegenerating_.store(true, std::memory_order_relaxed);
  // An exchange, not a store: if it clears a new request, the following reads see that request's
  // edit.
  shouldRegenerateWaveform_.exchange(false, std::memory_order_acq_rel);
  {
    const platform::MutexLock guard(elementsLock_);
    elements_.elementCount = 0;
    elements_.buffer_pos = 0;
    elements_.reader_pos = 0;
    patched_.reset();
  }
  if (audioBuffer_) {
    const auto length = static_cast<double>(audioBuffer_->bufferSizeInFrames());
    const auto framesPerElement = static_cast<std::uint64_t>(length * (1.0 / kSlots));
    if (framesPerElement > 0) {
      summariseInBlocksOf(framesPerElement, cancelled);
    }
  }
  if (isSet(cancelled)) {
    setShouldRegenerateWaveform(true);
  }
  isRegenerating_.store(false, std::memory_order_relaxed);
}

void OVStaticWaveform::summariseInBlocksOf(std::uint64_t frameCount,
                                           const std::atomic<bool>* cancelled) {
  SummaryReader reader(*audioBuffer_, frameCount);
  std::uint64_t byteOffset = 0;
  while (!isSet(cancelled)) {
    const auto blocks = reader.readBlocks(byteOffset);
    if (blocks.empty() || !publish(blocks)) {
      return;
    }
    for (const SummaryReader::Block& block : blocks) {
      byteOffset += block.byteCount;
    }
  }
}

/// False when the last element has been written.
bool OVStaticWaveform::publish(std::span<const SummaryReader::Block> blocks) {
  const platform::MutexLock guard(elementsLock_);
  for (const SummaryReader::Block& block : blocks) {
    if (elements_.buffer_pos == kElementCount) {
      return false;
    }
    elements_.reader_pos += block.byteCount;
    if (!patched_[elements_.buffer_pos]) {
      elements_.buffer[elements_.buffer_pos] = block.extent.spread();
    }
    ++elements_.buffer_pos;
    if (elements_.buffer_pos < kElementCount) {
      ++elements_.elementCount;
    }
  }
  return elements_.buffer_pos < kElementCount;
}

void OVStaticWaveform::generate(const std::atomic<bool>* cancelled) {
  if (shouldRegenerateWaveform()) {
    regenerate(cancelled);
  }
}

void OVStaticWaveform::generateNoLock(const std::atomic<bool>* cancelled) {
  if (shouldRegenerateWaveform()) {
    regenerateNoLock(cancelled);
  }
}

void OVStaticWaveform::setShouldRegenerateWaveform(bool should) {
  shouldRegenerateWaveform_.store(should, std::memory_order_release);
}

bool OVStaticWaveform::shouldRegenerateWaveform() const {
  return shouldRegenerateWaveform_.load(std::memory_order_acquire);
}

bool OVStaticWaveform::isRegenerating() const {
  return isRegenerating_.load(std::memory_order_relaxed);
}

void OVStaticWaveform::updateWithDataChunk(const float* dataChunk, std::uint64_t ofSize,
                                           double atPosition) {
  const std::uint64_t length = audioBuffer_ ? audioBuffer_->bufferSizeInFrames() : 0;
  if (length == 0) {
    return;
  }
  const auto lengthInFrames = static_cast<double>(length);
  const auto sampleCount = static_cast<double>(ofSize);
  const double elementsCovered = kSlots / lengthInFrames * sampleCount;
  const std::uint64_t samplesPerElement =
      ofSize / std::max<std::uint64_t>(truncated(elementsCovered, ~std::uint64_t{0}), 2);
  if (samplesPerElement == 0) {
    return;
  }
  const double share = sampleCount / lengthInFrames;
  const std::uint64_t stepCount = ofSize / samplesPerElement;
  const double firstSlot = std::max(0.0, kSlots * atPosition + 0.5);

  Patch patch;
  patch.firstSlot = truncated(firstSlot, kElementCount);
  patch.clearedByteCount =
      truncated(sizeof(float) * share * kSlots, (kElementCount - patch.firstSlot) * sizeof(float));
  fillPatch(patch, dataChunk, ofSize, samplesPerElement,
            share * kSlots / static_cast<double>(stepCount), firstSlot);
  apply(patch);
}

void OVStaticWaveform::fillPatch(Patch& patch, const float* samples, std::uint64_t sampleCount,
                                 std::uint64_t samplesPerElement, double slotsPerStep,
                                 double slot) {
  // The last step counts only as many samples as remain after it, if any: deliberately kept.
  for (std::uint64_t taken = 0; taken + samplesPerElement <= sampleCount && slot < kSlots;) {
    taken += samplesPerElement;
    const std::uint64_t remaining = sampleCount - taken;
    const std::uint64_t count =
        remaining > 0 && remaining < samplesPerElement ? remaining : samplesPerElement;
    const auto index = static_cast<std::size_t>(slot);
    patch.values[index] = leftMagnitudeExtent(samples, count).spread();
    patch.stored.set(index);
    samples += count;
    slot += slotsPerStep;
  }
}

void OVStaticWaveform::apply(const Patch& patch) {
  const platform::MutexLock guard(elementsLock_);
  std::memset(elements_.buffer.data() + patch.firstSlot, 0, patch.clearedByteCount);
  const std::uint64_t wholeSlotsEnd = patch.firstSlot + patch.clearedByteCount / sizeof(float);
  for (std::uint64_t slot = patch.firstSlot; slot < kElementCount; ++slot) {
    if (patch.stored[slot]) {
      elements_.buffer[slot] = patch.values[slot];
    }
    if (patch.stored[slot] || slot < wholeSlotsEnd) {
      patched_.set(slot);
    }
  }
}

void OVStaticWaveform::reset() {}

std::uint64_t OVStaticWaveform::readerPos() const {
  const std::uint64_t bytesPerFrame = audioBuffer_ ? audioBuffer_->format().mBytesPerFrame : 1;
  const platform::MutexLock guard(elementsLock_);
  return elements_.reader_pos / bytesPerFrame;
}

std::uint64_t OVStaticWaveform::elementCount() const {
  return kElementCount;
}

std::uint64_t OVStaticWaveform::producedElementCount() const {
  const platform::MutexLock guard(elementsLock_);
  return elements_.elementCount;
}

const float* OVStaticWaveform::data() const {
  return elements_.buffer.data();
}

void OVStaticWaveform::copyElementsInto(std::vector<float>& elements) const {
  const platform::MutexLock guard(elementsLock_);
  elements.assign(elements_.buffer.begin(), elements_.buffer.end());
}

double OVStaticWaveform::powerAtPosition(double fraction) const {
  const platform::MutexLock guard(elementsLock_);
  return elements_.buffer[elementIndex(fraction, kElementCount)];
}

double OVStaticWaveform::maxAmplitude() const {
  return 1.6;
}

std::shared_ptr<OVWaveformSummary> OVStaticWaveform::copy() const {
  const platform::MutexLock guard(elementsLock_);
  auto copied =
      std::make_shared<OVStaticWaveform>(Passkey(), audioBuffer_, dynwaveform_, elements_);
  copied->shouldRegenerateWaveform_.store(shouldRegenerateWaveform(), std::memory_order_relaxed);
  copied->isRegenerating_.store(isRegenerating(), std::memory_order_relaxed);
  return copied;
}

std::shared_ptr<OVAudioBufferInterface> OVStaticWaveform::audioBuffer() const {
  return audioBuffer_;
}

void OVStaticWaveform::lock() {
  bufferLock_.lock();
}

void OVStaticWaveform::unlock() {
  bufferLock_.unlock();
}
