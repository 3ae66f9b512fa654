#include "platform/ffmpeg/WorkingFormatConverter.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include <gmock/gmock.h>

#include "platform/ffmpeg/Ffmpeg.h"

namespace platform {
namespace {

using testing::Each;
using testing::ElementsAre;

/// A frame of packed floats.
AvFrame frameOf(const std::vector<float>& samples, int channels, int rate) {
  AvFrame frame(av_frame_alloc());
  frame->format = AV_SAMPLE_FMT_FLT;
  frame->sample_rate = rate;
  frame->nb_samples = static_cast<int>(samples.size()) / channels;
  av_channel_layout_default(&frame->ch_layout, channels);
  EXPECT_GE(av_frame_get_buffer(frame.get(), 0), 0);
  std::copy(samples.begin(), samples.end(), reinterpret_cast<float*>(frame->data[0]));
  return frame;
}

/// The converter's whole output for `frames`, taken `room` frames at a time.
std::vector<float> converted(WorkingFormatConverter& converter, std::vector<AvFrame> frames,
                             std::uint32_t room) {
  std::vector<float> all;
  std::vector<float> chunk(std::size_t{room} * 2);
  const auto keep = [&](std::uint32_t count) {
    all.insert(all.end(), chunk.begin(), chunk.begin() + std::ptrdiff_t{count} * 2);
  };
  for (const AvFrame& frame : frames) {
    const int count = converter.put(*frame, chunk.data(), room);
    EXPECT_GE(count, 0);
    keep(static_cast<std::uint32_t>(count));
    while (const std::uint32_t more = converter.take(chunk.data(), room)) {
      keep(more);
    }
  }
  EXPECT_EQ(converter.finish(), 0);
  while (const std::uint32_t more = converter.take(chunk.data(), room)) {
    keep(more);
  }
  return all;
}

std::vector<AvFrame> list(AvFrame first, AvFrame second = nullptr) {
  std::vector<AvFrame> frames;
  frames.push_back(std::move(first));
  if (second != nullptr) {
    frames.push_back(std::move(second));
  }
  return frames;
}

TEST(WorkingFormatConverterTest, StereoAt44100IsLeftAlone) {
  WorkingFormatConverter converter;
  const std::vector<float> samples{0.1F, -0.2F, 1.5F, -3.0F, 0.0F, 1e-30F};
  EXPECT_EQ(converted(converter, list(frameOf(samples, 2, 44'100)), 20'000), samples);
}

TEST(WorkingFormatConverterTest, LittleRoomGivesTheSameFrames) {
  for (const int rate : {44'100, 48'000, 8000}) {
    std::vector<float> samples(2 * 3000);
    for (std::size_t i = 0; i < samples.size(); ++i) {
      samples[i] = std::sin(static_cast<float>(i) * 0.01F);
    }
    WorkingFormatConverter whole;
    const auto expected = converted(whole, list(frameOf(samples, 2, rate)), 100'000);
    for (const std::uint32_t room : {1U, 7U, 1000U}) {
      WorkingFormatConverter converter;
      EXPECT_EQ(converted(converter, list(frameOf(samples, 2, rate)), room), expected) << rate;
    }
  }
}

TEST(WorkingFormatConverterTest, MonoGoesToBothSidesAsItStands) {
  WorkingFormatConverter converter;
  EXPECT_THAT(converted(converter, list(frameOf({0.5F, -0.25F}, 1, 44'100)), 10'000),
              ElementsAre(0.5F, 0.5F, -0.25F, -0.25F));
}

TEST(WorkingFormatConverterTest, SurroundIsMixedDownAndMayPassFullScale) {
  WorkingFormatConverter converter;
  const auto mixed =
      converted(converter, list(frameOf(std::vector<float>(6, 1.0F), 6, 44'100)), 10'000);
  // Front, plus centre and rear at 0.707 each, without the low-frequency channel.
  ASSERT_EQ(mixed.size(), 2U);
  EXPECT_NEAR(mixed[0], 1.0 + 2 * std::sqrt(0.5), 1e-5);
  EXPECT_NEAR(mixed[1], 1.0 + 2 * std::sqrt(0.5), 1e-5);
}

TEST(WorkingFormatConverterTest, AFormatThatChangesIsFollowedWithoutALoss) {
  WorkingFormatConverter converter;
  const auto all = converted(converter,
                             list(frameOf(std::vector<float>(2 * 4800, 0.25F), 2, 48'000),
                                  frameOf(std::vector<float>(2205, 0.5F), 1, 22'050)),
                             50'000);
  ASSERT_EQ(all.size() / 2, 4410U + 4410U);
  EXPECT_NEAR(all[2 * 2000], 0.25F, 1e-3);
  EXPECT_NEAR(all[2 * (4410 + 2000)], 0.5F, 1e-3);
}

TEST(WorkingFormatConverterTest, SamplesThatOverflowInTheMixBecomeSilence) {
  WorkingFormatConverter converter;
  constexpr float kMax = std::numeric_limits<float>::max();
  EXPECT_THAT(
      converted(converter, list(frameOf(std::vector<float>(6 * 10, kMax), 6, 44'100)), 10'000),
      Each(0.0F));
}

TEST(WorkingFormatConverterTest, WhatCannotBeConvertedIsRefused) {
  EXPECT_TRUE(WorkingFormatConverter::canConvert(1000, 1));
  EXPECT_TRUE(WorkingFormatConverter::canConvert(768'000, 8));
  EXPECT_FALSE(WorkingFormatConverter::canConvert(999, 1));
  EXPECT_FALSE(WorkingFormatConverter::canConvert(768'001, 1));
  EXPECT_FALSE(WorkingFormatConverter::canConvert(44'100, 0));
  EXPECT_FALSE(WorkingFormatConverter::canConvert(44'100, 9));
  EXPECT_FALSE(WorkingFormatConverter::canConvert(0, 2));
  EXPECT_FALSE(WorkingFormatConverter::canConvert(-44'100, 2));

  WorkingFormatConverter converter;
  std::vector<float> room(1000);
  const AvFrame slow = frameOf({0.1F, 0.1F}, 2, 1);
  EXPECT_LT(converter.put(*slow, room.data(), 500), 0);
  // Later frames can still be converted.
  EXPECT_THAT(converted(converter, list(frameOf({0.1F, 0.2F}, 2, 44'100)), 10'000),
              ElementsAre(0.1F, 0.2F));
}

TEST(WorkingFormatConverterTest, NothingPutInGivesNothing) {
  WorkingFormatConverter converter;
  float room[2];
  EXPECT_EQ(converter.finish(), 0);
  EXPECT_EQ(converter.take(room, 1), 0U);
}

}  // namespace
}  // namespace platform
