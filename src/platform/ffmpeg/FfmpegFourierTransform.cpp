#include "platform/ffmpeg/Ffmpeg.h"
#include "platform/ffmpeg/FfmpegMakers.h"

namespace platform {

namespace {

constexpr int kForward = 0;
constexpr float kScale = 1.0F;

class FfmpegFourierTransform final : public FourierTransform {
 public:
  [[nodiscard]] static std::unique_ptr<FourierTransform> create(int log2Length);

  [[nodiscard]] std::size_t length() const override { return length_; }
  void forward(ConstSplitComplex input, std::size_t inputStride, SplitComplex output,
               std::size_t outputStride) override;

 private:
  struct Complex {
    float re;
    float im;
  };
  struct Release {
    void operator()(AVTXContext* context) const { av_tx_uninit(&context); }
    void operator()(Complex* elements) const { av_free(elements); }
  };

  explicit FfmpegFourierTransform(std::size_t length) : length_(length) {}
  [[nodiscard]] bool prepare();

  // Fixed after construction.
  const std::size_t length_;
  std::unique_ptr<AVTXContext, Release> context_;
  av_tx_fn function_ = nullptr;

  // FFmpeg needs the elements interleaved and aligned to its vector registers.
  std::unique_ptr<Complex, Release> interleavedInput_;
  std::unique_ptr<Complex, Release> interleavedOutput_;
};

}  // namespace

std::unique_ptr<FourierTransform> createTransform(int log2Length) {
  return FfmpegFourierTransform::create(log2Length);
}

std::unique_ptr<FourierTransform> FfmpegFourierTransform::create(int log2Length) {
  if (log2Length < kSmallestLog2Length || log2Length > kMaxLog2Length) {
    return nullptr;
  }
  std::unique_ptr<FfmpegFourierTransform> transform(
      new FfmpegFourierTransform(std::size_t{1} << log2Length));
  return transform->prepare() ? std::move(transform) : nullptr;
}

bool FfmpegFourierTransform::prepare() {
  static_assert(sizeof(Complex) == sizeof(AVComplexFloat));
  AVTXContext* context = nullptr;
  const int status = av_tx_init(&context, &function_, AV_TX_FLOAT_FFT, kForward,
                                static_cast<int>(length_), &kScale, 0);
  context_.reset(context);
  interleavedInput_.reset(static_cast<Complex*>(av_calloc(length_, sizeof(Complex))));
  interleavedOutput_.reset(static_cast<Complex*>(av_calloc(length_, sizeof(Complex))));
  return status >= 0 && interleavedInput_ && interleavedOutput_;
}

void FfmpegFourierTransform::forward(ConstSplitComplex input, std::size_t inputStride,
                                     SplitComplex output, std::size_t outputStride) {
  Complex* const in = interleavedInput_.get();
  for (std::size_t i = 0; i < length_; ++i) {
    in[i] = {input.realp[i * inputStride], input.imagp[i * inputStride]};
  }
  function_(context_.get(), interleavedOutput_.get(), in, sizeof(Complex));
  const Complex* const out = interleavedOutput_.get();
  for (std::size_t k = 0; k < length_; ++k) {
    output.realp[k * outputStride] = out[k].re;
    output.imagp[k * outputStride] = out[k].im;
  }
}

}  // namespace platform
