#pragma once

#include <cstdint>
#include <string>

/// One stretch of a recording: its place in the recording's linear byte addresses and in the
/// temporary file. All values in bytes.
///
/// A block covers the addresses linear_addr_start() <= a < end(), and address a lives at file
/// offset file_offset_start() + (a - linear_addr_start()).
///
/// Threads: a plain value, guarded by its owner. Real-time: safe, except description().
class OVBlock {
 public:
  constexpr OVBlock() = default;
  constexpr OVBlock(std::uint64_t linearAddrStart, std::uint64_t fileOffsetStart,
                    std::uint64_t size)
      : linear_addr_start_(linearAddrStart), file_offset_start_(fileOffsetStart), size_(size) {}

  [[nodiscard]] constexpr std::uint64_t linear_addr_start() const { return linear_addr_start_; }
  [[nodiscard]] constexpr std::uint64_t file_offset_start() const { return file_offset_start_; }
  [[nodiscard]] constexpr std::uint64_t size() const { return size_; }

  constexpr void setLinear_addr_start(std::uint64_t address) { linear_addr_start_ = address; }
  constexpr void setFile_offset_start(std::uint64_t offset) { file_offset_start_ = offset; }
  constexpr void setSize(std::uint64_t size) { size_ = size; }

  /// One past the last address. Unsigned: a block that wraps ends at 0 or a little above.
  [[nodiscard]] constexpr std::uint64_t end() const { return linear_addr_start_ + size_; }

  /// Whether an address is in the block. False for an empty block and one that wraps.
  [[nodiscard]] constexpr bool contains(std::uint64_t address) const {
    return linear_addr_start_ <= address && address < end();
  }

  /// Drops the block's first `count` bytes: its start moves forward, its end stays.
  constexpr void dropFront(std::uint64_t count) {
    linear_addr_start_ += count;
    file_offset_start_ += count;
    size_ -= count;
  }

  /// "linear_addr: %lu, file_offset: %lu, size: %lu".
  [[nodiscard]] std::string description() const;

  friend constexpr bool operator==(const OVBlock&, const OVBlock&) = default;

 private:
  std::uint64_t linear_addr_start_ = 0;
  std::uint64_t file_offset_start_ = 0;
  std::uint64_t size_ = 0;
};
