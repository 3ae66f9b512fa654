#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "storage/OVAudioBufferInterface.h"

namespace support {

using Bytes = std::vector<unsigned char>;

/// `count` bytes that differ from their neighbours and, with another `seed`, from other chunks.
inline Bytes pattern(std::size_t count, unsigned seed) {
  Bytes bytes(count);
  std::uint32_t state = seed * 2654435761U + 1U;
  for (auto& byte : bytes) {
    state = state * 1664525U + 1013904223U;
    byte = static_cast<unsigned char>(state >> 24);
  }
  return bytes;
}

inline void write(OVAudioBufferInterface& buffer, const Bytes& bytes, std::uint64_t offset) {
  buffer.writeData(bytes.data(), offset, static_cast<std::uint32_t>(bytes.size()));
}

/// The bytes that a read of `count` bytes returns.
inline Bytes read(OVAudioBufferInterface& buffer, std::size_t count, std::uint64_t offset) {
  Bytes bytes(count);
  bytes.resize(buffer.readDataInto(bytes.data(), count, offset).byteCount);
  return bytes;
}

inline Bytes part(const Bytes& bytes, std::size_t from, std::size_t to) {
  return {bytes.begin() + static_cast<std::ptrdiff_t>(from),
          bytes.begin() + static_cast<std::ptrdiff_t>(to)};
}

inline Bytes operator+(Bytes left, const Bytes& right) {
  left.insert(left.end(), right.begin(), right.end());
  return left;
}

inline bool isNothing(const BufferReadResult& result) {
  return result.data == nullptr && result.frameCount == 0 && result.byteCount == 0;
}

}  // namespace support
