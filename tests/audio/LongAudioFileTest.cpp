// Files beyond 4 GB, in a storage without zeros: a few seconds of work, hardly any memory.
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "audio/OVAudioFileReader.h"
#include "audio/OVAudioFileWriter.h"
#include "support/fakes/RecordingServices.h"
#include "support/fakes/TestUserAudioFiles.h"

namespace {

constexpr std::uint64_t kChunk = 1 << 20;                     // frames
constexpr std::uint64_t kChunks = (1ULL << 32) / 4 / kChunk;  // exactly 4 GB of 16-bit samples
constexpr float kMark = 0.5F;  // of the last frame, the only one that is not silent

class LongAudioFileTest : public testing::Test {
 protected:
  // Silence and one last frame that is not silent.
  void write(std::uint32_t kind, std::uint64_t chunks) {
    const auto writer = OVAudioFileWriter::initWithFile("long", kind);
    ASSERT_NE(writer, nullptr);
    const std::vector<float> silence(kChunk * 2);
    for (std::uint64_t i = 0; i < chunks; ++i) {
      ASSERT_EQ(writer->sinkData(silence.data(), kChunk * 8), kChunk * 8);
    }
    const float last[2] = {kMark, -kMark};
    ASSERT_EQ(writer->sinkData(last, sizeof last), sizeof last);
    ASSERT_TRUE(writer->close());
  }

  static void expectReadBack() {
    const auto reader = OVAudioFileReader::initWithFile("long");
    ASSERT_NE(reader, nullptr);
    EXPECT_EQ(reader->fileSizeInFrames(), static_cast<std::int64_t>(kChunks * kChunk + 1));
    std::uint64_t all = 0;
    std::vector<float> last;
    while (const std::uint32_t frames = reader->readFrameChunkWithSize(kChunk)) {
      all += frames;
      const auto* const samples = static_cast<const float*>(reader->exposeBuffer());
      last.assign(samples + (std::size_t{frames} - 1) * 2, samples + std::size_t{frames} * 2);
    }
    EXPECT_EQ(all, kChunks * kChunk + 1);
    EXPECT_THAT(last, testing::ElementsAre(kMark, -kMark));
    EXPECT_FALSE(reader->failed());
  }

  support::InstalledRecordingServices services_;
  support::TestUserAudioFiles storage_;
  platform::Installed<platform::UserAudioFiles>::Scope installation_{storage_};
};

TEST_F(LongAudioFileTest, AWavBeyondFourGigabytesBecomesRf64AndIsReadWhole) {
  write(OVAudioFileWriter::kWave, kChunks);
  EXPECT_EQ(storage_.bytes(16).substr(0, 4), "RF64");
  EXPECT_EQ(storage_.bytes(16).substr(12, 4), "ds64");
  expectReadBack();
  EXPECT_THAT(services_->alerts(), testing::IsEmpty());
}

TEST_F(LongAudioFileTest, ACafBeyondFourGigabytesIsReadWhole) {
  write(OVAudioFileWriter::kCaf, kChunks);
  expectReadBack();
  EXPECT_THAT(services_->alerts(), testing::IsEmpty());
}

}  // namespace
