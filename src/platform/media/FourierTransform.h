#pragma once

#include <cstddef>
#include <memory>

namespace platform {

/// Complex numbers with real and imaginary parts in separate arrays.
struct SplitComplex {
  float* realp = nullptr;
  float* imagp = nullptr;
};

struct ConstSplitComplex {
  ConstSplitComplex(const float* real, const float* imaginary) : realp(real), imagp(imaginary) {}
  // Implicit: what may be written may be read.
  ConstSplitComplex(const SplitComplex& other) : realp(other.realp), imagp(other.imagp) {}

  const float* realp;
  const float* imagp;
};

/// The forward complex Fourier transform of one fixed power-of-two length:
///
///     X[k] = sum over i = 0 … n − 1 of x[i] · exp(−2πj · i · k / n),   k = 0 … n − 1
///
/// without scaling: n ones give n in bin 0. Single precision; the error of a bin is below 1e-6 of
/// the sum of the input's magnitudes.
///
/// Threads: any, one at a time for each object.
/// Real-time: forward() is safe; it neither allocates nor locks.
class FourierTransform {
 public:
  static constexpr int kSmallestLog2Length = 1;
  static constexpr int kMaxLog2Length = 20;

  /// Prepares a transform of length 2 to the power of `log2Length`. Null when the exponent is
  /// outside 1 to 20, memory runs out or FFmpeg is missing; the first call loads FFmpeg.
  [[nodiscard]] static std::unique_ptr<FourierTransform> create(int log2Length);

  virtual ~FourierTransform() = default;

  /// Number of elements, n.
  [[nodiscard]] virtual std::size_t length() const = 0;

  /// Transforms the elements 0, s, 2s, … (n − 1)s of the input into the elements 0, t, 2t, … (n −
  /// 1)t of the output, s and t being their strides. Strides count floats and are at least 1. No
  /// alignment is needed; input and output may be the same arrays.
  virtual void forward(ConstSplitComplex input, std::size_t inputStride, SplitComplex output,
                       std::size_t outputStride) = 0;
};

}  // namespace platform
