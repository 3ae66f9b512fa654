#include "keeper/CafHeader.h"

#include <gtest/gtest.h>

#include <fstream>

#include "support/RawAudio.h"
#include "support/TemporaryFolder.h"
#include "support/programs/ChildProcess.h"

namespace {

// FFmpeg's own view of the file.
TEST(CafHeaderTest, OtherProgramsReadTheSamplesAndTheDate) {
  const support::TemporaryFolder folder;
  const auto samples = support::noise(1000, 5);
  const auto header = cafHeader(samples.size() * sizeof(float), "2026-11-21T14:02:31+0100");
  {
    std::ofstream file(folder.file("a.caf"), std::ios::binary);
    file.write(reinterpret_cast<const char*>(header.data()),
               static_cast<std::streamsize>(header.size()));
    file.write(reinterpret_cast<const char*>(samples.data()),
               static_cast<std::streamsize>(samples.size() * sizeof(float)));
  }
  const auto decoded = support::runToEnd(
      {"ffmpeg", "-v", "error", "-i", folder.file("a.caf"), "-f", "f32le", folder.file("a.raw")},
      support::cleanEnvironment());
  ASSERT_TRUE(decoded.status.succeeded()) << decoded.error;
  EXPECT_EQ(decoded.error, "");
  EXPECT_EQ(support::readRaw(folder.file("a.raw")), samples);
  const auto probed = support::runToEnd(
      {"ffprobe", "-v", "error", "-show_entries",
       "stream=sample_rate,channels,codec_name:format_tags", "-of", "flat", folder.file("a.caf")},
      support::cleanEnvironment());
  EXPECT_NE(probed.output.find("codec_name=\"pcm_f32le\""), std::string::npos) << probed.output;
  EXPECT_NE(probed.output.find("sample_rate=\"44100\""), std::string::npos) << probed.output;
  EXPECT_NE(probed.output.find("2026-11-21T14:02:31+0100"), std::string::npos) << probed.output;
}

TEST(CafHeaderTest, WithoutADateThereIsNoneInIt) {
  EXPECT_EQ(cafHeader(80, "").size(), 8U + 12 + 32 + 12 + 4);
}

}  // namespace
