#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <optional>
#include <utility>

#include "storage/OVDiskAudioBuffer.h"
#include "support/TransferHelpers.h"

/// Reference models of the memory buffer and the disk buffer, simple rather than fast. Tests
/// compare the real buffers with them.
///
/// Threads: one.
namespace support {

/// At most `count` bytes from `from` on.
inline Bytes slice(const Bytes& bytes, std::uint64_t from, std::uint64_t count) {
  if (from >= bytes.size()) {
    return {};
  }
  return part(bytes, from, from + std::min<std::uint64_t>(count, bytes.size() - from));
}

inline void put(Bytes& bytes, const Bytes& data, std::uint64_t offset) {
  bytes.resize(std::max<std::uint64_t>(bytes.size(), offset + data.size()));
  std::copy(data.begin(), data.end(), bytes.begin() + static_cast<std::ptrdiff_t>(offset));
}

struct PlainAudioBuffer {
  static constexpr std::uint64_t kInitial = 3528000;

  struct Saved {
    Bytes block;
    std::uint64_t fillSize;
    std::uint64_t capacity;
  };

  void write(const Bytes& data, std::uint64_t offset) {
    const std::uint64_t end = offset + data.size();
    if (end >= capacity) {
      capacity = capacity < 2 ? kInitial : capacity;
      while (capacity <= end) {
        capacity += capacity / 2;
      }
      block.resize(capacity);
    }
    put(block, data, offset);
    fillSize = std::max(fillSize, end);
  }

  Bytes read(std::uint64_t count, std::uint64_t offset) const {
    const std::uint64_t end = std::min<std::uint64_t>(fillSize, block.size());
    return offset < end ? slice(block, offset, std::min(count, end - offset)) : Bytes();
  }

  void cutAfter(std::uint64_t frames) {
    if (frames * 8 <= capacity) {
      block.resize(frames * 8);
      capacity = fillSize = frames * 8;
    }
  }

  /// The block is not shrunk: its last bytes stay in place.
  void cutBefore(std::uint64_t frames) {
    const std::uint64_t b = frames * 8;
    if (b < capacity) {
      capacity -= b;
      const Bytes tail = part(block, b, b + capacity);
      std::copy(tail.begin(), tail.end(), block.begin());
      fillSize -= b;
    }
  }

  void reverse() {
    const std::uint64_t length = std::min<std::uint64_t>(fillSize, block.size()) / 4 * 4;
    const Bytes before = part(block, 0, length);
    for (std::uint64_t i = 0; i < length; ++i) {
      block[length - 4 - i / 4 * 4 + i % 4] = before[i];
    }
  }

  void setWaypoint() { saved = Saved{part(block, 0, capacity), fillSize, capacity}; }

  void exchange() {
    if (saved) {
      std::swap(block, saved->block);
      std::swap(fillSize, saved->fillSize);
      std::swap(capacity, saved->capacity);
    }
  }

  double power(std::uint64_t sample) const {
    if (block.size() / 4 < 2 || sample > block.size() / 4 - 2) {
      return 0.0;
    }
    float values[2];
    std::memcpy(values, block.data() + sample * 4, 8);
    return (std::abs(static_cast<double>(values[0])) + std::abs(static_cast<double>(values[1]))) *
           0.5;
  }

  Bytes block = Bytes(kInitial);
  std::uint64_t capacity = kInitial;
  std::uint64_t fillSize = 0;
  std::optional<Saved> saved;
};

/// The background fill happens as soon as it is requested.
struct PlainDiskBuffer {
  static constexpr std::uint64_t kCache = OVDiskAudioBuffer::kCacheCapacity;

  void write(const Bytes& data, std::uint64_t offset) {
    if (!data.empty()) {
      put(file, data, offset);
    }
    size = std::max(size, offset + data.size());
    cache.clear();
    cachePosition = 0;
  }

  Bytes readNoCache(std::uint64_t count, std::uint64_t offset) const {
    const Bytes there = slice(file, offset, count / 8 * 8);
    return part(there, 0, there.size() / 8 * 8);
  }

  Bytes read(std::uint64_t count, std::uint64_t offset) {
    if (const Bytes cached = readCache(count, offset); !cached.empty()) {
      return cached;
    }
    const Bytes bytes = readNoCache(count, offset);
    fill(offset);
    return bytes;
  }

  Bytes readCache(std::uint64_t count, std::uint64_t offset) {
    const std::uint64_t end = cachePosition + cache.size();
    if (offset < cachePosition || offset > end || count > end - offset) {
      return {};
    }
    const Bytes bytes = slice(cache, offset - cachePosition, count);
    if (end - offset - count < 4 * count) {
      fill(offset);
    }
    return bytes;
  }

  void fill(std::uint64_t offset) {
    cache = slice(file, offset, kCache);
    cachePosition = offset;
  }

  void discard() {
    cache.clear();
    cachePosition = 0;
  }

  void cutAfter(std::uint64_t frames) {
    file.resize(frames * 8);
    size = frames * 8;
  }

  void cutBefore(std::uint64_t frames) {
    const std::uint64_t q = frames * 8;
    const bool enough = q < file.size() && file.size() - q >= 512;
    file = enough ? part(file, q, file.size()) : Bytes();
    size = file.size();
  }

  double power(std::uint64_t frame) const {
    float channels[2] = {0.0F, 0.0F};
    const Bytes bytes = slice(file, frame * 8, 8);
    if (!bytes.empty()) {
      std::memcpy(channels, bytes.data(), bytes.size());
    }
    return static_cast<double>(channels[0] + channels[1]) * 0.5;
  }

  Bytes file;
  std::uint64_t size = 0;
  Bytes cache;
  std::uint64_t cachePosition = 0;
};

}  // namespace support
