// Any file that a user may drop on a window: each yields one clear sentence or its readable audio,
// in limited time and memory.
#include "audio/OVAudioFileReader.h"

#include <chrono>
#include <cmath>
#include <ctime>
#include <string>
#include <vector>

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <gmock/gmock.h>

#include "support/BadFiles.h"
#include "support/RawAudio.h"
#include "support/Sanitizers.h"
#include "support/TemporaryFolder.h"
#include "support/fakes/RecordingServices.h"
#include "support/fakes/TestUserAudioFiles.h"
#include "support/programs/AudioFileTools.h"

namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

constexpr std::int64_t kMegabyte = 1 << 20;

// Sanitizers delay the reuse of freed memory and slow everything down. Limits processor time.
constexpr std::chrono::seconds kPatience{support::kAnySanitizer ? 20 : 2};
constexpr std::int64_t kMaxMemory = (support::kAnySanitizer ? 1000 : 100) * kMegabyte;

std::string wav(std::size_t frames) {
  return support::wavBytes(44100, 2, 16, std::string(4 * frames, 'x'));
}

class OVAudioFileReaderBadInputTest : public testing::Test {
 protected:
  void SetUp() override { testing::internal::CaptureStderr(); }
  void TearDown() override { testing::internal::GetCapturedStderr(); }

  // Processor time of this process; a busy machine must not fail a test.
  static std::chrono::milliseconds workDone() {
    return std::chrono::milliseconds(std::clock() / (CLOCKS_PER_SEC / 1000));
  }

  // The process's peak memory in kilobytes.
  static long peakMemory() {
    struct rusage usage = {};
    ::getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
  }

  static std::uint64_t readAll(OVAudioFileReader& reader) {
    std::uint64_t all = 0;
    while (const std::uint32_t frames = reader.readFrameChunkWithSize(264'600)) {
      const auto* const samples = static_cast<const float*>(reader.exposeBuffer());
      for (std::size_t i = 0; i < std::size_t{frames} * 2; ++i) {
        EXPECT_TRUE(std::isfinite(samples[i]));
      }
      all += frames;
    }
    return all;
  }

  support::TemporaryFolder folder_;
  support::InstalledRecordingServices services_;
};

class OVAudioFileReaderBadInputFileTest : public OVAudioFileReaderBadInputTest,
                                          public testing::WithParamInterface<BadFile> {};

TEST_P(OVAudioFileReaderBadInputFileTest, EndsSoonAndClearly) {
  const BadFile& each = GetParam();
  const std::string path = folder_.file(each.file);
  ASSERT_NO_FATAL_FAILURE(each.make(path));
  const long memoryBefore = peakMemory();
  const auto start = workDone();

  const auto reader = OVAudioFileReader::initWithFile(path);
  if (each.frames == 0) {
    EXPECT_EQ(reader, nullptr);
  } else {
    ASSERT_NE(reader, nullptr);
    EXPECT_GE(reader->fileSizeInFrames(), 0);
    const std::uint64_t frames = readAll(*reader);
    EXPECT_GT(frames, 0U);
    if (each.frames != BadFile::kAnyNumber) {
      EXPECT_EQ(frames, each.frames);
    }
    EXPECT_EQ(reader->failed(), !each.told.empty());
    EXPECT_EQ(reader->readFrameChunkWithSize(264'600), 0U);
  }

  EXPECT_LT(workDone() - start, kPatience);
  EXPECT_LT((peakMemory() - memoryBefore) * 1024, kMaxMemory);
  const auto alerts = services_->alerts();
  if (each.told.empty()) {
    EXPECT_THAT(alerts, IsEmpty());
  } else {
    ASSERT_THAT(alerts, SizeIs(1));
    EXPECT_THAT(alerts[0].message, HasSubstr(each.told));
    EXPECT_TRUE(alerts[0].title == "File Format Error" || alerts[0].title == "Core Audio Error");
  }
  EXPECT_LE(services_->consoleLines().size(), 50U);
}

INSTANTIATE_TEST_SUITE_P(Files, OVAudioFileReaderBadInputFileTest, testing::ValuesIn(badFiles()),
                         [](const testing::TestParamInfo<BadFile>& each) {
                           return each.param.name;
                         });

TEST_F(OVAudioFileReaderBadInputTest, WhatIsNoSoundFileIsToldAsAFileFormatError) {
  const std::string path = folder_.file("notes.wav");
  ASSERT_TRUE(support::writeBytes(path, "To be heard, or not to be heard.\n"));
  EXPECT_EQ(OVAudioFileReader::initWithFile(path), nullptr);
  ASSERT_THAT(services_->alerts(), SizeIs(1));
  EXPECT_EQ(services_->alerts()[0].title, "File Format Error");
  EXPECT_EQ(services_->alerts()[0].message,
            "The file is of an unsupported format.\n\n“notes.wav” is not a sound file that can be "
            "read, or it is damaged.");
}

TEST_F(OVAudioFileReaderBadInputTest, AnUnreadableFileIsTold) {
  const std::string path = folder_.file("secret.wav");
  ASSERT_TRUE(support::writeBytes(path, wav(100)));
  ASSERT_EQ(::chmod(path.c_str(), 0), 0);
  if (::access(path.c_str(), R_OK) == 0) {
    GTEST_SKIP() << "this user may read everything";
  }
  EXPECT_EQ(OVAudioFileReader::initWithFile(path), nullptr);
  ASSERT_THAT(services_->alerts(), SizeIs(1));
  EXPECT_THAT(services_->alerts()[0].message,
              HasSubstr("You are not allowed to read “secret.wav”"));
}

TEST_F(OVAudioFileReaderBadInputTest, WhateverTheSystemRefusesIsToldInWords) {
  support::TestUserAudioFiles storage;
  const platform::Installed<platform::UserAudioFiles>::Scope installation(storage);
  for (const auto& [error, words] :
       std::vector<std::pair<int, std::string>>{{EACCES, "You are not allowed to read “a.wav”."},
                                                {EMFILE, "because too many files are open."},
                                                {EIO, "reported an error."},
                                                {ENOMEM, "not enough memory"},
                                                {ELOOP, "is not a sound file that can be read"}}) {
    services_->clear();
    storage.failOpening(error);
    EXPECT_EQ(OVAudioFileReader::initWithFile("a.wav"), nullptr);
    ASSERT_THAT(services_->alerts(), SizeIs(1));
    EXPECT_THAT(services_->alerts()[0].message, HasSubstr(words));
  }
}

TEST_F(OVAudioFileReaderBadInputTest, AFileThatShrinksWhileItIsReadGivesWhatIsLeft) {
  const std::string path = folder_.file("a.wav");
  ASSERT_TRUE(support::writeBytes(path, wav(500'000)));
  const auto reader = OVAudioFileReader::initWithFile(path);
  ASSERT_NE(reader, nullptr);
  ASSERT_EQ(reader->readFrameChunkWithSize(1000), 1000U);
  ASSERT_EQ(::truncate(path.c_str(), 44 + 4 * 300'000), 0);
  EXPECT_EQ(readAll(*reader), 299'000U);
  EXPECT_TRUE(reader->failed());
  EXPECT_THAT(services_->alerts(), SizeIs(1));
}

TEST_F(OVAudioFileReaderBadInputTest, ALongFileBeyondFourGigabytesIsReadWhole) {
  // A program's header for 5 GB, in a file that is mostly a hole.
  const std::string small = folder_.file("small.wav");
  const std::string path = folder_.file("large.wav");
  ASSERT_TRUE(support::writeBytes(small, wav(1000)));
  ASSERT_EQ(
      support::ffmpeg({"-i", small, "-c", "copy", "-rf64", "always", "-fflags", "+bitexact", path}),
      "");
  std::string header = support::fileBytes(path);
  ASSERT_EQ(header.substr(0, 4), "RF64");
  const std::size_t sizes = header.find("ds64") + 8;
  const std::size_t data = header.find("data") + 8;
  constexpr std::uint64_t kDataBytes = 5'000'000'000;
  const auto put = [&header](std::size_t place, std::uint64_t value) {
    for (std::size_t i = 0; i < 8; ++i) {
      header[place + i] = static_cast<char>((value >> (8 * i)) & 0xFFU);
    }
  };
  put(sizes, kDataBytes + data - 8);
  put(sizes + 8, kDataBytes);
  put(sizes + 16, kDataBytes / 4);
  ASSERT_TRUE(support::writeBytes(path, header.substr(0, data)));
  ASSERT_EQ(::truncate(path.c_str(), static_cast<off_t>(data + kDataBytes)), 0);

  const auto reader = OVAudioFileReader::initWithFile(path);
  ASSERT_NE(reader, nullptr);
  EXPECT_EQ(reader->fileSizeInFrames(), static_cast<std::int64_t>(kDataBytes / 4));
  EXPECT_EQ(reader->readFrameChunkWithSize(264'600), 264'600U);
  EXPECT_THAT(services_->alerts(), IsEmpty());
}

}  // namespace
