// Whatever a person can drop on a window: each ends in one clear sentence or in what can be had of
// it, soon and without eating memory.
#include "audio/OVAudioFileReader.h"

#include <chrono>
#include <cmath>
#include <cstring>
#include <ctime>
#include <fstream>
#include <functional>
#include <limits>
#include <ostream>
#include <string>
#include <vector>

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <gmock/gmock.h>

#include "support/AudioFileTools.h"
#include "support/RawAudio.h"
#include "support/RecordingServices.h"
#include "support/TemporaryFolder.h"
#include "support/TestAudioFileStorage.h"

namespace {

using support::Samples;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

constexpr std::uint64_t kAnyNumber = std::numeric_limits<std::uint64_t>::max();
constexpr std::int64_t kMegabyte = 1 << 20;

// The checkers keep freed memory for a while, and slow everything down. The time is the
// processor's.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr std::chrono::milliseconds kPatience{20'000};
constexpr std::int64_t kMostMemory = 1000 * kMegabyte;
#else
constexpr std::chrono::milliseconds kPatience{2000};
constexpr std::int64_t kMostMemory = 100 * kMegabyte;
#endif

struct Case {
  std::string name;  // of the test
  std::string file;
  std::function<void(const std::string& path)> make;
  std::uint64_t frames = 0;  // that are delivered; 0: none, kAnyNumber: one or more
  std::string told = {};     // part of the one alert; empty: none is shown
};

std::ostream& operator<<(std::ostream& stream, const Case& each) {
  return stream << each.name;
}

void write(const std::string& path, const std::string& bytes) {
  ASSERT_TRUE(support::writeBytes(path, bytes));
}

std::string sound(std::size_t frames) {
  const Samples samples = support::noise16(frames, 5);
  std::string bytes;
  for (const float sample : samples) {
    const auto value = static_cast<std::uint16_t>(static_cast<int>(sample * 32768.0F));
    bytes.push_back(static_cast<char>(value & 0xFFU));
    bytes.push_back(static_cast<char>(value >> 8));
  }
  return bytes;
}

std::string wav(std::size_t frames) {
  return support::wavBytes(44100, 2, 16, sound(frames));
}

// The same with other lengths in its header.
std::string wavThatPromises(std::uint32_t bytes, std::size_t frames) {
  std::string file = wav(frames);
  for (const std::size_t place : {std::size_t{4}, std::size_t{40}}) {
    for (std::size_t i = 0; i < 4; ++i) {
      file[place + i] = static_cast<char>((bytes >> (8 * i)) & 0xFFU);
    }
  }
  return file;
}

std::string text(std::size_t bytes) {
  std::string words;
  while (words.size() < bytes) {
    words += "To be heard, or not to be heard.\n";
  }
  return words.substr(0, bytes);
}

// One second of sound, encoded by its suffix.
std::string encoded(const std::string& suffix, const std::vector<std::string>& options = {}) {
  const support::TemporaryFolder folder;
  const std::string source = folder.file("source.wav");
  const std::string file = folder.file("a." + suffix);
  EXPECT_TRUE(support::writeWav(source, support::tune(1)));
  std::vector<std::string> command{"-i", source};
  command.insert(command.end(), options.begin(), options.end());
  command.push_back(file);
  EXPECT_EQ(support::ffmpeg(command), "");
  return support::fileBytes(file);
}

std::string half(const std::string& bytes) {
  return bytes.substr(0, bytes.size() / 2 + 1);
}

// Made in the test that needs them: every other test makes the list of cases, too.
std::string zeros() {
  return std::string(50 * kMegabyte, '\0');
}

std::vector<Case> cases() {
  const std::string unknown = "is not a sound file that can be read, or it is damaged.";
  const std::string damaged = "is damaged or was cut off. What could be read of it is kept.";
  std::vector<Case> all;
  for (const std::string suffix :
       {"caf", "aif", "aiff", "wav", "mp3", "mp4", "m4a", "m4r", "aac"}) {
    const std::string letters = static_cast<char>(suffix[0] - 32) + suffix.substr(1);
    all.push_back({"TextNamed" + letters, "notes." + suffix,
                   [](const std::string& path) { write(path, text(300)); }, 0, "notes."});
    all.push_back({"LongTextNamed" + letters, "notes." + suffix,
                   [](const std::string& path) { write(path, text(300'000)); }, 0, "notes."});
    all.push_back({"EmptyNamed" + letters, "nothing." + suffix,
                   [](const std::string& path) { write(path, {}); }, 0, "” is empty."});
    all.push_back({"ZerosNamed" + letters, "zeros." + suffix,
                   [](const std::string& path) { write(path, std::string(100'000, '\0')); }, 0,
                   "zeros."});
  }
  const auto add = [&all](Case each) { all.push_back(std::move(each)); };
  add({"OneByte", "a.wav", [](const std::string& path) { write(path, "R"); }, 0, unknown});
  add({"Folder", "folder.wav",
       [](const std::string& path) { ASSERT_EQ(::mkdir(path.c_str(), 0700), 0); }, 0,
       "“folder.wav” is a folder."});
  add({"Pipe", "pipe.wav",
       [](const std::string& path) { ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0); }, 0,
       "“pipe.wav” is not an ordinary file"});
  add({"Device", "null.wav",
       [](const std::string& path) { ASSERT_EQ(::symlink("/dev/zero", path.c_str()), 0); }, 0,
       "is not an ordinary file"});
  add({"Missing", "gone.wav", [](const std::string&) {}, 0, "“gone.wav” is no longer there."});
  add({"LinkToNowhere", "link.wav",
       [](const std::string& path) { ASSERT_EQ(::symlink("/no/such", path.c_str()), 0); }, 0,
       "“link.wav” is no longer there."});
  add({"LinkToItself", "link.wav",
       [](const std::string& path) { ASSERT_EQ(::symlink(path.c_str(), path.c_str()), 0); }, 0,
       "link.wav"});
  add({"CutOffInTheHeader", "a.wav",
       [](const std::string& path) { write(path, wav(100).substr(0, 30)); }, 0, unknown});
  add({"CutOffWav", "a.wav",
       [](const std::string& path) { write(path, wav(10'000).substr(0, 44 + 4 * 5000)); }, 5000,
       "“a.wav” " + damaged});
  add({"CutOffWavInsideAFrame", "a.wav",
       [](const std::string& path) { write(path, wav(10'000).substr(0, 44 + 4 * 5000 + 3)); }, 5000,
       damaged});
  add({"CutOffAiff", "a.aiff", [](const std::string& path) { write(path, half(encoded("aiff"))); },
       kAnyNumber, damaged});
  add({"CutOffCaf", "a.caf", [](const std::string& path) { write(path, half(encoded("caf"))); },
       kAnyNumber, damaged});
  add({"CutOffM4a", "a.m4a", [](const std::string& path) { write(path, half(encoded("m4a"))); }, 0,
       unknown});
  add({"CutOffM4aThatBeginsWithItsIndex", "a.m4a",
       [](const std::string& path) {
         write(path, half(encoded("m4a", {"-movflags", "faststart"})));
       },
       kAnyNumber, damaged});
  add({"CutOffMp3", "a.mp3", [](const std::string& path) { write(path, half(encoded("mp3"))); },
       kAnyNumber, damaged});
  add({"CutOffMp3WithoutTag", "a.mp3",
       [](const std::string& path) {
         write(path, half(encoded("mp3", {"-write_xing", "0"})));
       },
       kAnyNumber});
  add({"CutOffAac", "a.aac", [](const std::string& path) { write(path, half(encoded("aac"))); },
       kAnyNumber});
  add({"DamagedInTheMiddleOfAnMp3", "a.mp3",
       [](const std::string& path) {
         std::string bytes = encoded("mp3");
         bytes.replace(bytes.size() / 2, 3000, text(3000));
         write(path, bytes);
       },
       kAnyNumber, damaged});
  add({"DamagedInTheMiddleOfAnM4a", "a.m4a",
       [](const std::string& path) {
         std::string bytes = encoded("m4a", {"-movflags", "faststart"});
         bytes.replace(bytes.size() / 2, 2000, std::string(2000, '\xFF'));
         write(path, bytes);
       },
       kAnyNumber, damaged});
  add({"Promises4GigabytesOver1Kilobyte", "a.wav",
       [](const std::string& path) { write(path, wavThatPromises(0xFFFFFFF0, 250)); }, 250});
  add({"Promises1GigabyteOver1Kilobyte", "a.wav",
       [](const std::string& path) { write(path, wavThatPromises(0x40000000, 250)); }, 250,
       damaged});
  add({"Promises3GigabytesOver1Kilobyte", "a.wav",
       [](const std::string& path) { write(path, wavThatPromises(0xC0000000, 250)); }, 250,
       damaged});
  add({"PipedWithALengthOf2Gigabytes", "a.wav",
       [](const std::string& path) { write(path, wavThatPromises(0x7FFFFFDB, 250)); }, 250});
  add({"PipedWithoutALength", "a.wav",
       [](const std::string& path) { write(path, wavThatPromises(0xFFFFFFFF, 250)); }, 250});
  add({"PipedWithALengthOf0", "a.wav",
       [](const std::string& path) { write(path, wavThatPromises(0, 250)); }, 250});
  add({"WavBefore50MegabytesOfZeros", "a.wav",
       [](const std::string& path) { write(path, wav(250) + zeros()); }, 250});
  add({"Mp3Before50MegabytesOfZeros", "a.mp3",
       [](const std::string& path) { write(path, encoded("mp3") + zeros()); }, kAnyNumber});
  add({"AacBefore50MegabytesOfZeros", "a.aac",
       [](const std::string& path) { write(path, encoded("aac") + zeros()); }, kAnyNumber});
  add({"M4aBefore50MegabytesOfZeros", "a.m4a",
       [](const std::string& path) { write(path, encoded("m4a") + zeros()); }, kAnyNumber});
  add({"WavInAFileOf8Gigabytes", "a.wav",
       [](const std::string& path) {
         write(path, wav(250));
         ASSERT_EQ(::truncate(path.c_str(), 8LL << 30), 0);
       },
       250});
  add({"ThirtyTwoChannels", "a.wav",
       [](const std::string& path) {
         write(path, support::wavBytes(44100, 32, 16, sound(32'000)));
       },
       0, "is encoded in a way that cannot be read. Up to 8 channels"});
  add({"NoChannels", "a.wav",
       [](const std::string& path) { write(path, support::wavBytes(44100, 0, 16, sound(100))); }, 0,
       "a.wav"});
  add({"OneHertz", "a.wav",
       [](const std::string& path) { write(path, support::wavBytes(1, 2, 16, sound(44'100))); }, 0,
       "is encoded in a way that cannot be read."});
  add({"NoRate", "a.wav",
       [](const std::string& path) { write(path, support::wavBytes(0, 2, 16, sound(100))); }, 0,
       "a.wav"});
  add({"FourGigahertz", "a.wav",
       [](const std::string& path) {
         write(path, support::wavBytes(0xFFFFFFFF, 2, 16, sound(100)));
       },
       0, "a.wav"});
  add({"SamplesThatAreNoNumbers", "a.wav",
       [](const std::string& path) {
         const Samples samples(2000, std::numeric_limits<float>::quiet_NaN());
         write(path, support::wavBytes(44100, 2, 32,
                                       {reinterpret_cast<const char*>(samples.data()), 8000}, 3));
       },
       1000});
  add({"APlaylist", "list.wav",
       [](const std::string& path) { write(path, "#EXTM3U\n#EXTINF:1,x\n/etc/passwd\n"); }, 0,
       unknown});
  add({"AListOfFilesToJoin", "list.wav",
       [](const std::string& path) { write(path, "ffconcat version 1.0\nfile '/etc/passwd'\n"); },
       0, unknown});
  add({"ADamagedFileWithANewlineInItsName", "two\nlines.wav",
       [](const std::string& path) { write(path, text(300)); }, 0, "“two lines.wav” " + unknown});
  add({"ADamagedFileWithPercentSignsInItsName", "100%s %1 %n.wav",
       [](const std::string& path) { write(path, text(300)); }, 0, "“100%s %1 %n.wav” " + unknown});
  add({"ADamagedFileInOtherLetters", "Lied Größe 歌 песня.wav",
       [](const std::string& path) { write(path, text(300)); }, 0,
       "“Lied Größe 歌 песня.wav” " + unknown});
  add({"AGoodFileWithAnOddName", "100%s\n歌 file:x.wav",
       [](const std::string& path) { write(path, wav(100)); }, 100});
  add({"AGoodFileWhoseNameIsNoUtf8", "a\xFF\xFE.wav",
       [](const std::string& path) { write(path, wav(100)); }, 100});
  add({"ANameOf255Bytes", std::string(251, 'n') + ".wav",
       [](const std::string& path) { write(path, wav(100)); }, 100});
  add({"ANameOf300Bytes", std::string(296, 'n') + ".wav", [](const std::string&) {}, 0,
       "is too long."});
  return all;
}

class OVAudioFileReaderBadInputTest : public testing::Test {
 protected:
  void SetUp() override { testing::internal::CaptureStderr(); }
  void TearDown() override { testing::internal::GetCapturedStderr(); }

  // Processor time of this process; a busy machine must not fail a test.
  static std::chrono::milliseconds workDone() {
    return std::chrono::milliseconds(std::clock() / (CLOCKS_PER_SEC / 1000));
  }

  // Kilobytes that the process had at its peak.
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

class BadInput : public OVAudioFileReaderBadInputTest, public testing::WithParamInterface<Case> {};

TEST_P(BadInput, EndsSoonAndClearly) {
  const Case& each = GetParam();
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
    if (each.frames != kAnyNumber) {
      EXPECT_EQ(frames, each.frames);
    }
    EXPECT_EQ(reader->failed(), !each.told.empty());
    EXPECT_EQ(reader->readFrameChunkWithSize(264'600), 0U);
  }

  EXPECT_LT(workDone() - start, kPatience);
  EXPECT_LT((peakMemory() - memoryBefore) * 1024, kMostMemory);
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

INSTANTIATE_TEST_SUITE_P(Files, BadInput, testing::ValuesIn(cases()),
                         [](const testing::TestParamInfo<Case>& each) { return each.param.name; });

TEST_F(OVAudioFileReaderBadInputTest, WhatIsNoSoundFileIsToldAsAFileFormatError) {
  const std::string path = folder_.file("notes.wav");
  ASSERT_TRUE(support::writeBytes(path, text(300)));
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
  support::TestAudioFileStorage storage;
  const platform::AudioFileStorageInstallation installation(storage);
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
  // The header as a program writes it for 5 GB, over a file that is mostly a hole.
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
