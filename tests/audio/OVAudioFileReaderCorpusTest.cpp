// Small real files of all readable kinds, made by ffmpeg and sox and compared with their decoding.
#include "audio/OVAudioFileReader.h"

#include <algorithm>
#include <cmath>
#include <ostream>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "support/RawAudio.h"
#include "support/TemporaryFolder.h"
#include "support/fakes/RecordingServices.h"
#include "support/programs/AudioFileTools.h"

namespace {

using support::Samples;
using testing::IsEmpty;

constexpr const char* kMonoToBoth = "pan=stereo|c0=c0|c1=c0";
constexpr const char* kTo44100 =
    "aresample=44100:resampler=soxr:precision=28:cutoff=0.95:internal_sample_fmt=fltp";
constexpr const char* kMonoTo44100 =
    "pan=stereo|c0=c0|c1=c0,aresample=44100:resampler=soxr:precision=28:cutoff=0.95:"
    "internal_sample_fmt=fltp";
constexpr const char* kMixDown = "aresample=ochl=stereo:internal_sample_fmt=fltp";

// The expected length, compared with what ffmpeg's decoder delivers.
enum class Length {
  asDelivered,  // as ffmpeg delivers and the file declares
  asSource,     // the source's, without the decoder's padding
  notDeclared,  // the length before decoding is only a hint
  estimated,    // as ffmpeg delivers; exact at the end
};

struct Kind {
  std::string name;                    // of the test
  std::string file;                    // created file
  std::vector<std::string> arguments;  // of ffmpeg, between the source and the file
  std::string filter = {};             // ffmpeg's conversion to the working format
  double tolerance = 0;                // of a sample; 0 for bit-identical
  Length length = Length::asDelivered;
};

std::ostream& operator<<(std::ostream& stream, const Kind& kind) {
  return stream << kind.name;
}

std::vector<Kind> kinds() {
  return {
      {"Wav16", "a.wav", {"-c:a", "pcm_s16le"}},
      {"Wav8", "a.wav", {"-c:a", "pcm_u8"}},
      {"Wav24", "a.wav", {"-c:a", "pcm_s24le"}},
      {"Wav32", "a.wav", {"-c:a", "pcm_s32le"}},
      {"WavFloat", "a.wav", {"-c:a", "pcm_f32le"}},
      {"WavDouble", "a.wav", {"-c:a", "pcm_f64le"}},
      {"WavALaw", "a.wav", {"-c:a", "pcm_alaw"}},
      {"WavMuLaw", "a.wav", {"-c:a", "pcm_mulaw"}},
      {"WavAdpcm", "a.wav", {"-c:a", "adpcm_ima_wav"}, {}, 0, Length::notDeclared},
      {"WavMono", "a.wav", {"-ac", "1"}, kMonoToBoth},
      {"WavSurround", "a.wav", {"-ac", "6"}, kMixDown, 1e-6},
      {"WavQuad", "a.wav", {"-ac", "4"}, kMixDown, 1e-6},
      {"WavRf64", "a.wav", {"-c:a", "pcm_s16le", "-rf64", "always"}},
      {"W64", "a.w64", {"-c:a", "pcm_s24le"}},
      {"Wav8kHz", "a.wav", {"-ar", "8000"}, kTo44100, 1e-6},
      {"Wav8kHzMono", "a.wav", {"-ar", "8000", "-ac", "1"}, kMonoTo44100, 1e-6},
      {"Wav11kHz", "a.wav", {"-ar", "11025"}, kTo44100, 1e-6},
      {"Wav32kHz", "a.wav", {"-ar", "32000"}, kTo44100, 1e-6},
      {"Wav48kHz", "a.wav", {"-ar", "48000"}, kTo44100, 1e-6},
      {"Wav96kHz24", "a.wav", {"-ar", "96000", "-c:a", "pcm_s24le"}, kTo44100, 1e-6},
      {"Wav192kHz", "a.wav", {"-ar", "192000", "-c:a", "pcm_f32le"}, kTo44100, 1e-6},
      {"Aiff16", "a.aiff", {"-c:a", "pcm_s16be"}},
      {"Aif24", "a.aif", {"-f", "aiff", "-c:a", "pcm_s24be"}},
      {"AiffCLittleEndian", "a.aif", {"-f", "aiff", "-c:a", "pcm_s16le"}},
      {"AiffFloat", "a.aiff", {"-c:a", "pcm_f32be"}},
      {"Caf16", "a.caf", {"-c:a", "pcm_s16le"}},
      {"CafFloatBigEndian", "a.caf", {"-c:a", "pcm_f32be"}},
      {"CafAlac", "a.caf", {"-c:a", "alac"}, {}, 0, Length::notDeclared},
      {"M4aAlac", "a.m4a", {"-c:a", "alac"}, {}, 0, Length::asSource},
      {"M4aAac", "a.m4a", {"-c:a", "aac", "-movie_timescale", "44100"}, {}, 0, Length::asSource},
      {"M4rAac",
       "a.m4r",
       {"-f", "ipod", "-c:a", "aac", "-movie_timescale", "44100"},
       {},
       0,
       Length::asSource},
      {"Mp4Aac", "a.mp4", {"-c:a", "aac", "-movie_timescale", "44100"}, {}, 0, Length::asSource},
      {"Mp4FastStart",
       "a.mp4",
       {"-c:a", "aac", "-movie_timescale", "44100", "-movflags", "faststart"},
       {},
       0,
       Length::asSource},
      {"Mp4WithMp3", "a.mp4", {"-c:a", "libmp3lame"}, {}, 0, Length::notDeclared},
      {"Mp4Fragmented",
       "a.mp4",
       {"-c:a", "aac", "-movflags", "frag_keyframe+empty_moov"},
       {},
       0,
       Length::notDeclared},
      {"M4aMono48kHz",
       "a.m4a",
       {"-c:a", "aac", "-ar", "48000", "-ac", "1"},
       kMonoTo44100,
       1e-6,
       Length::notDeclared},
      {"AacAdts", "a.aac", {"-c:a", "aac"}, {}, 0, Length::estimated},
      {"AacAdtsMono22kHz",
       "a.aac",
       {"-c:a", "aac", "-ar", "22050", "-ac", "1"},
       kMonoTo44100,
       1e-6,
       Length::estimated},
      {"Mp3WithLameTag", "a.mp3", {"-c:a", "libmp3lame", "-b:a", "128k"}, {}, 0, Length::asSource},
      {"Mp3Vbr", "a.mp3", {"-c:a", "libmp3lame", "-q:a", "4"}, {}, 0, Length::asSource},
      {"Mp3WithoutTag",
       "a.mp3",
       {"-c:a", "libmp3lame", "-q:a", "4", "-write_xing", "0"},
       {},
       0,
       Length::estimated},
      {"Mp3Mono", "a.mp3", {"-c:a", "libmp3lame", "-ac", "1"}, kMonoToBoth, 0, Length::asSource},
      {"Mp3At16kHz", "a.mp3", {"-c:a", "libmp3lame", "-ar", "16000"}, kTo44100, 1e-6},
      {"Mp3NamedWav", "wrong.wav", {"-f", "mp3", "-c:a", "libmp3lame"}, {}, 0, Length::asSource},
      {"WavNamedMp3", "wrong.mp3", {"-f", "wav", "-c:a", "pcm_s16le"}},
      {"M4aWithoutSuffix",
       "noSuffix",
       {"-f", "ipod", "-c:a", "aac", "-movie_timescale", "44100"},
       {},
       0,
       Length::asSource},
  };
}

class OVAudioFileReaderCorpusTest : public testing::Test {
 protected:
  static constexpr std::size_t kFrames = 50'001;

  void SetUp() override {
    testing::internal::CaptureStderr();
    source_ = folder_.file("source.wav");
    samples_ = support::tune(2);
    samples_.resize(kFrames * 2);
    ASSERT_TRUE(support::writeWav(source_, samples_));
  }
  void TearDown() override { testing::internal::GetCapturedStderr(); }

  static Samples readAll(OVAudioFileReader& reader) {
    Samples all;
    while (const std::uint32_t frames = reader.readFrameChunkWithSize(20'000)) {
      const auto* const samples = static_cast<const float*>(reader.exposeBuffer());
      all.insert(all.end(), samples, samples + std::size_t{frames} * 2);
    }
    return all;
  }

  static void expectNear(const Samples& read, const Samples& decoded, std::size_t frames,
                         double tolerance) {
    ASSERT_GE(read.size(), frames * 2);
    ASSERT_GE(decoded.size(), frames * 2);
    double worst = 0;
    std::size_t where = 0;
    for (std::size_t i = 0; i < frames * 2; ++i) {
      const double difference = std::fabs(static_cast<double>(read[i]) - decoded[i]);
      if (!(difference <= worst)) {
        worst = difference;
        where = i / 2;
      }
    }
    EXPECT_LE(worst, tolerance) << "worst in frame " << where;
  }

  support::TemporaryFolder folder_;
  support::InstalledRecordingServices services_;
  std::string source_;
  Samples samples_;
};

class OVAudioFileReaderCorpusKindTest : public OVAudioFileReaderCorpusTest,
                                        public testing::WithParamInterface<Kind> {};

TEST_P(OVAudioFileReaderCorpusKindTest, IsReadAsFfmpegDecodesIt) {
  const Kind& kind = GetParam();
  const std::string path = folder_.file(kind.file);
  std::vector<std::string> command{"-i", source_};
  command.insert(command.end(), kind.arguments.begin(), kind.arguments.end());
  command.push_back(path);
  ASSERT_EQ(support::ffmpeg(command), "");
  const Samples decoded = support::decodedByFfmpeg(path, kind.filter);
  ASSERT_FALSE(decoded.empty());

  const auto reader = OVAudioFileReader::initWithFile(path);
  ASSERT_NE(reader, nullptr);
  const auto declared = reader->fileSizeInFrames();
  const bool estimated = reader->isFileSizeEstimated();
  const Samples read = readAll(*reader);
  EXPECT_FALSE(reader->failed());
  EXPECT_THAT(services_->alerts(), IsEmpty());

  EXPECT_FALSE(reader->isFileSizeEstimated()) << "at the end";
  if (kind.length == Length::estimated) {
    EXPECT_TRUE(estimated);
    EXPECT_EQ(reader->fileSizeInFrames(), static_cast<std::int64_t>(read.size() / 2));
  } else if (kind.length != Length::notDeclared) {
    EXPECT_EQ(declared, static_cast<std::int64_t>(read.size() / 2));
  }
  if (kind.length == Length::asSource) {
    EXPECT_EQ(read.size() / 2, kFrames);
  } else if (kind.length != Length::notDeclared) {
    EXPECT_EQ(read.size(), decoded.size());
  }
  std::size_t frames = std::min(read.size(), decoded.size()) / 2;
  EXPECT_GT(frames + 2200, kFrames);
  if (kind.tolerance > 0 && read.size() < decoded.size()) {
    frames -= 500;  // the resampler's filter reaches into the missing padding
  }
  expectNear(read, decoded, frames, kind.tolerance);
}

INSTANTIATE_TEST_SUITE_P(Corpus, OVAudioFileReaderCorpusKindTest, testing::ValuesIn(kinds()),
                         [](const testing::TestParamInfo<Kind>& kind) { return kind.param.name; });

TEST_F(OVAudioFileReaderCorpusTest, FilesOfSoxAreReadAsSoxDecodesThem) {
  for (const char* name : {"s.wav", "s.aiff", "s.caf"}) {
    const std::string path = folder_.file(name);
    ASSERT_EQ(support::sox({source_, "-b", "24", path}), "") << name;
    const auto reader = OVAudioFileReader::initWithFile(path);
    ASSERT_NE(reader, nullptr) << name;
    EXPECT_EQ(readAll(*reader), support::decodedBySox(path)) << name;
  }
}

TEST_F(OVAudioFileReaderCorpusTest, CoverArtIsPassedOver) {
  const std::string cover = folder_.file("cover.png");
  ASSERT_EQ(support::ffmpeg({"-f", "lavfi", "-i", "testsrc=s=600x600", "-frames:v", "1", cover}),
            "");
  struct Encoded {
    std::string plain;
    std::string encoder;
    std::vector<std::string> muxer;
  };
  // In milliseconds, the edit lists of both files would be rounded differently.
  for (const auto& [plain, encoder, muxer] :
       {Encoded{"a.mp3", "libmp3lame", {}},
        Encoded{"a.m4a", "aac", {"-movie_timescale", "44100"}}}) {
    const std::string without = folder_.file(plain);
    const std::string with = folder_.file("cover-" + plain);
    std::vector<std::string> first{"-i", source_, "-c:a", encoder};
    first.insert(first.end(), muxer.begin(), muxer.end());
    first.push_back(without);
    ASSERT_EQ(support::ffmpeg(first), "");
    std::vector<std::string> second{
        "-i",   without, "-i", cover,  "-map",           "0",
        "-map", "1",     "-c", "copy", "-disposition:v", "attached_pic"};
    second.insert(second.end(), muxer.begin(), muxer.end());
    second.push_back(with);
    ASSERT_EQ(support::ffmpeg(second), "");
    const auto plainReader = OVAudioFileReader::initWithFile(without);
    const auto reader = OVAudioFileReader::initWithFile(with);
    ASSERT_NE(reader, nullptr);
    ASSERT_NE(plainReader, nullptr);
    const Samples read = readAll(*reader);
    const Samples expected = readAll(*plainReader);
    EXPECT_EQ(read.size(), expected.size()) << plain;
    EXPECT_TRUE(read == expected) << plain;
  }
  EXPECT_THAT(services_->alerts(), IsEmpty());
}

TEST_F(OVAudioFileReaderCorpusTest, TheSoundOfAVideoIsReadWithoutItsPictures) {
  const std::string path = folder_.file("video.mp4");
  ASSERT_EQ(support::ffmpeg({"-f", "lavfi", "-i", "testsrc=s=320x240:d=1.2", "-i", source_, "-c:v",
                             "mpeg4", "-c:a", "aac", "-movie_timescale", "44100", path}),
            "");
  const auto reader = OVAudioFileReader::initWithFile(path);
  ASSERT_NE(reader, nullptr);
  EXPECT_NEAR(static_cast<double>(reader->fileSizeInFrames()), kFrames, 4096);
  const Samples read = readAll(*reader);
  const Samples decoded = support::decodedByFfmpeg(path);
  expectNear(read, decoded, std::min(read.size(), decoded.size()) / 2, 0);
  EXPECT_FALSE(reader->failed());
  EXPECT_THAT(services_->alerts(), IsEmpty());
}

TEST_F(OVAudioFileReaderCorpusTest, AVideoWithoutSoundSaysSo) {
  const std::string path = folder_.file("silent.mp4");
  ASSERT_EQ(
      support::ffmpeg({"-f", "lavfi", "-i", "testsrc=s=320x240:d=0.5", "-c:v", "mpeg4", path}), "");
  EXPECT_EQ(OVAudioFileReader::initWithFile(path), nullptr);
  ASSERT_THAT(services_->alerts(), testing::SizeIs(1));
  EXPECT_THAT(services_->alerts()[0].message,
              testing::HasSubstr("There is no sound in “silent.mp4”."));
}

TEST_F(OVAudioFileReaderCorpusTest, ADtsStreamInTheDisguiseOfSamplesIsHeardAsSound) {
  const std::string stream = folder_.file("a.dts");
  ASSERT_EQ(support::ffmpeg({"-i", source_, "-c:a", "dca", "-strict", "-2", "-b:a", "1411200", "-f",
                             "dts", stream}),
            "");
  const std::string path = folder_.file("dts.wav");
  ASSERT_TRUE(
      support::writeBytes(path, support::wavBytes(44'100, 2, 16, support::fileBytes(stream))));
  const auto reader = OVAudioFileReader::initWithFile(path);
  ASSERT_NE(reader, nullptr);
  const Samples read = readAll(*reader);
  // Misinterpreted samples would be noise at full scale.
  EXPECT_NEAR(support::peak(read), support::peak(samples_), 0.05);
  EXPECT_THAT(services_->consoleLines(), IsEmpty());
}

TEST_F(OVAudioFileReaderCorpusTest, ARateThatChangesInTheMiddleIsFollowed) {
  const std::string first = folder_.file("1.aac");
  const std::string second = folder_.file("2.aac");
  ASSERT_EQ(support::ffmpeg({"-i", source_, "-c:a", "aac", first}), "");
  ASSERT_EQ(support::ffmpeg({"-i", source_, "-c:a", "aac", "-ar", "22050", "-ac", "1", second}),
            "");
  const std::string both = folder_.file("both.aac");
  ASSERT_TRUE(support::writeBytes(both, support::fileBytes(first) + support::fileBytes(second)));
  const auto reader = OVAudioFileReader::initWithFile(both);
  ASSERT_NE(reader, nullptr);
  const Samples read = readAll(*reader);
  const Samples firstDecoded = support::decodedByFfmpeg(first);
  const Samples secondDecoded = support::decodedByFfmpeg(second, kMonoTo44100);
  EXPECT_NEAR(static_cast<double>(read.size()),
              static_cast<double>(firstDecoded.size() + secondDecoded.size()), 8192);
  expectNear(read, firstDecoded, firstDecoded.size() / 2 - 1024, 0);
  EXPECT_FALSE(reader->failed());
}

}  // namespace
