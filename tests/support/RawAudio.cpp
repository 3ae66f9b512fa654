#include "support/RawAudio.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <fstream>
#include <iterator>
#include <numbers>
#include <random>

namespace support {

namespace {

template <typename Integer>
void append(std::string& bytes, Integer value) {
  for (std::size_t i = 0; i < sizeof value; ++i) {
    bytes.push_back(static_cast<char>((value >> (8 * i)) & 0xffU));
  }
}

}  // namespace

Samples noise(std::size_t frames, std::uint32_t seed) {
  std::minstd_rand random(seed);
  Samples samples(frames * kChannels);
  for (float& sample : samples) {
    // 16 bits are exact in a float. No sample is 0, so noise differs from silence.
    const auto value = static_cast<int>((random() >> 8) & 0xffffU);
    sample = static_cast<float>(value - 32768) / 65536.0F + 1.0F / 131072.0F;
  }
  return samples;
}

Samples tune(double seconds) {
  constexpr std::array kNotes{261.63, 293.66, 329.63, 392.0, 440.0, 392.0, 329.63, 293.66};
  constexpr double kNoteSeconds = 0.32;
  const auto frames = static_cast<std::size_t>(seconds * kFramesPerSecond);
  Samples samples(frames * kChannels);
  for (std::size_t frame = 0; frame < frames; ++frame) {
    const double time = static_cast<double>(frame) / kFramesPerSecond;
    const double inNote = std::fmod(time, kNoteSeconds) / kNoteSeconds;
    const double note = kNotes[static_cast<std::size_t>(time / kNoteSeconds) % kNotes.size()];
    const double angle = 2.0 * std::numbers::pi * note * time;
    const double envelope = std::sin(std::numbers::pi * inNote) *
                            (0.45 + 0.35 * std::sin(2.0 * std::numbers::pi * 0.23 * time));
    const double tone =
        0.6 * std::sin(angle) + 0.25 * std::sin(2.0 * angle) + 0.15 * std::sin(3.0 * angle);
    const double pan = 0.5 + 0.3 * std::sin(2.0 * std::numbers::pi * 0.1 * time);
    samples[frame * 2] = static_cast<float>(envelope * tone * (1.0 - pan) * 1.25);
    samples[frame * 2 + 1] = static_cast<float>(envelope * tone * pan * 1.25);
  }
  return samples;
}

bool writeRaw(const std::string& path, const Samples& samples) {
  std::ofstream file(path, std::ios::binary);
  file.write(reinterpret_cast<const char*>(samples.data()),
             static_cast<std::streamsize>(samples.size() * sizeof(float)));
  return file.flush().good();
}

Samples readRaw(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  const std::string bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  constexpr std::size_t kFrameBytes = kChannels * sizeof(float);
  Samples samples(bytes.size() / kFrameBytes * kChannels);
  std::copy_n(bytes.data(), samples.size() * sizeof(float),
              reinterpret_cast<char*>(samples.data()));
  return samples;
}

bool writeWav(const std::string& path, const Samples& samples) {
  constexpr std::uint16_t kFloatFormat = 3;
  constexpr std::uint32_t kFrameBytes = kChannels * sizeof(float);
  const auto dataBytes = static_cast<std::uint32_t>(samples.size() * sizeof(float));
  std::string header = "RIFF";
  append(header, dataBytes + 36U);
  header += "WAVEfmt ";
  append(header, std::uint32_t{16});
  append(header, kFloatFormat);
  append(header, static_cast<std::uint16_t>(kChannels));
  constexpr auto kRate = static_cast<std::uint32_t>(kFramesPerSecond);
  append(header, kRate);
  append(header, kRate * kFrameBytes);
  append(header, static_cast<std::uint16_t>(kFrameBytes));
  append(header, std::uint16_t{32});
  header += "data";
  append(header, dataBytes);
  std::ofstream file(path, std::ios::binary);
  file << header;
  file.write(reinterpret_cast<const char*>(samples.data()),
             static_cast<std::streamsize>(dataBytes));
  return file.flush().good();
}

std::optional<std::size_t> findStart(const Samples& part, const Samples& in,
                                     std::size_t probeFrames) {
  const std::size_t probe = std::min(probeFrames * kChannels, part.size());
  auto from = in.begin();
  for (;;) {
    const auto found = std::search(from, in.end(), part.begin(),
                                   part.begin() + static_cast<std::ptrdiff_t>(probe));
    if (probe == 0 || found == in.end()) {
      return std::nullopt;
    }
    const auto sample = static_cast<std::size_t>(found - in.begin());
    if (sample % kChannels == 0) {
      return sample / kChannels;
    }
    from = found + 1;
  }
}

std::size_t equalFrames(const Samples& part, const Samples& in, std::size_t start) {
  const std::size_t offset = std::min(start * kChannels, in.size());
  const std::size_t count = std::min(part.size(), in.size() - offset);
  const auto [difference, ignored] =
      std::mismatch(part.begin(), part.begin() + static_cast<std::ptrdiff_t>(count),
                    in.begin() + static_cast<std::ptrdiff_t>(offset));
  return static_cast<std::size_t>(difference - part.begin()) / kChannels;
}

Samples withoutSilence(const Samples& samples) {
  Samples sounding;
  sounding.reserve(samples.size());
  for (std::size_t i = 0; i + 1 < samples.size(); i += kChannels) {
    if (samples[i] != 0 || samples[i + 1] != 0) {
      sounding.push_back(samples[i]);
      sounding.push_back(samples[i + 1]);
    }
  }
  return sounding;
}

float peak(const Samples& samples) {
  float largest = 0;
  for (const float sample : samples) {
    largest = std::max(largest, std::fabs(sample));
  }
  return largest;
}

}  // namespace support
