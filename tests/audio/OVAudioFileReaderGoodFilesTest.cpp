// Files as real programs write them: each gives its sound to the frame, and no alert.
#include <algorithm>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "audio/OVAudioFileReader.h"
#include "support/GoodFiles.h"
#include "support/TemporaryFolder.h"
#include "support/fakes/RecordingServices.h"
#include "support/programs/AudioFileTools.h"

namespace {

using support::Samples;
using testing::IsEmpty;

std::vector<GoodFile> goodFiles() {
  std::vector<GoodFile> all = goodPcmFiles();
  const std::vector<GoodFile> encoded = goodEncodedFiles();
  all.insert(all.end(), encoded.begin(), encoded.end());
  return all;
}

Samples readAll(OVAudioFileReader& reader) {
  Samples all;
  while (const std::uint32_t frames = reader.readFrameChunkWithSize(7000)) {
    const auto* const samples = static_cast<const float*>(reader.exposeBuffer());
    all.insert(all.end(), samples, samples + std::size_t{frames} * 2);
  }
  return all;
}

class OVAudioFileReaderGoodFilesTest : public testing::TestWithParam<GoodFile> {
 protected:
  void SetUp() override { testing::internal::CaptureStderr(); }
  void TearDown() override { testing::internal::GetCapturedStderr(); }

  support::TemporaryFolder folder_;
  support::InstalledRecordingServices services_;
};

TEST_P(OVAudioFileReaderGoodFilesTest, IsReadToTheFrameWithoutAnAlert) {
  const GoodFile& each = GetParam();
  const std::string path = folder_.file(each.file);
  ASSERT_NO_FATAL_FAILURE(each.make(path));
  const auto reader = OVAudioFileReader::initWithFile(path);
  ASSERT_NE(reader, nullptr);
  const std::int64_t told = reader->fileSizeInFrames();
  EXPECT_EQ(reader->isFileSizeEstimated(), each.length == GoodFile::Length::estimated);

  const Samples read = readAll(*reader);
  EXPECT_FALSE(reader->failed());
  EXPECT_THAT(services_->alerts(), IsEmpty());
  const std::uint64_t expected =
      each.frames == GoodFile::kAsDecoded ? support::decodedByFfmpeg(path).size() / 2 : each.frames;
  EXPECT_EQ(read.size() / 2, expected);
  if (each.length == GoodFile::Length::exact) {
    EXPECT_EQ(told, static_cast<std::int64_t>(expected));
  }
  if (each.length == GoodFile::Length::estimated) {
    EXPECT_EQ(reader->fileSizeInFrames(), static_cast<std::int64_t>(expected)) << "at the end";
  }
  if (each.sound == GoodFile::Sound::ofTheSource) {
    const Samples& source = goodFileSource();
    ASSERT_LE(read.size(), source.size());
    EXPECT_TRUE(std::equal(read.begin(), read.end(), source.begin()));
  }
}

INSTANTIATE_TEST_SUITE_P(Corpus, OVAudioFileReaderGoodFilesTest, testing::ValuesIn(goodFiles()),
                         [](const testing::TestParamInfo<GoodFile>& each) {
                           return each.param.name;
                         });

}  // namespace
