#include "support/BadFiles.h"

#include <limits>

#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "support/RawAudio.h"
#include "support/TemporaryFolder.h"
#include "support/programs/AudioFileTools.h"

std::ostream& operator<<(std::ostream& stream, const BadFile& each) {
  return stream << each.name;
}

namespace {

using support::Samples;

constexpr std::size_t kMegabyte = 1 << 20;
constexpr std::uint64_t kAnyNumber = BadFile::kAnyNumber;

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

// The same with different lengths in its header.
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

// One second of sound, encoded as the suffix says.
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

// Created only in the test that needs them, since every test creates the list of cases.
std::string zeros() {
  return std::string(50 * kMegabyte, '\0');
}

}  // namespace

std::vector<BadFile> badFiles() {
  const std::string unknown = "is not a sound file that can be read, or it is damaged.";
  const std::string damaged = "is damaged or was cut off. What could be read of it is kept.";
  std::vector<BadFile> all;
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
  const auto add = [&all](BadFile each) { all.push_back(std::move(each)); };
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
  add({"Missing", "gone.wav", [](const std::string&) {}, 0, "There is no file “gone.wav”."});
  add({"LinkToNowhere", "link.wav",
       [](const std::string& path) { ASSERT_EQ(::symlink("/no/such", path.c_str()), 0); }, 0,
       "There is no file “link.wav”."});
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
  // FFmpeg gives errnos for these, which no system call has told.
  add({"A57ByteWavWithAnEndlessFormat", "a.wav",
       [](const std::string& path) {
         write(path, support::wavBytes(44100, 2, 16, std::string(13, 'x')).replace(17, 1, "\x1F"));
       },
       0, "“a.wav” " + unknown});
  add({"DamagedIndexOfAnM4a", "a.m4a",
       [](const std::string& path) {
         std::string bytes = encoded("m4a");
         write(path, bytes.replace(bytes.find("stts") + 8, 1, "\xFF"));
       },
       0, unknown});
  add({"CutOffAiffWithAWrongLength", "a.aiff",
       [](const std::string& path) {
         std::string bytes = half(encoded("aiff"));
         bytes[7] = static_cast<char>(bytes[7] + 3);
         write(path, bytes);
       },
       kAnyNumber, damaged});
  add({"AFlippedBitInThePacketTableOfACaf", "a.caf",
       [](const std::string& path) {
         std::string bytes = encoded("caf", {"-c:a", "alac"});
         bytes[bytes.size() - 3] = static_cast<char>(bytes[bytes.size() - 3] | 0x80);
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
