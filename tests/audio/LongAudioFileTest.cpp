// Files beyond 4 GB, in a storage without zeros: a few seconds of work, hardly any memory.
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "audio/OVAudioFileReader.h"
#include "audio/OVAudioFileWriter.h"
#include "support/fakes/RecordingServices.h"
#include "support/fakes/TestUserAudioFiles.h"
#include "support/programs/AudioFileTools.h"

namespace {

constexpr std::uint64_t kChunk = 1 << 20;                     // frames
constexpr std::uint64_t kChunks = (1ULL << 32) / 4 / kChunk;  // exactly 4 GB of 16-bit samples
constexpr std::size_t kFrameBytes = 4;                        // in 16 bits
constexpr float kMark = 0.5F;  // of the last frame; all between it and the first are silent

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

  // A 16-bit WAV whose header counts its bytes modulo 4 GiB: silence between two marked frames.
  void writeWrappedWav(std::uint64_t frames) {
    const auto bytes = static_cast<std::uint32_t>(frames * kFrameBytes);
    ASSERT_LT(bytes, frames * kFrameBytes) << "nothing wraps";
    std::string header = support::wavBytes(44100, 2, 16, {});
    const std::string mark("\x00\x40\x00\xC0", kFrameBytes);  // kMark, -kMark
    for (std::size_t i = 0; i < 4; ++i) {
      header[4 + i] = static_cast<char>(((bytes + 36) >> (8 * i)) & 0xFFU);
      header[40 + i] = static_cast<char>((bytes >> (8 * i)) & 0xFFU);
    }
    const auto file = storage_.createForWriting("long");
    ASSERT_TRUE(file);
    const std::string start = header + mark;
    const std::uint64_t last = header.size() + (frames - 1) * kFrameBytes;
    ASSERT_EQ(file->writeAt(start.data(), start.size(), 0).byteCount, start.size());
    ASSERT_EQ(file->writeAt(mark.data(), mark.size(), last).byteCount, mark.size());
  }

  static void expectReadBack(std::uint64_t length = kChunks * kChunk + 1, float first = 0.0F) {
    const auto reader = OVAudioFileReader::initWithFile("long");
    ASSERT_NE(reader, nullptr);
    EXPECT_EQ(reader->fileSizeInFrames(), static_cast<std::int64_t>(length));
    EXPECT_FALSE(reader->isFileSizeEstimated());
    std::uint64_t all = 0;
    std::vector<float> last;
    while (const std::uint32_t frames = reader->readFrameChunkWithSize(kChunk)) {
      const auto* const samples = static_cast<const float*>(reader->exposeBuffer());
      if (all == 0) {
        EXPECT_THAT(std::vector<float>(samples, samples + 2), testing::ElementsAre(first, -first));
      }
      all += frames;
      last.assign(samples + (std::size_t{frames} - 1) * 2, samples + std::size_t{frames} * 2);
    }
    EXPECT_EQ(all, length);
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

TEST_F(LongAudioFileTest, AWavWhoseLengthHasWrappedIsReadWholeWithoutAnAlert) {
  constexpr std::uint64_t kFrames = kChunks * kChunk + 1000;
  ASSERT_NO_FATAL_FAILURE(writeWrappedWav(kFrames));
  expectReadBack(kFrames, kMark);
  EXPECT_THAT(services_->alerts(), testing::IsEmpty());
}

}  // namespace
