#include "platform/media/MediaLibrary.h"

#include <gtest/gtest.h>

#include "platform/media/MediaFunctions.h"

namespace platform {
namespace {

TEST(MediaLibrary, IsThereAndLoadedOnce) {
  EXPECT_TRUE(mediaLibrary::load());
  EXPECT_TRUE(mediaLibrary::load());
}

TEST(MediaLibrary, HasTheVersionOfTheHeaders) {
  using Version = unsigned int();
  const auto majorOf = [](LateLibrary& library, const char* name) {
    return reinterpret_cast<Version*>(library.functionNamed(name))() >> 16U;
  };
  EXPECT_EQ(majorOf(mediaLibrary::util, "avutil_version"), LIBAVUTIL_VERSION_MAJOR);
  EXPECT_EQ(majorOf(mediaLibrary::codec, "avcodec_version"), LIBAVCODEC_VERSION_MAJOR);
  EXPECT_EQ(majorOf(mediaLibrary::format, "avformat_version"), LIBAVFORMAT_VERSION_MAJOR);
  EXPECT_EQ(majorOf(mediaLibrary::resample, "swresample_version"), LIBSWRESAMPLE_VERSION_MAJOR);
}

TEST(MediaLibrary, FunctionsAreCalledUnderTheirOwnNames) {
  EXPECT_EQ(av_rescale(10, 3, 2), 15);
  AVPacket* packet = av_packet_alloc();
  ASSERT_NE(packet, nullptr);
  av_packet_free(&packet);
  EXPECT_EQ(packet, nullptr);
}

}  // namespace
}  // namespace platform
