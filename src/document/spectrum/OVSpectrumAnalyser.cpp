#include "document/spectrum/OVSpectrumAnalyser.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

#include "storage/OVAudioBufferInterface.h"

namespace {

constexpr float kMagnitudeScale = 1.0F / 64.0F;

// The stored audio is interleaved stereo: every other float belongs to the first channel.
constexpr std::size_t kStoredStride = 2;
constexpr std::size_t kRecordedStride = 1;

float sampleAt(const void* data, std::size_t index) {
  float sample = 0.0F;
  std::memcpy(&sample, static_cast<const std::byte*>(data) + index * sizeof(float), sizeof(float));
  return sample;
}

}  // namespace

std::unique_ptr<OVSpectrumAnalyser> OVSpectrumAnalyser::create() {
  auto transform = platform::FourierTransform::create(fft_log2n_);
  if (!transform) {
    return nullptr;
  }
  return std::unique_ptr<OVSpectrumAnalyser>(new OVSpectrumAnalyser(std::move(transform)));
}

OVSpectrumAnalyser::OVSpectrumAnalyser(std::unique_ptr<platform::FourierTransform> transform)
    : fft_setup_(std::move(transform)) {}

std::span<const float> OVSpectrumAnalyser::doFFT(OVAudioBufferInterface* buffer,
                                                 std::uint64_t playbackPosition) {
  clearArrays();
  if (buffer != nullptr) {
    const std::uint64_t offset = buffer->format().mBytesPerFrame * playbackPosition;
    // What cannot be read stays zero.
    static_cast<void>(
        buffer->readDataInto(fft_input_.real.data(), kArrayLength * sizeof(float), offset));
  }
  transform(kStoredStride);
  return measureMagnitudes(kLength / 2);
}

std::span<const float> OVSpectrumAnalyser::doFFTwithData(const void* data, std::uint32_t size) {
  if (size < sizeof(float)) {
    return {};
  }
  clearArrays();
  // A count of frames that bounds an index of samples: the second half of the data is never used.
  const std::size_t frameCount = size / platform::kWorkingFormat.mBytesPerFrame;
  std::size_t source = 0;
  for (std::size_t i = 0; i < kLength / 2; i += 2) {
    fft_input_.real[i] = sampleAt(data, source);
    ++source;
    if (source >= frameCount) {
      source = 0;
    }
  }
  transform(kRecordedStride);
  return measureMagnitudes(kLength / 8);
}

void OVSpectrumAnalyser::clearArrays() {
  for (auto* const array :
       {&fft_output_.real, &fft_output_.imaginary, &fft_input_.imaginary, &fft_input_.real}) {
    std::fill(array->begin(), array->end(), 0.0F);
  }
}

void OVSpectrumAnalyser::transform(std::size_t inputStride) {
  fft_setup_->forward(fft_input_.pointers(), inputStride, fft_output_.pointers(), 1);
}

std::span<const float> OVSpectrumAnalyser::measureMagnitudes(std::size_t binCount) {
  const float* const re = fft_output_.real.data();
  const float* const im = fft_output_.imaginary.data();
  for (std::size_t k = 0; k < binCount; ++k) {
    magnitudes_[k] = std::sqrt(re[k] * re[k] + im[k] * im[k]) * kMagnitudeScale;
  }
  doingfft_ = false;
  return {magnitudes_.data(), binCount};
}
