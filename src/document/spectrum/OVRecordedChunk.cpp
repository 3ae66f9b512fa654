#include "document/spectrum/OVRecordedChunk.h"

#include <algorithm>

void OVRecordedChunk::capture(const void* data, std::uint32_t size) {
  const auto* const bytes = static_cast<const std::byte*>(data);
  const platform::MutexLock lock(mutex_);
  fft_data_.assign(bytes, bytes + size);
  fft_data_p_ = 0;
  fft_data_p_size_ = size / 4;
}

std::span<const std::byte> OVRecordedChunk::nextQuarter() {
  const platform::MutexLock lock(mutex_);
  const auto rest = std::span(fft_data_).subspan(fft_data_p_);
  const auto quarter = rest.first(std::min<std::size_t>(fft_data_p_size_, rest.size()));
  quarter_.assign(quarter.begin(), quarter.end());
  fft_data_p_ += fft_data_p_size_;
  if (fft_data_p_ >= fft_data_.size()) {
    fft_data_p_ = 0;
  }
  return quarter_;
}

std::vector<std::byte> OVRecordedChunk::fft_data() const {
  const platform::MutexLock lock(mutex_);
  return fft_data_;
}
