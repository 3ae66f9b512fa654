#include <gtest/gtest.h>

#include "support/GoodFiles.h"
#include "support/TemporaryFolder.h"
#include "support/programs/AudioFileTools.h"
#include "support/programs/Mpeg4Boxes.h"

namespace {

using support::Edit;
using Length = GoodFile::Length;

constexpr std::uint64_t kFrames = GoodFile::kFrames;
constexpr std::uint64_t kAsDecoded = GoodFile::kAsDecoded;
constexpr std::uint32_t kPriming = 1024;  // frames that ffmpeg's AAC encoder puts before the sound

using Options = std::vector<std::string>;

// The source as ffmpeg encodes it; `before` are options before the input.
std::string encoded(const std::string& suffix, const Options& options, const Options& before = {}) {
  const support::TemporaryFolder folder;
  const std::string source = folder.file("source.wav");
  const std::string file = folder.file("a." + suffix);
  EXPECT_TRUE(support::writeWav(source, goodFileSource()));
  Options command = before;
  command.insert(command.end(), {"-i", source});
  command.insert(command.end(), options.begin(), options.end());
  command.push_back(file);
  EXPECT_EQ(support::ffmpeg(command), "");
  return support::fileBytes(file);
}

GoodFile file(const std::string& name, const std::string& suffix,
              const std::function<std::string()>& bytes, std::uint64_t frames = kFrames,
              Length length = Length::exact) {
  return {name, "a." + suffix,
          [bytes](const std::string& path) { ASSERT_TRUE(support::writeBytes(path, bytes())); },
          frames, length};
}

Options finelyTimed(const std::string& codec) {
  return {"-c:a", codec, "-movie_timescale", "44100"};
}

// As a MOV file; its first box says that it is an MP4 file.
std::string mp4OfSamples() {
  Options options = finelyTimed("pcm_s16le");
  options.insert(options.end(), {"-brand", "mp42"});
  return encoded("mov", options);
}

void addMpeg4(std::vector<GoodFile>& all) {
  const Options aac = finelyTimed("aac");
  all.push_back(file("M4aWithCoarseTimes", "m4a", [] { return encoded("m4a", {"-c:a", "aac"}); }));
  all.push_back(file("M4aWhoseIndexComesFirst", "m4a", [aac] {
    Options options = aac;
    options.insert(options.end(), {"-movflags", "faststart"});
    return encoded("m4a", options);
  }));
  all.push_back(file("MovOfSamplesWithADelay", "mov", [] {
    return encoded("mov", finelyTimed("pcm_s16le"), {"-itsoffset", "2"});
  }));
  all.push_back(file(
      "Mp4InFragments", "mp4",
      [] {
        return encoded("mp4", {"-c:a", "aac", "-movflags", "frag_keyframe+empty_moov",
                               "-frag_duration", "100000"});
      },
      kAsDecoded, Length::unknown));
  all.push_back(file("MovOfSamples", "mov", [] { return encoded("mov", {"-c:a", "pcm_s24le"}); }));
  all.push_back(file("Mp4OfSamples", "mp4", [] { return mp4OfSamples(); }));
  all.push_back(file(
      "Mp4OfSamplesTrimmed", "mp4",
      [] {
        return support::withEdits(mp4OfSamples(), {{7777, 5000}});
      },
      7777));
  all.push_back(file("M4aOfAlac", "m4a", [] { return encoded("m4a", {"-c:a", "alac"}); }));
}

void addEdited(std::vector<GoodFile>& all) {
  const auto edited = [&all](const std::string& name, const std::string& suffix,
                             const std::string& codec, const std::vector<Edit>& edits,
                             std::uint64_t frames) {
    all.push_back(file(
        name, suffix,
        [=] { return support::withEdits(encoded(suffix, finelyTimed(codec)), edits); }, frames));
  };
  constexpr std::int32_t kStart = kPriming;
  edited("M4aWithADelayBeforeItsSound", "m4a", "aac", {{88'200, -1}, {kFrames, kStart}}, kFrames);
  edited("M4aTrimmedAtItsStart", "m4a", "aac", {{15'001, kStart + 5000}}, 15'001);
  edited("M4aTrimmedAtItsEnd", "m4a", "aac", {{7777, kStart}}, 7777);
  edited("M4aTrimmedAtBothEnds", "m4a", "aac", {{7777, kStart + 5000}}, 7777);
  edited("M4aTrimmedInTheMiddle", "m4a", "aac", {{5000, kStart}, {4000, kStart + 15'000}}, 9000);
  edited("M4aTrimmedWithoutAnEnd", "m4a", "aac", {{0, kStart}}, kFrames);
  edited("MovOfSamplesWithADelayAndATrim", "mov", "pcm_s16le", {{88'200, -1}, {7777, 5000}}, 7777);
  edited("MovOfSamplesTrimmedAtItsEnd", "mov", "pcm_s16le", {{7777, 0}}, 7777);
  edited("MovOfSamplesTrimmedInTheMiddle", "mov", "pcm_s16le", {{3000, 100}, {4000, 12'345}}, 7000);
  edited("AlacTrimmedAtBothEnds", "m4a", "alac", {{7777, 5000}}, 7777);
}

// HE-AAC without anything in its upper band: the encoder knows plain AAC only, so half the rate is
// encoded, and the header says that the decoder doubles it. `config` is what describes the
// encoding.
std::string highEfficiency(int channels, const std::string& config) {
  std::string bytes = encoded("m4a", {"-c:a", "aac", "-ar", "22050", "-ac",
                                      std::to_string(channels), "-movie_timescale", "22050"});
  const std::string plain =
      (channels == 1 ? "\x13\x88" : "\x13\x90") + std::string("\x56\xE5\0", 3);
  const std::size_t place = bytes.find(plain);
  EXPECT_NE(place, std::string::npos);
  return place == std::string::npos ? bytes : bytes.replace(place, plain.size(), config);
}

void addHighEfficiency(std::vector<GoodFile>& all) {
  constexpr std::uint64_t kDoubled = (kFrames / 2 + kFrames % 2) * 2;
  all.push_back(file(
      "HeAacVersion1", "m4a", [] { return highEfficiency(2, std::string("\x2B\x92\x08\0\0", 5)); },
      kDoubled));
  all.push_back(file(
      "HeAacVersion2", "m4a", [] { return highEfficiency(1, std::string("\xEB\x8A\x08\0\0", 5)); },
      kDoubled));
}

// A tag of version 2.3 with a picture.
std::string id3WithPicture(std::size_t pictureBytes) {
  const auto size = [](std::size_t value) {
    std::string bytes;
    for (int shift = 21; shift >= 0; shift -= 7) {
      bytes.push_back(static_cast<char>(value >> shift & 0x7FU));
    }
    return bytes;
  };
  const std::string picture = std::string("\0image/jpeg\0\3\0", 14) +
                              std::string(pictureBytes, '\xFF');  // as if full of sound
  const std::string frame = "APIC" + support::number(static_cast<std::uint32_t>(picture.size())) +
                            std::string(2, '\0') + picture;
  return std::string("ID3\3\0\0", 6) + size(frame.size()) + frame;
}

std::string id3AtTheEnd() {
  return "TAG" + std::string(125, 't');
}

void addBareStreams(std::vector<GoodFile>& all) {
  const auto mp3 = [] { return encoded("mp3", {"-c:a", "libmp3lame", "-id3v2_version", "0"}); };
  const auto untagged = [] {
    return encoded("mp3",
                   {"-c:a", "libmp3lame", "-q:a", "4", "-write_xing", "0", "-id3v2_version", "0"});
  };
  const auto adts = [] { return encoded("aac", {"-c:a", "aac"}); };
  all.push_back(file("Mp3", "mp3", mp3));
  all.push_back(file("Mp3WithAPictureOf10Megabytes", "mp3",
                     [mp3] { return id3WithPicture(10'000'000) + mp3(); }));
  all.push_back(file("Mp3WithTagsAtItsEnd", "mp3",
                     [mp3] { return mp3() + "APETAGEX" + std::string(60, 'a') + id3AtTheEnd(); }));
  all.push_back(file("Mp3WithoutALength", "mp3", untagged, kAsDecoded, Length::estimated));
  all.push_back(file(
      "Mp3Joined", "mp3", [mp3] { return mp3() + mp3() + mp3(); }, kAsDecoded, Length::estimated));
  all.push_back(file(
      "Mp3JoinedWithTheirTags", "mp3",
      [mp3] {
        const std::string one = id3WithPicture(1000) + mp3() + id3AtTheEnd();
        return one + one;
      },
      kAsDecoded, Length::estimated));
  all.push_back(file("Adts", "aac", adts, kAsDecoded, Length::estimated));
  all.push_back(file(
      "AdtsWithTags", "aac", [adts] { return id3WithPicture(5000) + adts() + id3AtTheEnd(); },
      kAsDecoded, Length::estimated));
}

}  // namespace

std::vector<GoodFile> goodEncodedFiles() {
  std::vector<GoodFile> all;
  addMpeg4(all);
  addEdited(all);
  addHighEfficiency(all);
  addBareStreams(all);
  return all;
}
