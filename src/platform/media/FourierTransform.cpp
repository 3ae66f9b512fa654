#include "platform/media/FourierTransform.h"

#include "platform/media/MediaFunctions.h"

namespace platform {

namespace {

constexpr int kForward = 0;
constexpr float kScale = 1.0F;

}  // namespace

void FourierTransform::Release::operator()(AVTXContext* context) const {
  av_tx_uninit(&context);
}

void FourierTransform::Release::operator()(Complex* elements) const {
  av_free(elements);
}

std::unique_ptr<FourierTransform> FourierTransform::create(int log2Length) {
  if (log2Length < kSmallestLog2Length || log2Length > kMaxLog2Length || !mediaLibrary::load()) {
    return nullptr;
  }
  std::unique_ptr<FourierTransform> transform(new FourierTransform(std::size_t{1} << log2Length));
  return transform->prepare() ? std::move(transform) : nullptr;
}

FourierTransform::~FourierTransform() = default;

bool FourierTransform::prepare() {
  static_assert(sizeof(Complex) == sizeof(AVComplexFloat));
  AVTXContext* context = nullptr;
  const int status = av_tx_init(&context, &function_, AV_TX_FLOAT_FFT, kForward,
                                static_cast<int>(length_), &kScale, 0);
  context_.reset(context);
  interleavedInput_.reset(static_cast<Complex*>(av_calloc(length_, sizeof(Complex))));
  interleavedOutput_.reset(static_cast<Complex*>(av_calloc(length_, sizeof(Complex))));
  return status >= 0 && interleavedInput_ && interleavedOutput_;
}

void FourierTransform::forward(ConstSplitComplex input, std::size_t inputStride,
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
