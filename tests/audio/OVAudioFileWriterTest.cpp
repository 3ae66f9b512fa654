#include "audio/OVAudioFileWriter.h"

#include <array>
#include <cerrno>
#include <cmath>
#include <cstdint>
#include <filesystem>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include <sys/stat.h>

#include <gmock/gmock.h>

#include "audio/OVAudioFileReader.h"
#include "support/RawAudio.h"
#include "support/TemporaryFolder.h"
#include "support/fakes/RecordingServices.h"
#include "support/fakes/TestUserAudioFiles.h"
#include "support/programs/AudioFileTools.h"

namespace {

using support::Samples;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

constexpr std::array<std::uint32_t, 4> kKinds{OVAudioFileWriter::kWave, OVAudioFileWriter::kAiff,
                                              OVAudioFileWriter::kCaf, OVAudioFileWriter::kAac};
constexpr std::array<const char*, 4> kSuffixes{"wav", "aiff", "caf", "m4a"};

class OVAudioFileWriterTest : public testing::Test {
 protected:
  void SetUp() override { testing::internal::CaptureStderr(); }
  void TearDown() override { testing::internal::GetCapturedStderr(); }

  std::string path(std::uint32_t kind) const {
    return folder_.file(std::string("a.") + kSuffixes.at(kind));
  }

  static std::uint64_t sink(OVAudioFileWriter& writer, const Samples& samples) {
    return writer.sinkData(samples.data(), samples.size() * sizeof(float));
  }

  std::string written(std::uint32_t kind, const Samples& samples) const {
    const auto writer = OVAudioFileWriter::initWithFile(path(kind), kind);
    EXPECT_NE(writer, nullptr);
    EXPECT_EQ(sink(*writer, samples), samples.size() * sizeof(float));
    EXPECT_TRUE(writer->close());
    return path(kind);
  }

  static Samples readBack(const std::string& file) {
    const auto reader = OVAudioFileReader::initWithFile(file);
    Samples all;
    while (const std::uint32_t frames =
               reader != nullptr ? reader->readFrameChunkWithSize(264'600) : 0) {
      const auto* const samples = static_cast<const float*>(reader->exposeBuffer());
      all.insert(all.end(), samples, samples + std::size_t{frames} * 2);
    }
    return all;
  }

  support::TemporaryFolder folder_;
  support::InstalledRecordingServices services_;
};

TEST_F(OVAudioFileWriterTest, SevenBytesAreNoFrameAndTwentyAreTwo) {
  for (const std::uint32_t kind : kKinds) {
    const auto writer = OVAudioFileWriter::initWithFile(path(kind), kind);
    ASSERT_NE(writer, nullptr);
    const std::array<float, 5> data{0.5F, -0.5F, 0.25F, -0.25F, 1.0F};
    EXPECT_EQ(writer->sinkData(data.data(), 7), 0U);
    EXPECT_EQ(writer->sinkData(data.data(), 0), 0U);
    EXPECT_EQ(writer->sinkData(data.data(), 20), 16U);
    EXPECT_TRUE(writer->close());
    EXPECT_EQ(readBack(path(kind)).size(), 4U) << kind;
  }
  EXPECT_THAT(services_->alerts(), IsEmpty());
}

TEST_F(OVAudioFileWriterTest, EveryOneOfThe65536ValuesOf16BitsComesBack) {
  std::vector<std::int16_t> values;
  Samples samples;
  for (int value = -32768; value <= 32767; ++value) {
    values.push_back(static_cast<std::int16_t>(value));
    values.push_back(static_cast<std::int16_t>(-1 - value));
    samples.push_back(static_cast<float>(value) / 32768.0F);
    samples.push_back(static_cast<float>(-1 - value) / 32768.0F);
  }
  for (const std::uint32_t kind :
       {OVAudioFileWriter::kWave, OVAudioFileWriter::kAiff, OVAudioFileWriter::kCaf}) {
    const std::string file = written(kind, samples);
    EXPECT_EQ(support::decoded16ByFfmpeg(file), values) << kind;
    EXPECT_EQ(readBack(file), samples) << kind;
  }
}

TEST_F(OVAudioFileWriterTest, SoxReadsTheSameSamples) {
  const Samples samples = support::noise16(30'000, 3);
  for (const std::uint32_t kind : {OVAudioFileWriter::kWave, OVAudioFileWriter::kAiff}) {
    EXPECT_EQ(support::decodedBySox(written(kind, samples)), samples) << kind;
  }
}

TEST_F(OVAudioFileWriterTest, OtherSamplesAreRoundedToTheNearest) {
  const Samples samples{1.4F / 32768,  -1.4F / 32768, 1.6F / 32768,
                        -1.6F / 32768, 0.4F / 32768,  -0.4F / 32768};
  EXPECT_THAT(support::decoded16ByFfmpeg(written(OVAudioFileWriter::kWave, samples)),
              testing::ElementsAre(1, -1, 2, -2, 0, 0));
}

TEST_F(OVAudioFileWriterTest, SamplesBeyondFullScaleAreFullScaleAndThoseNotFiniteAreSilence) {
  constexpr float kNoNumber = std::numeric_limits<float>::quiet_NaN();
  constexpr float kInfinity = std::numeric_limits<float>::infinity();
  const Samples samples{1.0F, -1.0F,     1.5F,       -1.5F,     1e30F,      -1e30F,
                        1e6F, kNoNumber, -kNoNumber, kInfinity, -kInfinity, 0.5F};
  for (const std::uint32_t kind :
       {OVAudioFileWriter::kWave, OVAudioFileWriter::kAiff, OVAudioFileWriter::kCaf}) {
    EXPECT_THAT(
        support::decoded16ByFfmpeg(written(kind, samples)),
        testing::ElementsAre(32767, -32768, 32767, -32768, 32767, -32768, 32767, 0, 0, 0, 0, 16384))
        << kind;
  }
}

TEST_F(OVAudioFileWriterTest, AacBearsSamplesThatAreNotFinite) {
  Samples samples = support::tune(1.0);
  samples[1000] = std::numeric_limits<float>::quiet_NaN();
  samples[20'001] = std::numeric_limits<float>::infinity();
  samples[30'000] = -std::numeric_limits<float>::infinity();
  samples[40'000] = 1e30F;
  const std::string file = written(OVAudioFileWriter::kAac, samples);
  EXPECT_EQ(readBack(file).size(), samples.size());
  EXPECT_THAT(services_->alerts(), IsEmpty());
}

TEST_F(OVAudioFileWriterTest, PiecesOfAnySizeGiveTheSameFile) {
  const Samples samples = support::tune(0.7);
  for (const std::uint32_t kind : kKinds) {
    const std::string whole = support::fileBytes(written(kind, samples));
    const auto writer = OVAudioFileWriter::initWithFile(path(kind), kind);
    std::size_t frame = 0;
    for (std::size_t piece = 1; frame < samples.size() / 2; piece = piece * 3 + 1) {
      const std::size_t count = std::min(piece, samples.size() / 2 - frame);
      ASSERT_EQ(writer->sinkData(samples.data() + frame * 2, count * 8), count * 8);
      frame += count;
    }
    ASSERT_TRUE(writer->close());
    EXPECT_EQ(support::fileBytes(path(kind)), whole) << kind;
  }
}

// The error of `read` relative to `samples` shifted by `shift` frames: power of the difference over
// power of the signal.
double relativeError(const Samples& samples, const Samples& read, std::ptrdiff_t shift) {
  double difference = 0;
  double signal = 0;
  const auto frames = static_cast<std::ptrdiff_t>(samples.size() / 2);
  for (std::ptrdiff_t i = 4096; i < frames - 4096; ++i) {
    for (std::ptrdiff_t channel = 0; channel < 2; ++channel) {
      const double wanted = samples[static_cast<std::size_t>(2 * (i + shift) + channel)];
      const double got = read[static_cast<std::size_t>(2 * i + channel)];
      difference += (wanted - got) * (wanted - got);
      signal += wanted * wanted;
    }
  }
  return difference / signal;
}

TEST_F(OVAudioFileWriterTest, AacComesBackInPlaceAndNearlyTheSame) {
  const Samples samples = support::tune(2.0);
  const Samples read = readBack(written(OVAudioFileWriter::kAac, samples));
  ASSERT_EQ(read.size(), samples.size());
  const double inPlace = relativeError(samples, read, 0);
  EXPECT_LT(inPlace, 1e-3);
  for (const std::ptrdiff_t shift : {-2112, -1024, -3, -1, 1, 3, 1024, 2112}) {
    EXPECT_GT(relativeError(samples, read, shift), 4 * inPlace) << shift;
  }
}

class OVAudioFileWriterLengthTest : public OVAudioFileWriterTest,
                                    public testing::WithParamInterface<std::size_t> {};

TEST_P(OVAudioFileWriterLengthTest, IsExactInEveryKind) {
  const std::size_t frames = GetParam();
  const Samples samples = support::noise16(frames, 4);
  for (const std::uint32_t kind : kKinds) {
    const std::string file = written(kind, samples);
    const auto reader = OVAudioFileReader::initWithFile(file);
    ASSERT_NE(reader, nullptr);
    EXPECT_EQ(reader->fileSizeInFrames(), static_cast<std::int64_t>(frames)) << kind;
    EXPECT_EQ(readBack(file).size() / 2, frames) << kind;
  }
  EXPECT_THAT(services_->alerts(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Frames, OVAudioFileWriterLengthTest,
                         testing::Values(1, 2, 960, 1023, 1024, 1025, 2047, 2048, 2049, 4097, 8191,
                                         8192, 8193, 44'100, 354'198));

TEST_F(OVAudioFileWriterTest, WithoutAnyFrameTheFileIsStillWhole) {
  for (const std::uint32_t kind : kKinds) {
    const auto writer = OVAudioFileWriter::initWithFile(path(kind), kind);
    ASSERT_NE(writer, nullptr);
    EXPECT_TRUE(writer->close());
    const auto reader = OVAudioFileReader::initWithFile(path(kind));
    ASSERT_NE(reader, nullptr) << kind;
    // No program can open an MPEG-4 file without a frame.
    EXPECT_EQ(reader->fileSizeInFrames(), kind == OVAudioFileWriter::kAac ? 1 : 0);
  }
  EXPECT_THAT(services_->alerts(), IsEmpty());
}

TEST_F(OVAudioFileWriterTest, AnExistingFileIsReplacedAndKeepsItsPermissionsAndItsPlace) {
  for (const std::uint32_t kind : kKinds) {
    ASSERT_TRUE(support::writeBytes(path(kind), std::string(1'000'000, 'x')));
    ASSERT_EQ(::chmod(path(kind).c_str(), 0640), 0);
    struct stat before = {};
    ASSERT_EQ(::stat(path(kind).c_str(), &before), 0);
    written(kind, support::noise16(100, 1));
    struct stat after = {};
    ASSERT_EQ(::stat(path(kind).c_str(), &after), 0);
    EXPECT_EQ(after.st_mode & 07777U, 0640U);
    EXPECT_EQ(after.st_ino, before.st_ino);
    EXPECT_LT(after.st_size, 100'000);
  }
}

TEST_F(OVAudioFileWriterTest, ClosesInItsDestructor) {
  const Samples samples = support::noise16(5000, 1);
  for (const std::uint32_t kind : kKinds) {
    {
      const auto writer = OVAudioFileWriter::initWithFile(path(kind), kind);
      ASSERT_NE(writer, nullptr);
      ASSERT_GT(sink(*writer, samples), 0U);
    }
    EXPECT_EQ(readBack(path(kind)).size(), samples.size()) << kind;
  }
}

TEST_F(OVAudioFileWriterTest, AfterClosingItTakesNothingAndSaysTheSameAgain) {
  const auto writer = OVAudioFileWriter::initWithFile(path(0), 0);
  const Samples samples = support::noise16(10, 1);
  ASSERT_GT(sink(*writer, samples), 0U);
  EXPECT_TRUE(writer->close());
  EXPECT_TRUE(writer->close());
  EXPECT_EQ(sink(*writer, samples), 0U);
  EXPECT_TRUE(writer->close());
  EXPECT_EQ(readBack(path(0)), samples);
}

TEST_F(OVAudioFileWriterTest, ItTellsItsNameKindAndFormat) {
  const auto writer = OVAudioFileWriter::initWithFile(path(2), 2);
  ASSERT_NE(writer, nullptr);
  EXPECT_EQ(writer->fileName(), path(2));
  EXPECT_EQ(writer->outputFormat(), 2U);
  EXPECT_EQ(writer->format(), platform::kWorkingFormat);
}

TEST_F(OVAudioFileWriterTest, AnyOtherKindFailsAndIsToldOnce) {
  for (const std::uint32_t kind : {4U, 5U, std::numeric_limits<std::uint32_t>::max()}) {
    services_->clear();
    EXPECT_EQ(OVAudioFileWriter::initWithFile(path(0), kind), nullptr);
    EXPECT_THAT(services_->alerts(), SizeIs(1));
  }
}

TEST_F(OVAudioFileWriterTest, OnlyAiffHasALimitAndItIsJustBelowFourGigabytes) {
  EXPECT_EQ(OVAudioFileWriter::maximumFrames(OVAudioFileWriter::kWave), std::nullopt);
  EXPECT_EQ(OVAudioFileWriter::maximumFrames(OVAudioFileWriter::kCaf), std::nullopt);
  EXPECT_EQ(OVAudioFileWriter::maximumFrames(OVAudioFileWriter::kAac), std::nullopt);
  EXPECT_EQ(OVAudioFileWriter::maximumFrames(7), std::nullopt);
  const auto most = OVAudioFileWriter::maximumFrames(OVAudioFileWriter::kAiff);
  ASSERT_TRUE(most.has_value());
  EXPECT_LT(*most * 4, (1ULL << 32) - 100);
  EXPECT_GT(*most * 4, (1ULL << 32) - 10'000);
}

TEST_F(OVAudioFileWriterTest, TheEstimateOfAFilesSizeIsCloseAndNeverTooHighForNoise) {
  constexpr std::uint64_t kFrames = 5 * 44100;
  const auto samples = support::noise16(kFrames, 1);
  for (const std::uint32_t kind : {0U, 1U, 2U, 3U}) {
    const std::string path = folder_.file("noise" + std::to_string(kind));
    const auto writer = OVAudioFileWriter::initWithFile(path, kind);
    const std::uint64_t bytes = samples.size() * sizeof(float);
    ASSERT_EQ(writer->sinkData(samples.data(), bytes), bytes);
    ASSERT_TRUE(writer->close());
    const std::uint64_t size = std::filesystem::file_size(path);
    const std::uint64_t estimate = OVAudioFileWriter::estimatedBytes(kind, kFrames);
    EXPECT_LE(estimate, size) << kind;
    EXPECT_GE(estimate, size / (kind == OVAudioFileWriter::kAac ? 3 : 1) - 8192) << kind;
  }
  EXPECT_EQ(OVAudioFileWriter::estimatedBytes(7, kFrames), 0U);
}

// Failures.

TEST_F(OVAudioFileWriterTest, AFileThatCannotBeMadeIsToldWithTheShownName) {
  const std::string missing = folder_.file("no/such/.orvo-tmp123");
  EXPECT_EQ(OVAudioFileWriter::initWithFile(missing, 0, "/music/My song.wav"), nullptr);
  ASSERT_THAT(services_->alerts(), SizeIs(1));
  EXPECT_EQ(services_->alerts()[0].title, "Core Audio Error");
  EXPECT_EQ(services_->alerts()[0].message,
            "Core Audio returned the error: ExtAudioFileOpen (-43)\n\nThe folder in which “My "
            "song.wav” was to be written is not there. Choose another one.");
}

TEST_F(OVAudioFileWriterTest, AFolderAPipeAndALongNameAreToldAsWhatTheyAre) {
  const std::string folder = folder_.makeFolder("folder.wav");
  const std::string pipe = folder_.file("pipe.wav");
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  for (const auto& [file, words] : std::vector<std::pair<std::string, std::string>>{
           {folder, "is a folder"},
           {pipe, "not an ordinary file"},
           {folder_.file(std::string(300, 'n')), "too long"}}) {
    services_->clear();
    EXPECT_EQ(OVAudioFileWriter::initWithFile(file, 0), nullptr);
    ASSERT_THAT(services_->alerts(), SizeIs(1));
    EXPECT_THAT(services_->alerts()[0].message, HasSubstr(words));
  }
}

class OVAudioFileWriterFullDiskTest : public OVAudioFileWriterTest {
 protected:
  support::TestUserAudioFiles storage_;
  platform::Installed<platform::UserAudioFiles>::Scope installation_{storage_};
};

TEST_F(OVAudioFileWriterFullDiskTest, WhereverItFillsUpIsToldExactlyOnceAndNeverCalledComplete) {
  const Samples samples = support::tune(4.0);
  for (const std::uint32_t kind : kKinds) {
    storage_.fillUpAfter(support::TestUserAudioFiles::kUnlimited);
    {
      const auto writer = OVAudioFileWriter::initWithFile("a", kind);
      ASSERT_GT(sink(*writer, samples), 0U);
      ASSERT_TRUE(writer->close());
    }
    const std::uint64_t size = storage_.size();
    for (const std::uint64_t room : {std::uint64_t{0}, std::uint64_t{1}, std::uint64_t{60},
                                     size / 3, size / 2, size - 1000, size - 1}) {
      services_->clear();
      storage_.fillUpAfter(room);
      const auto writer = OVAudioFileWriter::initWithFile(".tmp", kind, "Song");
      if (writer != nullptr) {
        for (std::size_t frame = 0; frame < samples.size() / 2; frame += 10'000) {
          static_cast<void>(
              writer->sinkData(samples.data() + frame * 2,
                               std::min<std::size_t>(10'000, samples.size() / 2 - frame) * 8));
        }
        EXPECT_FALSE(writer->close()) << kind << " " << room;
        EXPECT_FALSE(writer->close());
        EXPECT_EQ(sink(*writer, samples), 0U);
      }
      ASSERT_THAT(services_->alerts(), SizeIs(1)) << kind << " " << room;
      EXPECT_THAT(services_->alerts()[0].message,
                  HasSubstr("(-34)\n\nThere is not enough room to write “Song”."));
    }
  }
}

TEST_F(OVAudioFileWriterFullDiskTest, AFailedWriteGivesNoneAndLaterOnesAreSilent) {
  const auto writer = OVAudioFileWriter::initWithFile("a.wav", 0);
  ASSERT_NE(writer, nullptr);
  storage_.fillUpAfter(1000, EIO);
  const Samples samples = support::noise16(500'000, 1);
  EXPECT_EQ(sink(*writer, samples), 0U);
  EXPECT_EQ(sink(*writer, samples), 0U);
  ASSERT_THAT(services_->alerts(), SizeIs(1));
  EXPECT_THAT(services_->alerts()[0].message, HasSubstr("file write (-36)"));
}

TEST_F(OVAudioFileWriterFullDiskTest, AFileSizeLimitIsToldAsOne) {
  const auto writer = OVAudioFileWriter::initWithFile("a.wav", 0);
  storage_.fillUpAfter(1000, EFBIG);
  EXPECT_EQ(sink(*writer, support::noise16(500'000, 1)), 0U);
  EXPECT_FALSE(writer->close());
  ASSERT_THAT(services_->alerts(), SizeIs(1));
  EXPECT_THAT(services_->alerts()[0].message, HasSubstr("('big?')\n\n“a.wav” would be larger"));
}

}  // namespace
