#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "platform/media/FourierTransform.h"

class OVAudioBufferInterface;

/// Computes the magnitudes that the spectrum view draws: a transform of n = 4096 points without
/// window, decibels or smoothing, each bin's magnitude divided by 64.
///
/// The two analyses differ on purpose. For stored audio, the input is n frames of the first channel
/// and the result 2048 bins, 0 to 22050 Hz. For freshly recorded audio, the input is 1024 samples
/// with the channels interleaved, spread over the even indices of its first half, and the result
/// 512 bins.
///
/// Threads: main, or any one at a time. Real-time: not safe (it reads the buffer; nothing is
/// allocated after creation).
class OVSpectrumAnalyser {
 public:
  /// Null if there is no memory for the transform.
  [[nodiscard]] static std::unique_ptr<OVSpectrumAnalyser> create();

  /// Analyses the stored audio from a frame position on. Past the end of the audio, and without a
  /// buffer, the input is zero.
  ///
  /// @return 2048 magnitudes, valid until the next analysis.
  [[nodiscard]] std::span<const float> doFFT(OVAudioBufferInterface* buffer,
                                             std::uint64_t playbackPosition);

  /// Analyses `size` bytes of 32-bit floats; no alignment is needed. Uses only the first half of
  /// them, size / 8 samples but at least one, repeated from the start to make 1024.
  ///
  /// @return 512 magnitudes, valid until the next analysis; empty, with nothing changed, if the
  /// data holds no whole sample (0 to 3 bytes).
  [[nodiscard]] std::span<const float> doFFTwithData(const void* data, std::uint32_t size);

  /// Base-2 logarithm of the transform's length.
  [[nodiscard]] std::int32_t fft_log2n() const { return fft_log2n_; }
  /// The transform's input of the last analysis, 2n floats each.
  [[nodiscard]] std::span<const float> fft_inputReal() const { return fft_input_.real; }
  [[nodiscard]] std::span<const float> fft_inputImaginary() const { return fft_input_.imaginary; }
  /// Its output: n bins, followed by as many zeros.
  [[nodiscard]] std::span<const float> fft_outputReal() const { return fft_output_.real; }
  [[nodiscard]] std::span<const float> fft_outputImaginary() const { return fft_output_.imaginary; }
  /// False after every analysis; nothing sets it.
  [[nodiscard]] bool doingfft() const { return doingfft_; }

 private:
  struct SplitArrays {
    explicit SplitArrays(std::size_t size) : real(size), imaginary(size) {}
    [[nodiscard]] platform::SplitComplex pointers() { return {real.data(), imaginary.data()}; }

    std::vector<float> real;
    std::vector<float> imaginary;
  };

  explicit OVSpectrumAnalyser(std::unique_ptr<platform::FourierTransform> transform);

  void clearArrays();
  void transform(std::size_t inputStride);
  std::span<const float> measureMagnitudes(std::size_t binCount);

  // Fixed after construction.
  static constexpr std::int32_t fft_log2n_ = 12;
  static constexpr std::size_t kLength = std::size_t{1} << fft_log2n_;
  static constexpr std::size_t kArrayLength = 2 * kLength;
  std::unique_ptr<platform::FourierTransform> fft_setup_;

  SplitArrays fft_input_{kArrayLength};
  SplitArrays fft_output_{kArrayLength};
  std::vector<float> magnitudes_ = std::vector<float>(kLength);
  bool doingfft_ = false;
};
