#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

/// What all fuzz targets share. A target defines prepare() and execute(); FuzzTarget.cpp calls them
/// for libFuzzer, measures each execution, and ends the program when one takes too much.
///
/// Threads: main.
namespace fuzz {

/// Runs once, before the first input.
void prepare();
/// Runs for each input.
void execute(const std::uint8_t* data, std::size_t size);

/// Ends the program, as a crash, with this text if the promise was broken.
void require(bool holds, const char* what);
void require(bool holds, const std::string& what);

/// Takes an input apart from its front. Beyond its end there are zeros.
class Input {
 public:
  Input(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}

  [[nodiscard]] bool empty() const { return size_ == 0; }
  [[nodiscard]] const std::uint8_t* data() const { return data_; }
  [[nodiscard]] std::size_t size() const { return size_; }

  std::uint8_t byte() { return static_cast<std::uint8_t>(number(1)); }
  /// Of so many bytes, at most 8, the lowest first.
  std::uint64_t number(std::size_t byteCount) {
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < byteCount && size_ > 0; ++i, ++data_, --size_) {
      value |= std::uint64_t{*data_} << (8 * i);
    }
    return value;
  }
  /// Up to so many bytes.
  std::string text(std::size_t byteCount) {
    const std::size_t count = std::min(byteCount, size_);
    std::string bytes(data_, data_ + count);
    data_ += count;
    size_ -= count;
    return bytes;
  }

 private:
  const std::uint8_t* data_;
  std::size_t size_;
};

}  // namespace fuzz
