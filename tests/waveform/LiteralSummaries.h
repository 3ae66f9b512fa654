#pragma once

#include <cmath>
#include <cstdint>
#include <cstring>
#include <vector>

#include "support/fakes/MemoryTestBuffer.h"

/// Both summaries once more, in the plainest form: one read of the buffer for each block, one
/// sample at a time, no locks. The tests compare the real ones with these to the bit.
namespace literal {

struct Extent {
  float smallest = 1.0F;
  float largest = 0.0F;
};

/// Every second sample below the limit; the first one always.
inline Extent scan(const float* samples, std::uint64_t limit) {
  Extent extent;
  std::uint64_t i = 0;
  do {
    const float value = std::isnan(samples[i]) ? 0.0F : std::fabs(samples[i]);
    if (value < extent.smallest) {
      extent.smallest = value;
    }
    if (value > extent.largest) {
      extent.largest = value;
    }
    i += 2;
  } while (i < limit);
  return extent;
}

struct DynamicSummary {
  MemoryTestBuffer* audio = nullptr;
  std::vector<float> buffer = std::vector<float>(1024);
  std::uint64_t elementCount = 0;
  std::uint64_t reader_pos = 0;
  std::uint64_t buffer_pos = 0;
  bool regenerate = true;
  std::uint64_t chunksize = 64;
  std::uint64_t chunk_read_count = 0;
  std::uint64_t chunk_read_size = 0;
  double chunk_max = 0.0;
  double chunk_min = 1.0;
  double max_amplitude = 1.0;
  bool isRegenerating = false;

  void reset() {
    elementCount = buffer_pos = reader_pos = 0;
    regenerate = false;
    chunksize = 64;
    chunk_min = 1.0;
    chunk_max = 0.0;
    chunk_read_count = chunk_read_size = 0;
    max_amplitude = 1.0;
    isRegenerating = true;
  }

  void setCapacity(std::uint64_t capacity) {
    capacity = capacity < 2 ? 2 : capacity;
    buffer.resize(capacity);
    if (buffer_pos > capacity) {
      buffer_pos = capacity;
    }
    if (elementCount > capacity) {
      elementCount = capacity;
    }
    regenerate = true;
  }

  void consolidate() {
    const std::vector<float> aside = buffer;
    for (std::uint64_t i = 0; i < aside.size(); i += 2) {
      const bool alone = i + 1 == aside.size();
      buffer[i / 2] = alone || aside[i] > aside[i + 1] ? aside[i] : aside[i + 1];
    }
    buffer_pos = aside.size() / 2;
    chunksize *= 2;
  }

  void appendSample(float value) {
    if (buffer_pos >= buffer.size()) {
      consolidate();
    }
    buffer[buffer_pos] = value;
    buffer_pos += 1;
  }

  void generate() {
    if (regenerate) {
      reset();
    }
    const std::uint64_t readSize = 8 * chunksize;
    std::vector<float> scratch(readSize / sizeof(float));
    for (;;) {
      const BufferReadResult result = audio->readDataInto(scratch.data(), readSize, reader_pos);
      if (result.frameCount == 0) {
        break;
      }
      reader_pos += result.byteCount;
      chunk_read_size += result.frameCount;
      chunk_read_count += 1;
      const Extent extent = scan(scratch.data(), result.frameCount);
      if (extent.smallest < chunk_min) {
        chunk_min = extent.smallest;
      }
      if (extent.largest > chunk_max) {
        chunk_max = extent.largest;
      }
      if (chunk_read_size >= chunksize) {
        if (chunk_max > max_amplitude) {
          max_amplitude = chunk_max;
        }
        appendSample(static_cast<float>(chunk_max - chunk_min));
        chunk_min = 1.0;
        chunk_max = 0.0;
        chunk_read_size = chunk_read_count = 0;
        elementCount += 1;
        if (elementCount > buffer.size()) {
          elementCount = buffer.size();
        }
      }
    }
    isRegenerating = false;
  }
};

struct StaticSummary {
  OVAudioBufferInterface* audio = nullptr;
  std::vector<float> buffer = std::vector<float>(1024);
  std::uint64_t elementCount = 0;
  std::uint64_t reader_pos = 0;
  std::uint64_t buffer_pos = 0;

  void regenerate() {
    elementCount = buffer_pos = reader_pos = 0;
    const auto frames =
        static_cast<std::uint64_t>(static_cast<double>(audio->bufferSizeInFrames()) * 0.0009765625);
    std::vector<float> scratch(frames * 2);
    for (;;) {
      const BufferReadResult result = audio->readDataInto(scratch.data(), 8 * frames, reader_pos);
      if (result.frameCount == 0) {
        break;
      }
      reader_pos += result.byteCount;
      const Extent extent = scan(scratch.data(), result.frameCount);
      buffer[buffer_pos] = extent.largest - extent.smallest;
      buffer_pos += 1;
      if (buffer_pos == 1024) {
        break;
      }
      elementCount += 1;
    }
  }

  void update(const float* s, std::uint64_t n, double p) {
    const std::uint64_t L = audio->bufferSizeInFrames();
    if (L == 0) {
      return;
    }
    const double r = static_cast<double>(n) / static_cast<double>(L);
    double x = 1024.0 * p + 0.5;
    if (!(x > 0.0)) {
      x = 0.0;
    }
    const double e = (1024.0 / static_cast<double>(L)) * static_cast<double>(n);
    std::uint64_t covered = static_cast<std::uint64_t>(e);
    if (covered < 2) {
      covered = 2;
    }
    const std::uint64_t g = n / covered;
    if (g == 0) {
      return;
    }
    clear(x, static_cast<std::uint64_t>(4.0 * r * 1024.0));
    const std::uint64_t m = n / g;
    const double dx = r * 1024.0 / static_cast<double>(m);
    auto remaining = static_cast<std::int64_t>(n - g);
    while (remaining >= 0) {
      const std::uint64_t left = static_cast<std::uint64_t>(remaining);
      const std::uint64_t c = left > 0 && left < g ? left : g;
      const Extent extent = scan(s, c);
      if (x < 1024.0) {
        buffer[static_cast<std::size_t>(x)] = extent.largest - extent.smallest;
      }
      x += dx;
      remaining -= static_cast<std::int64_t>(g);
      s += c;
      if (x >= 1024.0) {
        break;
      }
    }
  }

 private:
  /// One byte at a time, up to slot 1024.
  void clear(double x, std::uint64_t byteCount) {
    auto* bytes = reinterpret_cast<unsigned char*>(buffer.data());
    for (std::uint64_t i = 0; i < byteCount && x < 1024.0; ++i) {
      const std::uint64_t place = static_cast<std::uint64_t>(x) * 4 + i;
      if (place >= 4096) {
        break;
      }
      bytes[place] = 0;
    }
  }
};

}  // namespace literal
