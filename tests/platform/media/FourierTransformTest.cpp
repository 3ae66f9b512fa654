#include "platform/media/FourierTransform.h"

#include <cmath>
#include <complex>
#include <numbers>
#include <random>
#include <vector>

#include <gmock/gmock.h>

using platform::FourierTransform;
using platform::SplitComplex;

namespace {

/// Real and imaginary parts in separate arrays.
struct Split {
  explicit Split(std::size_t size, float value = 0.0F) : re(size, value), im(size, value) {}

  SplitComplex pointers() { return {re.data(), im.data()}; }
  [[nodiscard]] std::complex<double> at(std::size_t i) const { return {re[i], im[i]}; }

  std::vector<float> re;
  std::vector<float> im;
};

Split noise(std::size_t size) {
  std::mt19937 random(20240607);
  std::uniform_real_distribution<float> sample(-1.0F, 1.0F);
  Split signal(size);
  for (std::size_t i = 0; i < size; ++i) {
    signal.re[i] = sample(random);
    signal.im[i] = sample(random);
  }
  return signal;
}

/// The defining sum in double precision, over every stride-th element.
std::vector<std::complex<double>> slowTransform(const Split& signal, std::size_t length,
                                                std::size_t stride) {
  std::vector<std::complex<double>> roots(length);
  for (std::size_t i = 0; i < length; ++i) {
    const double turn = static_cast<double>(i) / static_cast<double>(length);
    roots[i] = std::polar(1.0, -2.0 * std::numbers::pi * turn);
  }
  std::vector<std::complex<double>> bins(length);
  for (std::size_t k = 0; k < length; ++k) {
    for (std::size_t i = 0; i < length; ++i) {
      bins[k] += signal.at(i * stride) * roots[i * k % length];
    }
  }
  return bins;
}

double largestError(const Split& result, std::size_t stride,
                    const std::vector<std::complex<double>>& expected) {
  double error = 0.0;
  for (std::size_t k = 0; k < expected.size(); ++k) {
    error = std::max(error, std::abs(result.at(k * stride) - expected[k]));
  }
  return error;
}

}  // namespace

TEST(FourierTransformTest, AgreesWithASlowTransformInDoublePrecision) {
  for (const int log2Length : {1, 2, 3, 5, 8, 12}) {
    const auto transform = FourierTransform::create(log2Length);
    ASSERT_TRUE(transform) << log2Length;
    const std::size_t n = transform->length();
    ASSERT_EQ(n, std::size_t{1} << log2Length);
    Split input = noise(n);
    Split output(n);
    transform->forward(input.pointers(), 1, output.pointers(), 1);
    EXPECT_LT(largestError(output, 1, slowTransform(input, n, 1)), 1e-6 * static_cast<double>(n));
  }
}

TEST(FourierTransformTest, TakesEveryElementThatTheInputStrideTells) {
  const auto transform = FourierTransform::create(9);
  const std::size_t n = transform->length();
  for (const std::size_t stride : {2U, 3U}) {
    Split input = noise(n * stride);
    Split output(n);
    transform->forward(input.pointers(), stride, output.pointers(), 1);
    EXPECT_LT(largestError(output, 1, slowTransform(input, n, stride)), 1e-4) << stride;
  }
}

TEST(FourierTransformTest, PutsBinsWhereTheOutputStrideTellsAndTouchesNothingBetween) {
  const auto transform = FourierTransform::create(6);
  const std::size_t n = transform->length();
  Split input = noise(n);
  Split output(2 * n, 77.0F);
  transform->forward(input.pointers(), 1, output.pointers(), 2);
  EXPECT_LT(largestError(output, 2, slowTransform(input, n, 1)), 1e-4);
  for (std::size_t k = 0; k < n; ++k) {
    ASSERT_EQ(output.re[2 * k + 1], 77.0F);
    ASSERT_EQ(output.im[2 * k + 1], 77.0F);
  }
}

TEST(FourierTransformTest, IsNotNormalised) {
  const auto transform = FourierTransform::create(12);
  const std::size_t n = transform->length();
  Split input(n);
  for (std::size_t i = 0; i < n; ++i) {
    const double angle = 2.0 * std::numbers::pi * 100.0 * static_cast<double>(i) / 4096.0;
    input.re[i] = static_cast<float>(std::cos(angle));
    input.im[i] = static_cast<float>(std::sin(angle));
  }
  Split output(n);
  transform->forward(input.pointers(), 1, output.pointers(), 1);
  EXPECT_NEAR(output.re[100], 4096.0F, 0.01F);
  EXPECT_NEAR(output.im[100], 0.0F, 0.01F);
}

TEST(FourierTransformTest, TurnsForwardWithANegativeExponent) {
  const auto transform = FourierTransform::create(3);
  Split input(8);
  input.re[1] = 1.0F;
  Split output(8);
  transform->forward(input.pointers(), 1, output.pointers(), 1);
  EXPECT_NEAR(output.re[2], 0.0F, 1e-6F);
  EXPECT_NEAR(output.im[2], -1.0F, 1e-6F);  // exp(−jπ/2)
}

TEST(FourierTransformTest, LeavesItsInputAlone) {
  const auto transform = FourierTransform::create(7);
  Split input = noise(128);
  const Split before = input;
  Split output(128);
  transform->forward(input.pointers(), 1, output.pointers(), 1);
  EXPECT_EQ(input.re, before.re);
  EXPECT_EQ(input.im, before.im);
}

TEST(FourierTransformTest, GivesTheSameAgainAndOnTopOfItsInput) {
  const auto transform = FourierTransform::create(7);
  Split input = noise(128);
  Split first(128);
  Split second(128);
  transform->forward(input.pointers(), 1, first.pointers(), 1);
  transform->forward(input.pointers(), 1, second.pointers(), 1);
  transform->forward(input.pointers(), 1, input.pointers(), 1);
  EXPECT_EQ(second.re, first.re);
  EXPECT_EQ(input.re, first.re);
  EXPECT_EQ(input.im, first.im);
}

TEST(FourierTransformTest, TakesArraysOfAnyAlignment) {
  const auto transform = FourierTransform::create(12);
  const std::size_t n = transform->length();
  Split input = noise(n + 3);
  Split output(n + 1);
  transform->forward({input.re.data() + 1, input.im.data() + 3}, 1,
                     {output.re.data() + 1, output.im.data()}, 1);
  Split shifted(n);
  shifted.re.assign(input.re.begin() + 1, input.re.end() - 2);
  shifted.im.assign(input.im.begin() + 3, input.im.end());
  Split expected(n);
  transform->forward(shifted.pointers(), 1, expected.pointers(), 1);
  EXPECT_THAT(std::vector<float>(output.re.begin() + 1, output.re.end()),
              testing::ElementsAreArray(expected.re));
}

TEST(FourierTransformTest, RefusesLengthsThatItCannotServe) {
  for (const int log2Length : {-1, 0, 21, 31, 64}) {
    EXPECT_FALSE(FourierTransform::create(log2Length)) << log2Length;
  }
  EXPECT_TRUE(FourierTransform::create(20));
}
