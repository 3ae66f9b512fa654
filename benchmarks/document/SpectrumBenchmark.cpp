// One analysis of 4096 points without its read: at most 4 times the bare transform.
#include <random>
#include <vector>

#include <benchmark/benchmark.h>

#include "document/spectrum/OVSpectrumAnalyser.h"
#include "platform/ffmpeg/Ffmpeg.h"

namespace {

constexpr int kLength = 4096;

std::vector<float> noise(std::size_t count) {
  std::mt19937 random(1);
  std::uniform_real_distribution<float> sample(-1.0F, 1.0F);
  std::vector<float> samples(count);
  for (float& value : samples) {
    value = sample(random);
  }
  return samples;
}

void bareTransform(benchmark::State& state) {
  AVTXContext* context = nullptr;
  av_tx_fn transform = nullptr;
  const float scale = 1.0F;
  if (av_tx_init(&context, &transform, AV_TX_FLOAT_FFT, 0, kLength, &scale, 0) < 0) {
    state.SkipWithError("no transform");
    return;
  }
  auto* const in = static_cast<AVComplexFloat*>(av_calloc(kLength, sizeof(AVComplexFloat)));
  auto* out = static_cast<AVComplexFloat*>(av_calloc(kLength, sizeof(AVComplexFloat)));
  const auto samples = noise(2 * kLength);
  for (std::size_t i = 0; i < kLength; ++i) {
    in[i] = {samples[2 * i], samples[2 * i + 1]};
  }
  for (auto _ : state) {
    transform(context, out, in, sizeof(AVComplexFloat));
    benchmark::DoNotOptimize(out);
    benchmark::ClobberMemory();
  }
  av_free(in);
  av_free(out);
  av_tx_uninit(&context);
}
BENCHMARK(bareTransform)->Name("Spectrum/yardstick: the bare transform");

void analyseStoredAudio(benchmark::State& state) {
  const auto analyser = OVSpectrumAnalyser::create();
  for (auto _ : state) {
    benchmark::DoNotOptimize(analyser->doFFT(nullptr, 0).data());
    benchmark::ClobberMemory();
  }
}
BENCHMARK(analyseStoredAudio)->Name("Spectrum/stored audio, without the read");

void analyseRecordedAudio(benchmark::State& state) {
  const auto analyser = OVSpectrumAnalyser::create();
  const auto samples = noise(2048);
  const auto size = static_cast<std::uint32_t>(samples.size() * sizeof(float));
  for (auto _ : state) {
    benchmark::DoNotOptimize(analyser->doFFTwithData(samples.data(), size).data());
    benchmark::ClobberMemory();
  }
}
BENCHMARK(analyseRecordedAudio)->Name("Spectrum/recorded audio");

}  // namespace
