#include "waveform/OVDynamicWaveForm.h"

#include <algorithm>
#include <utility>

#include "storage/OVAudioBufferInterface.h"
#include "waveform/ElementIndex.h"

void OVDynamicWaveForm::Elements::restart() {
  elementCount = 0;
  buffer_pos = 0;
  reader_pos = 0;
  chunksize = kInitialChunksize;
  chunk_min = 1.0;
  chunk_max = 0.0;
  chunk_read_count = 0;
  chunk_read_size = 0;
  max_amplitude = 1.0;
}

void OVDynamicWaveForm::Elements::resize(std::uint64_t capacity) {
  buffer.resize(capacity);
  buffer_pos = std::min(buffer_pos, capacity);
  elementCount = std::min(elementCount, capacity);
}

void OVDynamicWaveForm::Elements::consolidate() {
  const std::size_t capacity = buffer.size();
  for (std::size_t i = 0; i < capacity; i += 2) {
    buffer[i / 2] = i + 1 < capacity ? std::max(buffer[i], buffer[i + 1]) : buffer[i];
  }
  buffer_pos = capacity / 2;
  chunksize *= 2;
}

void OVDynamicWaveForm::Elements::append(float value) {
  if (buffer_pos == buffer.size()) {
    consolidate();
  }
  buffer[buffer_pos] = value;
  ++buffer_pos;
}

void OVDynamicWaveForm::Elements::take(const SummaryReader::Block& block) {
  reader_pos += block.byteCount;
  chunk_read_size += block.frameCount;
  ++chunk_read_count;
  chunk_min = std::min(chunk_min, static_cast<double>(block.extent.smallest));
  chunk_max = std::max(chunk_max, static_cast<double>(block.extent.largest));
  if (chunk_read_size >= chunksize) {
    finishElement();
  }
}

void OVDynamicWaveForm::Elements::finishElement() {
  max_amplitude = std::max(max_amplitude, chunk_max);
  append(static_cast<float>(chunk_max - chunk_min));
  chunk_min = 1.0;
  chunk_max = 0.0;
  chunk_read_size = 0;
  chunk_read_count = 0;
  elementCount = std::min<std::uint64_t>(elementCount + 1, buffer.size());
}

std::shared_ptr<OVDynamicWaveForm> OVDynamicWaveForm::initWithBuffer(
    std::shared_ptr<OVAudioBufferInterface> audioBuffer) {
  return std::make_shared<OVDynamicWaveForm>(Passkey(), std::move(audioBuffer), Elements());
}

OVDynamicWaveForm::OVDynamicWaveForm(Passkey, std::shared_ptr<OVAudioBufferInterface> audioBuffer,
                                     const Elements& elements)
    : audioBuffer_(std::move(audioBuffer)), elements_(elements) {}

void OVDynamicWaveForm::generate(const std::atomic<bool>* cancelled) {
  const platform::MutexLock generation(bufferLock_);
  generateNoLock(cancelled);
}

void OVDynamicWaveForm::generateNoLock(const std::atomic<bool>* cancelled) {
  // Acquires from the setter: the reads below see the edit that preceded it.
  if (regenerate_.load(std::memory_order_acquire)) {
    reset();
  }
  if (audioBuffer_) {
    // One read size for the whole call, even if elements double during it.
    SummaryReader reader(*audioBuffer_, chunksize());
    ReadPoint next = readPoint();
    for (;;) {
      if (isSet(cancelled)) {
        return;  // isRegenerating() stays: the next one reads the missing audio
      }
      const auto blocks = reader.readBlocks(next.byteOffset);
      if (blocks.empty()) {
        break;
      }
      next = publish(blocks, next);
    }
  }
  const platform::MutexLock guard(elementsLock_);
  isRegenerating_.store(false, std::memory_order_relaxed);
}

OVDynamicWaveForm::ReadPoint OVDynamicWaveForm::readPoint() const {
  const platform::MutexLock guard(elementsLock_);
  return {.byteOffset = elements_.reader_pos, .revision = revision_};
}

/// Adds blocks that were read at `from`, and returns where to continue. If the counters have moved
/// since, by a reset or by a generation without the generation lock, the blocks do not follow the
/// elements: they are dropped, and the audio at the current position is read instead.
OVDynamicWaveForm::ReadPoint OVDynamicWaveForm::publish(
    std::span<const SummaryReader::Block> blocks, ReadPoint from) {
  const platform::MutexLock guard(elementsLock_);
  if (from.revision == revision_) {
    for (const SummaryReader::Block& block : blocks) {
      elements_.take(block);
    }
    ++revision_;
  }
  return {.byteOffset = elements_.reader_pos, .revision = revision_};
}

void OVDynamicWaveForm::setShouldRegenerateWaveform(bool should) {
  regenerate_.store(should, std::memory_order_release);
}

bool OVDynamicWaveForm::isRegenerating() const {
  return isRegenerating_.load(std::memory_order_relaxed);
}

void OVDynamicWaveForm::reset() {
  const platform::MutexLock guard(elementsLock_);
  elements_.restart();
  ++revision_;
  // An exchange, not a store: if it clears a new request, the following reads see that request's
  // edit.
  regenerate_.exchange(false, std::memory_order_acq_rel);
  isRegenerating_.store(true, std::memory_order_relaxed);
}

void OVDynamicWaveForm::consolidate() {
  const platform::MutexLock guard(elementsLock_);
  elements_.consolidate();
}

void OVDynamicWaveForm::appendSample(float value) {
  const platform::MutexLock guard(elementsLock_);
  elements_.append(value);
}

void OVDynamicWaveForm::setCapacity(std::uint64_t elements) {
  const platform::MutexLock guard(elementsLock_);
  elements_.resize(std::max<std::uint64_t>(elements, 2));
  setShouldRegenerateWaveform(true);
}

std::uint64_t OVDynamicWaveForm::capacity() const {
  const platform::MutexLock guard(elementsLock_);
  return elements_.buffer.size();
}

std::uint64_t OVDynamicWaveForm::readerPos() const {
  return audioBuffer_ ? readPoint().byteOffset / audioBuffer_->format().mBytesPerFrame : 0;
}

std::uint64_t OVDynamicWaveForm::elementCount() const {
  const platform::MutexLock guard(elementsLock_);
  return elements_.buffer_pos;
}

std::uint64_t OVDynamicWaveForm::producedElementCount() const {
  const platform::MutexLock guard(elementsLock_);
  return elements_.elementCount;
}

std::uint64_t OVDynamicWaveForm::chunksize() const {
  const platform::MutexLock guard(elementsLock_);
  return elements_.chunksize;
}

OVDynamicWaveForm::PendingElement OVDynamicWaveForm::pendingElement() const {
  const platform::MutexLock guard(elementsLock_);
  return {.readCount = elements_.chunk_read_count,
          .frameCount = elements_.chunk_read_size,
          .smallest = elements_.chunk_min,
          .largest = elements_.chunk_max};
}

const float* OVDynamicWaveForm::data() const {
  const platform::MutexLock guard(elementsLock_);
  return elements_.buffer.data();
}

void OVDynamicWaveForm::copyElementsInto(std::vector<float>& elements) const {
  const platform::MutexLock guard(elementsLock_);
  elements.assign(elements_.buffer.data(), elements_.buffer.data() + elements_.buffer_pos);
}

double OVDynamicWaveForm::powerAtPosition(double fraction) const {
  const platform::MutexLock guard(elementsLock_);
  const std::uint64_t count = elements_.buffer_pos;
  return count == 0 ? 0.0 : elements_.buffer[elementIndex(fraction, count)];
}

double OVDynamicWaveForm::maxAmplitude() const {
  const platform::MutexLock guard(elementsLock_);
  return elements_.max_amplitude;
}

std::shared_ptr<OVWaveformSummary> OVDynamicWaveForm::copy() const {
  const platform::MutexLock guard(elementsLock_);
  auto copied = std::make_shared<OVDynamicWaveForm>(Passkey(), audioBuffer_, elements_);
  copied->regenerate_.store(regenerate_.load(std::memory_order_acquire), std::memory_order_relaxed);
  copied->isRegenerating_.store(isRegenerating(), std::memory_order_relaxed);
  return copied;
}

std::shared_ptr<OVAudioBufferInterface> OVDynamicWaveForm::audioBuffer() const {
  return audioBuffer_;
}

void OVDynamicWaveForm::lock() {
  bufferLock_.lock();
}

void OVDynamicWaveForm::unlock() {
  bufferLock_.unlock();
}
