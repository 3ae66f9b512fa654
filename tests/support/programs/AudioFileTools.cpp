#include "support/programs/AudioFileTools.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <fstream>
#include <iterator>

#include "support/TemporaryFolder.h"
#include "support/programs/ChildProcess.h"

namespace support {

namespace {

std::string complaint(const std::vector<std::string>& command) {
  const Finished finished = runToEnd(command, cleanEnvironment());
  if (finished.status.succeeded()) {
    return {};
  }
  std::string text = "failed:";
  for (const std::string& word : command) {
    text += " " + word;
  }
  return text + "\n" + finished.error;
}

std::vector<std::string> joined(std::vector<std::string> first,
                                const std::vector<std::string>& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

template <typename Integer>
void append(std::string& bytes, Integer value) {
  for (std::size_t i = 0; i < sizeof value; ++i) {
    bytes.push_back(static_cast<char>((value >> (8 * i)) & 0xffU));
  }
}

}  // namespace

std::string ffmpeg(const std::vector<std::string>& arguments) {
  return complaint(joined({"ffmpeg", "-v", "error", "-nostdin", "-y"}, arguments));
}

std::string sox(const std::vector<std::string>& arguments) {
  return complaint(joined({"sox", "-D", "-V1"}, arguments));
}

Samples decodedByFfmpeg(const std::string& path, const std::string& filter) {
  const TemporaryFolder folder;
  const std::string raw = folder.file("decoded");
  std::vector<std::string> arguments{"-i", path, "-map", "0:a:0"};
  if (!filter.empty()) {
    arguments = joined(arguments, {"-af", filter});
  }
  arguments = joined(arguments, {"-f", "f32le", "-c:a", "pcm_f32le", raw});
  return ffmpeg(arguments).empty() ? readRaw(raw) : Samples{};
}

Samples decodedBySox(const std::string& path) {
  const TemporaryFolder folder;
  const std::string raw = folder.file("decoded.f32");
  return sox({path, "-t", "f32", raw}).empty() ? readRaw(raw) : Samples{};
}

std::vector<std::int16_t> decoded16ByFfmpeg(const std::string& path) {
  const TemporaryFolder folder;
  const std::string raw = folder.file("decoded");
  if (!ffmpeg({"-i", path, "-f", "s16le", "-c:a", "pcm_s16le", raw}).empty()) {
    return {};
  }
  const std::string bytes = fileBytes(raw);
  std::vector<std::int16_t> samples(bytes.size() / sizeof(std::int16_t));
  std::memcpy(samples.data(), bytes.data(), samples.size() * sizeof(std::int16_t));
  return samples;
}

Samples noise16(std::size_t frames, std::uint32_t seed) {
  Samples samples = noise(frames, seed);
  for (float& sample : samples) {
    sample = std::floor(sample * 32768.0F) / 32768.0F;
  }
  return samples;
}

std::string fileBytes(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

bool writeBytes(const std::string& path, const std::string& bytes) {
  std::ofstream file(path, std::ios::binary);
  file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  return file.flush().good();
}

std::string wavBytes(std::uint32_t rate, std::uint16_t channels, std::uint16_t bits,
                     const std::string& data, std::uint16_t format) {
  const auto frameBytes = static_cast<std::uint16_t>(channels * bits / 8);
  std::string bytes = "RIFF";
  append(bytes, static_cast<std::uint32_t>(data.size() + 36));
  bytes += "WAVEfmt ";
  append(bytes, std::uint32_t{16});
  append(bytes, format);
  append(bytes, channels);
  append(bytes, rate);
  append(bytes, rate * frameBytes);
  append(bytes, frameBytes);
  append(bytes, bits);
  bytes += "data";
  append(bytes, static_cast<std::uint32_t>(data.size()));
  return bytes + data;
}

}  // namespace support
