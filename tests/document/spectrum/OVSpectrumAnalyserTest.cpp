#include "document/spectrum/OVSpectrumAnalyser.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstring>
#include <numbers>
#include <random>

#include <gmock/gmock.h>

#include "support/fakes/MemoryTestBuffer.h"

using testing::AllOf;
using testing::Each;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

constexpr std::size_t kLength = 4096;
constexpr std::size_t kFloatsRead = 2 * kLength;

std::vector<float> noise(std::size_t count, unsigned seed = 1) {
  std::mt19937 random(seed);
  std::uniform_real_distribution<float> sample(-1.0F, 1.0F);
  std::vector<float> samples(count);
  std::generate(samples.begin(), samples.end(), [&] { return sample(random); });
  return samples;
}

/// The magnitude of one bin of 4096 real samples, from the defining sum.
double magnitudeOfBin(const std::vector<double>& samples, std::size_t bin) {
  std::complex<double> sum;
  for (std::size_t i = 0; i < samples.size(); ++i) {
    const auto turn = static_cast<double>(i * bin % kLength) / static_cast<double>(kLength);
    sum += samples[i] * std::polar(1.0, -2.0 * std::numbers::pi * turn);
  }
  return std::abs(sum) / 64.0;
}

/// Compares about a hundred bins, including the first ones and the last.
void expectMagnitudes(std::span<const float> magnitudes, const std::vector<double>& samples) {
  for (std::size_t k = 0; k < magnitudes.size(); k += k < 8 ? 1 : magnitudes.size() / 97) {
    EXPECT_NEAR(magnitudes[k], magnitudeOfBin(samples, k), 1e-4) << "bin " << k;
  }
  const std::size_t last = magnitudes.size() - 1;
  EXPECT_NEAR(magnitudes[last], magnitudeOfBin(samples, last), 1e-4);
}

std::vector<double> everySecond(const std::vector<float>& floats, std::size_t first,
                                std::size_t count) {
  std::vector<double> samples(count);
  for (std::size_t i = 0; i < count && first + 2 * i < floats.size(); ++i) {
    samples[i] = static_cast<double>(floats[first + 2 * i]);
  }
  return samples;
}

std::span<const float> analyse(OVSpectrumAnalyser& analyser, const std::vector<float>& samples) {
  return analyser.doFFTwithData(samples.data(),
                                static_cast<std::uint32_t>(samples.size() * sizeof(float)));
}

class OVSpectrumAnalyserTest : public testing::Test {
 protected:
  std::unique_ptr<OVSpectrumAnalyser> analyser_ = OVSpectrumAnalyser::create();
};

}  // namespace

TEST_F(OVSpectrumAnalyserTest, TransformsFourThousandAndNinetySixPoints) {
  ASSERT_TRUE(analyser_);
  EXPECT_EQ(analyser_->fft_log2n(), 12);
  EXPECT_THAT(analyser_->fft_inputReal(), SizeIs(2 * kLength));
  EXPECT_FALSE(analyser_->doingfft());
}

// Stored audio ----------------------------------------------------------------------------------

TEST_F(OVSpectrumAnalyserTest, StoredAudioGivesTheFirstChannelOfTheFramesFromThePosition) {
  constexpr std::size_t kPosition = 1000;
  MemoryTestBuffer buffer(noise(2 * (kPosition + kLength + 500)));
  const auto magnitudes = analyser_->doFFT(&buffer, kPosition);
  ASSERT_THAT(magnitudes, SizeIs(2048));
  expectMagnitudes(magnitudes, everySecond(buffer.samples(), 2 * kPosition, kLength));
  EXPECT_FALSE(analyser_->doingfft());
}

TEST_F(OVSpectrumAnalyserTest, StoredAudioIsReadOnceAsWholeFrames) {
  MemoryTestBuffer buffer(noise(kFloatsRead));
  static_cast<void>(analyser_->doFFT(&buffer, 7));
  ASSERT_THAT(buffer.reads(), SizeIs(1));
  EXPECT_EQ(buffer.reads()[0].byteOffset, 7U * 8U);
  EXPECT_EQ(buffer.reads()[0].byteCount, 8U * kLength);
}

TEST_F(OVSpectrumAnalyserTest, TheSecondChannelOfStoredAudioDoesNotCount) {
  std::vector<float> floats(kFloatsRead);
  for (std::size_t i = 1; i < floats.size(); i += 2) {
    floats[i] = 1.0F;
  }
  MemoryTestBuffer buffer(floats);
  EXPECT_THAT(analyser_->doFFT(&buffer, 0), Each(0.0F));
}

TEST_F(OVSpectrumAnalyserTest, AToneOfFullScaleGivesHalfTheLengthOverSixtyFourInItsBinAlone) {
  std::vector<float> floats(kFloatsRead);
  for (std::size_t i = 0; i < kLength; ++i) {
    const double angle = 2.0 * std::numbers::pi * 100.0 * static_cast<double>(i) / 4096.0;
    floats[2 * i] = static_cast<float>(std::sin(angle));
  }
  MemoryTestBuffer buffer(floats);
  const auto magnitudes = analyser_->doFFT(&buffer, 0);
  ASSERT_THAT(magnitudes, SizeIs(2048));
  for (std::size_t k = 0; k < magnitudes.size(); ++k) {
    ASSERT_NEAR(magnitudes[k], k == 100 ? 32.0 : 0.0, 1e-4) << "bin " << k;
  }
}

TEST_F(OVSpectrumAnalyserTest, AtTheEndOfTheAudioTheRestIsSilence) {
  MemoryTestBuffer loud(noise(kFloatsRead, 2));
  static_cast<void>(analyser_->doFFT(&loud, 0));
  MemoryTestBuffer buffer(noise(2 * 3000));
  const auto magnitudes = analyser_->doFFT(&buffer, 2900);
  ASSERT_THAT(magnitudes, SizeIs(2048));
  expectMagnitudes(magnitudes, everySecond(buffer.samples(), 2 * 2900, kLength));
  EXPECT_THAT(analyser_->fft_inputReal().subspan(200), Each(0.0F));
  EXPECT_GT(magnitudes[1], 0.0F);
}

TEST_F(OVSpectrumAnalyserTest, BehindTheEndOfTheAudioThereIsSilence) {
  MemoryTestBuffer loud(noise(kFloatsRead));
  static_cast<void>(analyser_->doFFT(&loud, 0));
  EXPECT_THAT(analyser_->doFFT(&loud, kLength), AllOf(SizeIs(2048), Each(0.0F)));
}

TEST_F(OVSpectrumAnalyserTest, WithoutABufferThereIsSilence) {
  MemoryTestBuffer loud(noise(kFloatsRead));
  static_cast<void>(analyser_->doFFT(&loud, 0));
  EXPECT_THAT(analyser_->doFFT(nullptr, 123), AllOf(SizeIs(2048), Each(0.0F)));
}

TEST_F(OVSpectrumAnalyserTest, TwoAnalysesOfTheSameAudioAreEqual) {
  MemoryTestBuffer buffer(noise(kFloatsRead));
  const auto first = analyser_->doFFT(&buffer, 10);
  const std::vector<float> kept(first.begin(), first.end());
  static_cast<void>(analyse(*analyser_, noise(2048, 5)));
  EXPECT_THAT(analyser_->doFFT(&buffer, 10), testing::ElementsAreArray(kept));
}

// Recorded audio --------------------------------------------------------------------------------

TEST_F(OVSpectrumAnalyserTest, RecordedSamplesLieAtTheEvenPlacesOfTheFirstHalf) {
  const auto samples = noise(2048);
  ASSERT_THAT(analyse(*analyser_, samples), SizeIs(512));
  const auto input = analyser_->fft_inputReal();
  for (std::size_t i = 0; i < input.size(); ++i) {
    const bool filled = i < kLength / 2 && i % 2 == 0;
    ASSERT_EQ(input[i], filled ? samples[i / 2] : 0.0F) << "place " << i;
  }
  EXPECT_THAT(analyser_->fft_inputImaginary(), Each(0.0F));
}

TEST_F(OVSpectrumAnalyserTest, RecordedAudioGivesTheFirstFiveHundredAndTwelveBins) {
  const auto samples = noise(2048);
  const auto magnitudes = analyse(*analyser_, samples);
  ASSERT_THAT(magnitudes, SizeIs(512));
  std::vector<double> input(kLength);
  for (std::size_t j = 0; j < 1024; ++j) {
    input[2 * j] = static_cast<double>(samples[j]);
  }
  expectMagnitudes(magnitudes, input);
  EXPECT_FALSE(analyser_->doingfft());
}

TEST_F(OVSpectrumAnalyserTest, OnlyTheFirstHalfOfAShortChunkIsRepeated) {
  const auto samples = noise(20);  // 80 bytes: ten samples are used
  ASSERT_THAT(analyse(*analyser_, samples), SizeIs(512));
  const auto input = analyser_->fft_inputReal();
  for (std::size_t j = 0; j < 1024; ++j) {
    ASSERT_EQ(input[2 * j], samples[j % 10]) << "sample " << j;
  }
}

TEST_F(OVSpectrumAnalyserTest, AChunkOfFewerThanEightBytesRepeatsItsFirstSample) {
  const std::vector<float> samples{0.25F, 0.5F};
  for (const std::uint32_t size : {4U, 5U, 7U, 8U}) {
    const auto magnitudes = analyser_->doFFTwithData(samples.data(), size);
    ASSERT_THAT(magnitudes, SizeIs(512)) << size;
    for (std::size_t i = 0; i < kLength / 2; i += 2) {
      ASSERT_EQ(analyser_->fft_inputReal()[i], 0.25F);
    }
    EXPECT_NEAR(magnitudes[0], 1024.0 * 0.25 / 64.0, 1e-4);
  }
}

TEST_F(OVSpectrumAnalyserTest, AChunkWithoutAWholeSampleDoesNothing) {
  const auto samples = noise(64);
  const auto magnitudes = analyse(*analyser_, samples);
  const std::vector<float> before(magnitudes.begin(), magnitudes.end());
  for (const std::uint32_t size : {0U, 1U, 2U, 3U}) {
    EXPECT_THAT(analyser_->doFFTwithData(samples.data(), size), IsEmpty());
  }
  EXPECT_THAT(analyser_->doFFTwithData(nullptr, 0), IsEmpty());
  EXPECT_THAT(magnitudes, testing::ElementsAreArray(before));
  EXPECT_EQ(analyser_->fft_inputReal()[0], samples[0]);
}

TEST_F(OVSpectrumAnalyserTest, RecordedAudioNeedsNoAlignment) {
  const auto samples = noise(512);
  const std::size_t size = samples.size() * sizeof(float);
  const auto aligned = analyse(*analyser_, samples);
  const std::vector<float> expected(aligned.begin(), aligned.end());
  std::vector<std::byte> shifted(size + 1);
  std::memcpy(shifted.data() + 1, samples.data(), size);
  EXPECT_THAT(analyser_->doFFTwithData(shifted.data() + 1, static_cast<std::uint32_t>(size)),
              testing::ElementsAreArray(expected));
}

TEST_F(OVSpectrumAnalyserTest, TheTwoAnalysesClearWhatTheOtherLeft) {
  MemoryTestBuffer loud(noise(kFloatsRead));
  static_cast<void>(analyser_->doFFT(&loud, 0));
  const std::vector<float> silence(2048);
  EXPECT_THAT(analyse(*analyser_, silence), AllOf(SizeIs(512), Each(0.0F)));
  static_cast<void>(analyse(*analyser_, noise(2048)));
  EXPECT_THAT(analyser_->doFFT(nullptr, 0), Each(0.0F));
}
