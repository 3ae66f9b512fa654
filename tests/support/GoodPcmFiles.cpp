#include <gtest/gtest.h>

#include "support/GoodFiles.h"
#include "support/TemporaryFolder.h"
#include "support/programs/AudioFileTools.h"
#include "support/programs/ChildProcess.h"

std::ostream& operator<<(std::ostream& stream, const GoodFile& each) {
  return stream << each.name;
}

const support::Samples& goodFileSource() {
  static const support::Samples samples = support::noise16(GoodFile::kFrames, 5);
  return samples;
}

namespace {

constexpr auto kSource = GoodFile::Sound::ofTheSource;
constexpr auto kExact = GoodFile::Length::exact;

std::string little(std::uint64_t value, std::size_t bytes) {
  std::string text;
  for (std::size_t i = 0; i < bytes; ++i) {
    text.push_back(static_cast<char>(value >> (8 * i)));
  }
  return text;
}

std::string big(std::uint64_t value, std::size_t bytes) {
  const std::string text = little(value, bytes);
  return {text.rbegin(), text.rend()};
}

// The first frames of the source as 16-bit samples.
std::string sound(std::size_t frames = GoodFile::kFrames, bool bigEndian = false) {
  std::string bytes;
  for (std::size_t i = 0; i < frames * 2; ++i) {
    const auto value = static_cast<std::uint16_t>(static_cast<int>(goodFileSource()[i] * 32768.0F));
    bytes += bigEndian ? big(value, 2) : little(value, 2);
  }
  return bytes;
}

std::string chunk(const std::string& name, const std::string& content) {
  return name + little(content.size(), 4) + content + std::string(content.size() % 2, '\0');
}

std::string format(std::uint16_t tag, std::uint16_t channels, std::uint16_t bits,
                   const std::string& more = {}) {
  const auto frameBytes = static_cast<std::uint16_t>(channels * ((bits + 7) / 8));
  return chunk("fmt ", little(tag, 2) + little(channels, 2) + little(44100, 4) +
                           little(44100U * frameBytes, 4) + little(frameBytes, 2) +
                           little(bits, 2) + more);
}

// WAVE_FORMAT_EXTENSIBLE: significant bits, speakers, and the real tag at the start of a GUID.
std::string extensible(std::uint16_t tag, std::uint16_t channels, std::uint16_t bits,
                       std::uint16_t significant, std::uint32_t speakers) {
  return format(0xFFFE, channels, bits,
                little(22, 2) + little(significant, 2) + little(speakers, 4) + little(tag, 2) +
                    std::string("\x00\x00\x00\x00\x10\x00\x80\x00\x00\xAA\x00\x38\x9B\x71", 14));
}

std::string riff(const std::string& chunks) {
  return "RIFF" + little(chunks.size() + 4, 4) + "WAVE" + chunks;
}

std::string dataThatPromises(std::uint64_t bytes, const std::string& content) {
  return "data" + little(bytes, 4) + content;
}

GoodFile made(const std::string& name, const std::string& file, const std::string& bytes,
              std::uint64_t frames = GoodFile::kFrames, GoodFile::Sound sounds = kSource) {
  return {name,
          file,
          [bytes](const std::string& path) { ASSERT_TRUE(support::writeBytes(path, bytes)); },
          frames,
          kExact,
          sounds};
}

GoodFile byFfmpeg(const std::string& name, const std::string& file,
                  const std::vector<std::string>& options,
                  GoodFile::Sound sounds = GoodFile::Sound::any) {
  return {name,
          file,
          [options](const std::string& path) {
            const support::TemporaryFolder folder;
            const std::string source = folder.file("source.wav");
            ASSERT_TRUE(support::writeWav(source, goodFileSource()));
            std::vector<std::string> command{"-i", source};
            command.insert(command.end(), options.begin(), options.end());
            command.push_back(path);
            ASSERT_EQ(support::ffmpeg(command), "");
          },
          GoodFile::kFrames,
          kExact,
          sounds};
}

// A pipe of the shell: from standard input $1 to standard output $2.
GoodFile piped(const std::string& name, const std::string& file, const std::string& command) {
  return {name,
          file,
          [command](const std::string& path) {
            const support::TemporaryFolder folder;
            const std::string raw = folder.file("source");
            ASSERT_TRUE(support::writeBytes(raw, sound()));
            const auto finished = support::runToEnd(
                {"sh", "-c", "cat \"$1\" | " + command + " | cat > \"$2\"", "sh", raw, path},
                support::cleanEnvironment());
            ASSERT_TRUE(finished.status.succeeded()) << finished.error;
          },
          GoodFile::kFrames,
          kExact,
          kSource};
}

void addPiped(std::vector<GoodFile>& all) {
  const std::string sox = "sox -V1 -D -t raw -r 44100 -e signed -b 16 -c 2 - -t ";
  all.push_back(piped("WavPipedFromSox", "a.wav", sox + "wav -"));
  all.push_back(piped("AiffPipedFromSox", "a.aiff", sox + "aiff -"));
  const std::string ffmpeg = "ffmpeg -v error -f s16le -ar 44100 -ac 2 -i - -f ";
  all.push_back(piped("WavPipedFromFfmpeg", "a.wav", ffmpeg + "wav -"));
  all.push_back(piped("AiffPipedFromFfmpeg", "a.aiff", ffmpeg + "aiff -"));
  all.push_back(piped("CafPipedFromFfmpeg", "a.caf", ffmpeg + "caf -c:a pcm_s16le -"));
}

void addLayouts(std::vector<GoodFile>& all) {
  const std::string samples = sound();
  const std::string data = chunk("data", samples);
  const std::string plain = format(1, 2, 16);
  const std::string list = chunk("LIST", "INFOISFT" + little(6, 4) + "Editor");
  const auto add = [&all](const std::string& name, const std::string& chunks) {
    all.push_back(made(name, "a.wav", riff(chunks)));
  };
  add("WavWithSpaceForAnotherHeader", chunk("JUNK", std::string(28, '\0')) + plain + data);
  add("WavFilledUpToAPage", plain + chunk("FLLR", std::string(4044, '\0')) + data);
  add("WavWithTextBeforeTheSamples", plain + list + data);
  add("WavWithTextBehindTheSamples", plain + data + list);
  add("WavWithOddText", plain + chunk("note", "odd") + data + chunk("note", "odd"));
  add("WavWithAnOddEndThatIsNotFilledUp", plain + data + "note" + little(3, 4) + "odd");
  add("WavWithFact", plain + chunk("fact", little(GoodFile::kFrames, 4)) + data);
  add("WavWithCuesAndLoops",
      plain + data + chunk("cue ", little(0, 4)) + chunk("smpl", std::string(36, '\0')));
  add("WavWithId3", plain + data + chunk("id3 ", "ID3" + std::string(7, '\0')));
  add("WavWithEmptyFormatExtension", format(1, 2, 16, little(0, 2)) + data);
  add("BroadcastWav", chunk("bext", std::string(602, '\0') + "A=PCM,F=44100\r\n") + plain + data);
  add("BroadcastWavWithXml",
      chunk("bext", std::string(602, '\0')) + plain + data + chunk("iXML", "<BWFXML></BWFXML>"));
  add("WavExtensible", extensible(1, 2, 16, 16, 3) + data);
  add("WavExtensibleWithoutSpeakers", extensible(1, 2, 16, 16, 0) + data);
  all.push_back(byFfmpeg("BroadcastWavOfFfmpeg", "a.wav",
                         {"-c:a", "pcm_s16le", "-write_bext", "1", "-metadata", "description=x"},
                         kSource));
  all.push_back(made("WavExtensible20BitsIn24", "a.wav",
                     riff(extensible(1, 2, 24, 20, 3) + chunk("data", std::string(6000, '\1'))),
                     1000, GoodFile::Sound::any));
  std::string upperBits;
  for (std::size_t i = 0; i < samples.size(); i += 2) {
    upperBits += std::string(2, '\0') + samples.substr(i, 2);
  }
  add("WavExtensible24BitsIn32", extensible(1, 2, 32, 24, 3) + chunk("data", upperBits));
  all.push_back(made("WavExtensibleFloat", "a.wav",
                     riff(extensible(3, 2, 32, 32, 3) + chunk("data", std::string(8000, '\0'))),
                     1000, GoodFile::Sound::any));
}

// Recorders that count wrongly.
void addMiscounted(std::vector<GoodFile>& all) {
  const std::string samples = sound();
  const std::string plain = format(1, 2, 16);
  const auto promising = [&](const std::string& name, std::uint64_t bytes) {
    all.push_back(made(name, "a.wav", riff(plain + dataThatPromises(bytes, samples))));
  };
  promising("WavThatCountsItsHeader", samples.size() + 44);
  promising("WavThatCountsAsItsFormDoes", samples.size() + 36);
  promising("WavThatCountsItsChunksHeader", samples.size() + 8);
  promising("WavThatCountsABufferMore", samples.size() + 16'384);
  promising("WavWithoutALength", 0);
  promising("WavWithTheLargestLength", 0xFFFFFFFF);
  promising("WavWithTheLargestSignedLength", 0x7FFFFFFF);
  promising("WavWithTheLargestLengthLessItsHeader", 0xFFFFFFFF - 44);
  const std::string data = chunk("data", samples);
  all.push_back(
      made("WavWhoseFormHasNoLength", "a.wav", "RIFF" + little(0, 4) + "WAVE" + plain + data));
  all.push_back(made("WavWhoseFormIsTooLong", "a.wav",
                     "RIFF" + little(0x12345678, 4) + "WAVE" + plain + data));
  all.push_back(
      made("WavWhoseFormIsTooShort", "a.wav", "RIFF" + little(100, 4) + "WAVE" + plain + data));
  constexpr std::size_t kPacket = 65'536;
  all.push_back(made("WavHalfAFrameLongerThanItsPackets", "a.wav",
                     riff(plain + chunk("data", sound(kPacket / 4) + "xy")), kPacket / 4, kSource));
  all.push_back(made("WavHalfAFrameLonger", "a.wav",
                     riff(plain + chunk("data", sound(1000) + "xyz")), 1000, kSource));
}

void addFormats(std::vector<GoodFile>& all) {
  for (const auto& [name, codec] :
       {std::pair("Wav8Bits", "pcm_u8"), std::pair("Wav24Bits", "pcm_s24le"),
        std::pair("Wav32Bits", "pcm_s32le"), std::pair("WavFloat", "pcm_f32le"),
        std::pair("Wav64BitFloat", "pcm_f64le"), std::pair("WavALaw", "pcm_alaw"),
        std::pair("WavMuLaw", "pcm_mulaw")}) {
    all.push_back(byFfmpeg(name, "a.wav", {"-c:a", codec}));
  }
  for (const auto& [name, codec] :
       {std::pair("Aiff8Bits", "pcm_s8"), std::pair("Aiff24Bits", "pcm_s24be"),
        std::pair("AiffFloat", "pcm_f32be"), std::pair("Aiff64BitFloat", "pcm_f64be"),
        std::pair("AiffALaw", "pcm_alaw"), std::pair("AiffLittleEndian", "pcm_s16le")}) {
    all.push_back(byFfmpeg(name, "a.aiff", {"-c:a", codec}));
  }
  for (std::uint16_t channels = 1; channels <= 8; ++channels) {
    const std::string data(std::size_t{1000} * channels * 2, '\1');
    all.push_back(made("WavOf" + std::to_string(channels) + "Channels", "a.wav",
                       support::wavBytes(44100, channels, 16, data), 1000, GoodFile::Sound::any));
    all.push_back(
        made("WavExtensibleOf" + std::to_string(channels) + "Channels", "a.wav",
             riff(extensible(1, channels, 16, 16, (1U << channels) - 1) + chunk("data", data)),
             1000, GoodFile::Sound::any));
  }
}

void addAiffAndCaf(std::vector<GoodFile>& all) {
  const auto aiffChunk = [](const std::string& name, const std::string& content) {
    return name + big(content.size(), 4) + content + std::string(content.size() % 2, '\0');
  };
  const auto form = [](const std::string& chunks) {
    return "FORM" + big(chunks.size() + 4, 4) + "AIFF" + chunks;
  };
  const std::string samples = sound(GoodFile::kFrames, true);
  const std::string rate("\x40\x0E\xAC\x44\0\0\0\0\0\0", 10);
  const std::string common =
      aiffChunk("COMM", big(2, 2) + big(GoodFile::kFrames, 4) + big(16, 2) + rate);
  const std::string data = aiffChunk("SSND", big(0, 8) + samples);
  all.push_back(made("Aiff", "a.aiff", form(common + data)));
  all.push_back(made("AiffWithItsFormatBehindTheSamples", "a.aiff", form(data + common)));
  all.push_back(
      made("AiffWithTexts", "a.aif",
           form(aiffChunk("NAME", "odd") + common + aiffChunk("ANNO", "written by an editor") +
                data + aiffChunk("MARK", big(0, 2)))));
  all.push_back(made("AiffWhoseSamplesAreAligned", "a.aiff",
                     form(common + aiffChunk("SSND", big(454, 4) + big(512, 4) +
                                                         std::string(454, '\0') + samples))));
  const auto caf = [](const std::string& chunks) {
    const std::string rateBits("\x40\xE5\x88\x80\0\0\0\0", 8);
    return "caff" + big(1, 2) + big(0, 2) + "desc" + big(32, 8) + rateBits + "lpcm" + big(0, 4) +
           big(4, 4) + big(1, 4) + big(2, 4) + big(16, 4) + chunks;
  };
  const std::string content = big(0, 4) + samples;  // after a count of edits
  all.push_back(made("Caf", "a.caf", caf("data" + big(content.size(), 8) + content)));
  all.push_back(made("CafThatWasNotFinished", "a.caf",
                     caf("free" + big(4000, 8) + std::string(4000, '\0') + "data" +
                         std::string(8, '\xFF') + content)));
}

}  // namespace

std::vector<GoodFile> goodPcmFiles() {
  std::vector<GoodFile> all;
  addPiped(all);
  addLayouts(all);
  addMiscounted(all);
  addFormats(all);
  addAiffAndCaf(all);
  return all;
}
