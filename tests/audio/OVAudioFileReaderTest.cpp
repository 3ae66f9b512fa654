#include "audio/OVAudioFileReader.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include <sys/stat.h>
#include <unistd.h>

#include <gmock/gmock.h>

#include "platform/base/ApplicationServices.h"
#include "support/RawAudio.h"
#include "support/TemporaryFolder.h"
#include "support/fakes/RecordingServices.h"
#include "support/fakes/TestUserAudioFiles.h"
#include "support/programs/AudioFileTools.h"

namespace {

using support::Samples;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

constexpr std::uint64_t kChunk = 264'600;

class OVAudioFileReaderTest : public testing::Test {
 protected:
  void SetUp() override { testing::internal::CaptureStderr(); }
  void TearDown() override { testing::internal::GetCapturedStderr(); }

  // A WAV file of floats, which must be read back unchanged.
  std::string wav(const std::string& name, const Samples& samples) const {
    std::string path = folder_.file(name);
    EXPECT_TRUE(support::writeWav(path, samples));
    return path;
  }

  static Samples lastRead(const OVAudioFileReader& reader, std::uint32_t frames) {
    const auto* const samples = static_cast<const float*>(reader.exposeBuffer());
    return {samples, samples + std::size_t{frames} * 2};
  }

  static Samples readAll(OVAudioFileReader& reader, std::uint64_t chunk = kChunk) {
    Samples all;
    while (const std::uint32_t frames = reader.readFrameChunkWithSize(chunk)) {
      const Samples part = lastRead(reader, frames);
      all.insert(all.end(), part.begin(), part.end());
    }
    return all;
  }

  support::TemporaryFolder folder_;
  support::InstalledRecordingServices services_;
};

TEST_F(OVAudioFileReaderTest, AFileShorterThanAChunkGivesOneShortReadThenNone) {
  const Samples samples = support::noise(1000, 1);
  const auto reader = OVAudioFileReader::initWithFile(wav("a.wav", samples));
  ASSERT_NE(reader, nullptr);
  EXPECT_EQ(reader->readFrameChunkWithSize(kChunk), 1000U);
  EXPECT_EQ(lastRead(*reader, 1000), samples);
  EXPECT_EQ(reader->readFrameChunkWithSize(kChunk), 0U);
  EXPECT_EQ(reader->readFrameChunkWithSize(kChunk), 0U);
  EXPECT_FALSE(reader->failed());
  EXPECT_THAT(services_->alerts(), IsEmpty());
}

TEST_F(OVAudioFileReaderTest, TheSameChunkSizeReusesTheBufferAndAnotherMakesItAnew) {
  const Samples samples = support::noise(1000, 1);
  const auto reader = OVAudioFileReader::initWithFile(wav("a.wav", samples));
  ASSERT_NE(reader, nullptr);
  EXPECT_EQ(reader->exposeBuffer(), nullptr);
  EXPECT_EQ(reader->bufferSize(), 0U);

  ASSERT_EQ(reader->readFrameChunkWithSize(100), 100U);
  const void* const first = reader->exposeBuffer();
  EXPECT_EQ(reader->bufferSize(), 100U);
  ASSERT_EQ(reader->readFrameChunkWithSize(100), 100U);
  EXPECT_EQ(reader->exposeBuffer(), first);
  EXPECT_EQ(lastRead(*reader, 100), Samples(samples.begin() + 200, samples.begin() + 400));

  ASSERT_EQ(reader->readFrameChunkWithSize(300), 300U);
  EXPECT_EQ(reader->bufferSize(), 300U);
  EXPECT_EQ(lastRead(*reader, 300), Samples(samples.begin() + 400, samples.begin() + 1000));
  ASSERT_EQ(reader->readFrameChunkWithSize(7), 7U);
  EXPECT_EQ(reader->bufferSize(), 7U);
  EXPECT_EQ(lastRead(*reader, 7), Samples(samples.begin() + 1000, samples.begin() + 1014));
}

TEST_F(OVAudioFileReaderTest, AsManyBytesOfTheBufferAsItHasFramesAreClearedBeforeARead) {
  const Samples samples(2 * 150, 0.25F);
  const auto reader = OVAudioFileReader::initWithFile(wav("a.wav", samples));
  ASSERT_NE(reader, nullptr);
  ASSERT_EQ(reader->readFrameChunkWithSize(100), 100U);
  ASSERT_EQ(reader->readFrameChunkWithSize(100), 50U);
  ASSERT_EQ(reader->readFrameChunkWithSize(100), 0U);
  // 100 bytes are 25 samples. The rest still has the content of earlier reads.
  const Samples left = lastRead(*reader, 100);
  EXPECT_EQ(std::count(left.begin(), left.end(), 0.0F), 25);
  EXPECT_THAT(Samples(left.begin(), left.begin() + 25), Each(0.0F));
}

TEST_F(OVAudioFileReaderTest, ChunksOfAnySizeGiveTheSameFrames) {
  const Samples samples = support::noise(3000, 2);
  const std::string path = wav("a.wav", samples);
  for (const std::uint64_t chunk : {1U, 7U, 1023U, 1024U, 2999U, 3000U, 3001U}) {
    const auto reader = OVAudioFileReader::initWithFile(path);
    ASSERT_NE(reader, nullptr);
    EXPECT_EQ(readAll(*reader, chunk), samples) << chunk;
  }
}

TEST_F(OVAudioFileReaderTest, TheFormatIsTheWorkingFormat) {
  const std::string path = folder_.file("a.wav");
  ASSERT_TRUE(support::writeBytes(path, support::wavBytes(8000, 1, 16, std::string(2000, 'x'))));
  const auto reader = OVAudioFileReader::initWithFile(path);
  ASSERT_NE(reader, nullptr);
  EXPECT_EQ(reader->format(), platform::kWorkingFormat);
}

TEST_F(OVAudioFileReaderTest, AMonoFileComesOnBothChannelsAsItStands) {
  const std::string path = folder_.file("a.wav");
  const std::vector<std::int16_t> samples{0, 1, -1, 32767, -32768, 12345};
  ASSERT_TRUE(support::writeBytes(
      path,
      support::wavBytes(44100, 1, 16,
                        {reinterpret_cast<const char*>(samples.data()), samples.size() * 2})));
  const auto reader = OVAudioFileReader::initWithFile(path);
  ASSERT_NE(reader, nullptr);
  Samples expected;
  for (const std::int16_t sample : samples) {
    expected.insert(expected.end(), 2, static_cast<float>(sample) / 32768.0F);
  }
  EXPECT_EQ(reader->fileSizeInFrames(), 6);
  EXPECT_EQ(readAll(*reader), expected);
}

TEST_F(OVAudioFileReaderTest, AFileAtAnotherRateIsDeliveredAt44100WithARoundedLength) {
  struct Case {
    std::uint32_t rate;
    std::size_t frames;
  };
  for (const Case& each :
       {Case{1000, 10}, Case{8000, 801}, Case{22050, 1}, Case{48000, 1}, Case{48000, 48001},
        Case{96000, 7}, Case{192000, 19200}, Case{768000, 76800}}) {
    const std::string path = folder_.file("a.wav");
    ASSERT_TRUE(support::writeBytes(
        path, support::wavBytes(each.rate, 2, 16, std::string(each.frames * 4, '\1'))));
    const auto reader = OVAudioFileReader::initWithFile(path);
    ASSERT_NE(reader, nullptr) << each.rate;
    const std::int64_t expected =
        std::llround(static_cast<double>(each.frames) * 44100.0 / each.rate);
    EXPECT_EQ(reader->fileSizeInFrames(), expected) << each.rate;
    EXPECT_EQ(readAll(*reader).size() / 2, static_cast<std::size_t>(expected)) << each.rate;
  }
}

TEST_F(OVAudioFileReaderTest, ATone48000ArrivesAsTheSameToneInTheSamePlace) {
  constexpr std::size_t kFrames = 48'000;
  Samples tone(kFrames * 2);
  for (std::size_t i = 0; i < kFrames; ++i) {
    const double time = static_cast<double>(i) / 48'000;
    tone[2 * i] = static_cast<float>(0.5 * std::sin(2 * M_PI * 1000 * time));
    tone[2 * i + 1] = static_cast<float>(0.5 * std::cos(2 * M_PI * 15'000 * time));
  }
  const std::string data(reinterpret_cast<const char*>(tone.data()), tone.size() * sizeof(float));
  const std::string path = folder_.file("a.wav");
  ASSERT_TRUE(support::writeBytes(path, support::wavBytes(48'000, 2, 32, data, 3)));
  const auto reader = OVAudioFileReader::initWithFile(path);
  ASSERT_NE(reader, nullptr);
  const Samples read = readAll(*reader);
  ASSERT_EQ(read.size(), 44'100U * 2);
  for (std::size_t i = 2000; i < 42'000; ++i) {  // away from the ends, where the tone is cut off
    const double time = static_cast<double>(i) / 44'100;
    ASSERT_NEAR(read[2 * i], 0.5 * std::sin(2 * M_PI * 1000 * time), 1e-5) << i;
    ASSERT_NEAR(read[2 * i + 1], 0.5 * std::cos(2 * M_PI * 15'000 * time), 1e-5) << i;
  }
}

TEST_F(OVAudioFileReaderTest, SamplesThatAreNotFiniteBecomeSilenceAndSpoilNothingElse) {
  constexpr float kNoNumber = std::numeric_limits<float>::quiet_NaN();
  constexpr float kInfinity = std::numeric_limits<float>::infinity();
  for (const std::uint32_t rate : {44'100U, 48'000U}) {
    Samples samples(2 * 9600, 0.5F);
    samples[2 * 4800] = kNoNumber;
    samples[2 * 4800 + 1] = kInfinity;
    samples[2 * 4801] = -kInfinity;
    const std::string data(reinterpret_cast<const char*>(samples.data()),
                           samples.size() * sizeof(float));
    const std::string path = folder_.file("a.wav");
    ASSERT_TRUE(support::writeBytes(path, support::wavBytes(rate, 2, 32, data, 3)));
    const auto reader = OVAudioFileReader::initWithFile(path);
    ASSERT_NE(reader, nullptr);
    const Samples read = readAll(*reader);
    for (const float sample : read) {
      ASSERT_TRUE(std::isfinite(sample));
    }
    if (rate == 44'100U) {
      EXPECT_EQ(read[2 * 4800], 0.0F);
      EXPECT_EQ(read[2 * 4800 + 1], 0.0F);
      EXPECT_EQ(read[2 * 4801], 0.0F);
      EXPECT_EQ(read[2 * 4801 + 1], 0.5F);
    }
    EXPECT_NEAR(read[2000], 0.5F, 1e-3);
    EXPECT_NEAR(read[read.size() - 2000], 0.5F, 1e-3);
  }
}

TEST_F(OVAudioFileReaderTest, ADoubleBeyondAFloatBecomesSilence) {
  const std::vector<double> samples{1e300, -1e300, 0.5, -0.5};
  const std::string path = folder_.file("a.wav");
  ASSERT_TRUE(support::writeBytes(
      path,
      support::wavBytes(44100, 2, 64,
                        {reinterpret_cast<const char*>(samples.data()), 4 * sizeof(double)}, 3)));
  const auto reader = OVAudioFileReader::initWithFile(path);
  ASSERT_NE(reader, nullptr);
  EXPECT_THAT(readAll(*reader), ElementsAre(0.0F, 0.0F, 0.5F, -0.5F));
}

TEST_F(OVAudioFileReaderTest, SamplesBeyondFullScaleStayAsTheyAre) {
  const Samples samples{1.5F, -3.0F, 1e6F, -1e6F};
  const auto reader = OVAudioFileReader::initWithFile(wav("a.wav", samples));
  ASSERT_NE(reader, nullptr);
  EXPECT_EQ(readAll(*reader), samples);
}

TEST_F(OVAudioFileReaderTest, RewindGivesTheSameFramesToTheBitFromAnyPlace) {
  const std::string source = wav("a.wav", support::tune(1.5));
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{"-c:a", "aac", folder_.file("b.m4a")},
        std::vector<std::string>{"-c:a", "libmp3lame", folder_.file("b.mp3")},
        std::vector<std::string>{"-ar", "48000", folder_.file("b.wav")}}) {
    std::vector<std::string> command{"-i", source};
    command.insert(command.end(), arguments.begin(), arguments.end());
    ASSERT_EQ(support::ffmpeg(command), "");
    const auto reader = OVAudioFileReader::initWithFile(arguments.back());
    ASSERT_NE(reader, nullptr);
    const Samples first = readAll(*reader);
    ASSERT_FALSE(first.empty());
    reader->rewind();
    EXPECT_EQ(readAll(*reader, 1000), first) << arguments.back();
    reader->rewind();
    ASSERT_EQ(reader->readFrameChunkWithSize(12'345), 12'345U);
    reader->rewind();
    EXPECT_EQ(readAll(*reader), first) << arguments.back();
  }
}

TEST_F(OVAudioFileReaderTest, AClosedReaderGivesNothingAndSaysNothing) {
  const auto reader = OVAudioFileReader::initWithFile(wav("a.wav", support::noise(1000, 1)));
  ASSERT_NE(reader, nullptr);
  ASSERT_EQ(reader->readFrameChunkWithSize(10), 10U);
  reader->close();
  reader->close();
  EXPECT_EQ(reader->readFrameChunkWithSize(10), 0U);
  EXPECT_EQ(reader->fileSizeInFrames(), 0);
  EXPECT_NE(reader->exposeBuffer(), nullptr);
  reader->rewind();
  EXPECT_FALSE(reader->failed());
  EXPECT_THAT(services_->alerts(), IsEmpty());
}

TEST_F(OVAudioFileReaderTest, ARequestForNoFramesGivesNoneAndDoesNotEndTheFile) {
  const Samples samples = support::noise(10, 1);
  const auto reader = OVAudioFileReader::initWithFile(wav("a.wav", samples));
  ASSERT_NE(reader, nullptr);
  EXPECT_EQ(reader->readFrameChunkWithSize(0), 0U);
  EXPECT_EQ(readAll(*reader), samples);
}

TEST_F(OVAudioFileReaderTest, AChunkThatNoMemoryHoldsIsToldOnceAndGivesNothing) {
  const auto reader = OVAudioFileReader::initWithFile(wav("a.wav", support::noise(10, 1)));
  ASSERT_NE(reader, nullptr);
  EXPECT_EQ(reader->readFrameChunkWithSize(std::numeric_limits<std::uint64_t>::max()), 0U);
  EXPECT_EQ(reader->readFrameChunkWithSize(10), 0U);
  EXPECT_TRUE(reader->failed());
  ASSERT_THAT(services_->alerts(), SizeIs(1));
  EXPECT_THAT(services_->alerts()[0].message, HasSubstr("ExtAudioFileRead (-108)"));
}

TEST_F(OVAudioFileReaderTest, AFileOfNoFramesOpensAndGivesNone) {
  const std::string path = folder_.file("a.wav");
  ASSERT_TRUE(support::writeBytes(path, support::wavBytes(44100, 2, 16, {})));
  const auto reader = OVAudioFileReader::initWithFile(path);
  ASSERT_NE(reader, nullptr);
  EXPECT_EQ(reader->fileSizeInFrames(), 0);
  EXPECT_EQ(reader->readFrameChunkWithSize(kChunk), 0U);
  EXPECT_FALSE(reader->failed());
  EXPECT_THAT(services_->alerts(), IsEmpty());
}

TEST_F(OVAudioFileReaderTest, AFileDeletedAfterOpeningIsReadToItsEndAndRewound) {
  const Samples samples = support::noise(50'000, 1);
  const std::string path = wav("a.wav", samples);
  const auto reader = OVAudioFileReader::initWithFile(path);
  ASSERT_NE(reader, nullptr);
  ::unlink(path.c_str());
  EXPECT_EQ(readAll(*reader), samples);
  reader->rewind();
  EXPECT_EQ(readAll(*reader), samples);
}

// The medium.

TEST_F(OVAudioFileReaderTest, AFailingMediumIsToldOnceAfterWhatCameBeforeIt) {
  support::TestUserAudioFiles storage;
  const platform::Installed<platform::UserAudioFiles>::Scope installation(storage);
  storage.setBytes(support::wavBytes(44100, 2, 16, std::string(800'000, 'x')));
  storage.failReadsFrom(400'044);
  const auto reader = OVAudioFileReader::initWithFile("a/pulled.wav");
  ASSERT_NE(reader, nullptr);
  EXPECT_EQ(readAll(*reader).size() / 2, 100'000U);
  EXPECT_TRUE(reader->failed());
  EXPECT_EQ(reader->readFrameChunkWithSize(kChunk), 0U);
  reader->rewind();
  EXPECT_FALSE(reader->failed());
  EXPECT_EQ(readAll(*reader).size() / 2, 100'000U);
  EXPECT_TRUE(reader->failed());
  ASSERT_THAT(services_->alerts(), SizeIs(1));
  EXPECT_EQ(services_->alerts()[0].title, "Core Audio Error");
  EXPECT_EQ(services_->alerts()[0].message,
            "Core Audio returned the error: ExtAudioFileRead (-36)\n\nThe medium on which "
            "“pulled.wav” is stored reported an error. What could be read before it is kept.");
}

// A file of which some reads fail, by their number.
class FailingReadsTest : public OVAudioFileReaderTest {
 protected:
  FailingReadsTest() {
    std::string sound(800'000, '\0');
    for (std::size_t i = 0; i < sound.size(); ++i) {
      sound[i] = static_cast<char>(i * 31 + i / 251);
    }
    storage_.setBytes(support::wavBytes(44100, 2, 16, sound));
    const auto reader = OVAudioFileReader::initWithFile("a.wav");
    whole_ = readAll(*reader);
    reads_ = storage_.reads();
  }

  void failReads(std::uint64_t first, std::uint64_t count) {
    storage_.beforeReads([this, from = storage_.reads() + first, count](std::uint64_t number) {
      storage_.failReadsFrom(number - from < count ? 0 : support::TestUserAudioFiles::kUnlimited);
    });
  }

  support::TestUserAudioFiles storage_;
  platform::Installed<platform::UserAudioFiles>::Scope installation_{storage_};
  Samples whole_;
  std::uint64_t reads_ = 0;
};

TEST_F(FailingReadsTest, AReadThatFailsOnceIsTriedAgain) {
  ASSERT_GT(reads_, 5U);
  for (std::uint64_t read = 0; read < reads_; ++read) {
    failReads(read, 1);
    const auto reader = OVAudioFileReader::initWithFile("a.wav");
    ASSERT_NE(reader, nullptr) << read;
    EXPECT_TRUE(readAll(*reader) == whole_) << read;
  }
  EXPECT_THAT(services_->alerts(), IsEmpty());
}

// FFmpeg would go on in the middle of a frame.
TEST_F(FailingReadsTest, NothingFollowsAReadThatFailsTwice) {
  for (std::uint64_t read = reads_ / 2; read < reads_; ++read) {
    failReads(read, 2);
    const auto reader = OVAudioFileReader::initWithFile("a.wav");
    ASSERT_NE(reader, nullptr) << read;
    const Samples samples = readAll(*reader);
    EXPECT_TRUE(reader->failed()) << read;
    ASSERT_LE(samples.size(), whole_.size());
    EXPECT_TRUE(std::equal(samples.begin(), samples.end(), whole_.begin())) << read;
  }
}

TEST_F(OVAudioFileReaderTest, AnotherFileOpenedAfterAFailureIsReadAndToldOfLikeTheFirst) {
  support::TestUserAudioFiles storage;
  const platform::Installed<platform::UserAudioFiles>::Scope installation(storage);
  storage.setBytes(support::wavBytes(44100, 2, 16, std::string(800'000, 'x')));
  storage.failReadsFrom(400'044);
  const auto reader = OVAudioFileReader::initWithFile("a/pulled.wav");
  ASSERT_NE(reader, nullptr);
  readAll(*reader);
  ASSERT_TRUE(reader->failed());
  storage.failReadsFrom(support::TestUserAudioFiles::kUnlimited);
  ASSERT_TRUE(reader->openFile("b/good.wav"));
  EXPECT_FALSE(reader->failed());
  EXPECT_EQ(readAll(*reader).size() / 2, 200'000U);
  EXPECT_THAT(services_->alerts(), SizeIs(1));
  storage.failOpening(EACCES);
  EXPECT_FALSE(reader->openFile("c/secret.wav"));
  ASSERT_THAT(services_->alerts(), SizeIs(2));
  EXPECT_THAT(services_->alerts()[1].message, HasSubstr("secret.wav"));
}

TEST_F(OVAudioFileReaderTest, AMediumThatFailsWhileOpeningIsTold) {
  support::TestUserAudioFiles storage;
  const platform::Installed<platform::UserAudioFiles>::Scope installation(storage);
  storage.setBytes(support::wavBytes(44100, 2, 16, std::string(8000, 'x')));
  storage.failReadsFrom(0);
  EXPECT_EQ(OVAudioFileReader::initWithFile("a.wav"), nullptr);
  ASSERT_THAT(services_->alerts(), SizeIs(1));
  EXPECT_THAT(services_->alerts()[0].message, HasSubstr("ExtAudioFileOpen (-36)\n\nThe medium"));
}

TEST_F(OVAudioFileReaderTest, OnTheThreadOfAnAudioQueueTheAlertIsPosted) {
  const platform::PostedAlertsScope onQueueThread;
  EXPECT_EQ(OVAudioFileReader::initWithFile(folder_.file("missing.wav")), nullptr);
  EXPECT_THAT(services_->alerts(), IsEmpty());
  EXPECT_THAT(services_->postedAlerts(), SizeIs(1));
}

// Cancelling.

class OVAudioFileReaderCancelTest : public OVAudioFileReaderTest {
 protected:
  std::shared_ptr<std::atomic<bool>> cancelled_ = std::make_shared<std::atomic<bool>>(false);
  support::TestUserAudioFiles storage_;
  platform::Installed<platform::UserAudioFiles>::Scope installation_{storage_};
};

TEST_F(OVAudioFileReaderCancelTest, SetBeforehandOpensNothingAndSaysNothing) {
  storage_.setBytes(support::wavBytes(44100, 2, 16, std::string(8000, 'x')));
  cancelled_->store(true);
  EXPECT_EQ(OVAudioFileReader::initWithFile("a.wav", cancelled_), nullptr);
  EXPECT_EQ(storage_.reads(), 0U);
  EXPECT_THAT(services_->alerts(), IsEmpty());
}

TEST_F(OVAudioFileReaderCancelTest, DuringAnEndlessOpeningEndsIt) {
  // Petabytes of zeros; every 8 of them look like a chunk header.
  storage_.setBytes(support::wavBytes(44100, 2, 16, std::string(8000, 'x')), 1ULL << 50);
  storage_.beforeReads([this](std::uint64_t number) {
    if (number == 20) {
      cancelled_->store(true);
    }
  });
  EXPECT_EQ(OVAudioFileReader::initWithFile("a.wav", cancelled_), nullptr);
  EXPECT_LE(storage_.reads(), 21U);
  EXPECT_THAT(services_->alerts(), IsEmpty());
}

TEST_F(OVAudioFileReaderCancelTest, DuringAReadGivesNothingMoreAndSaysNothing) {
  storage_.setBytes(support::wavBytes(44100, 2, 16, std::string(40'000'000, 'x')));
  const auto reader = OVAudioFileReader::initWithFile("a.wav", cancelled_);
  ASSERT_NE(reader, nullptr);
  ASSERT_EQ(reader->readFrameChunkWithSize(1000), 1000U);
  const std::uint64_t before = storage_.reads();
  storage_.beforeReads([&, this](std::uint64_t number) {
    if (number == before + 3) {
      cancelled_->store(true);
    }
  });
  EXPECT_EQ(reader->readFrameChunkWithSize(10'000'000), 0U);
  EXPECT_LE(storage_.reads(), before + 4);
  EXPECT_EQ(reader->readFrameChunkWithSize(1000), 0U);
  EXPECT_FALSE(reader->failed());
  EXPECT_THAT(services_->alerts(), IsEmpty());
}

TEST_F(OVAudioFileReaderCancelTest, AHeaderWithoutEndOpensWithinItsDeadline) {
  const std::string sound(8000, 'x');
  storage_.setBytes(support::wavBytes(44100, 2, 16, sound), 1ULL << 50);
  const auto reader = OVAudioFileReader::initWithFile("a.wav", cancelled_);
  ASSERT_NE(reader, nullptr);
  EXPECT_EQ(reader->fileSizeInFrames(), 2000);
  EXPECT_EQ(reader->readFrameChunkWithSize(kChunk), 2000U);
}

}  // namespace
