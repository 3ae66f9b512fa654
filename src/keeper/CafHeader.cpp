#include "keeper/CafHeader.h"

#include <bit>
#include <string_view>

#include "platform/base/AudioTypes.h"

namespace {

constexpr std::uint32_t kFloat = 1;         // flags of linear PCM in a description chunk
constexpr std::uint32_t kLittleEndian = 2;  //
constexpr std::uint64_t kEditCount = 4;     // bytes between a data chunk's head and its samples

// Appends numbers in the byte order of the format, the big end first.
class Bytes {
 public:
  template <typename Number>
  void number(Number value) {
    for (std::size_t i = sizeof value; i-- > 0;) {
      bytes_.push_back(static_cast<std::byte>(value >> (8 * i)));
    }
  }
  void text(std::string_view characters) {
    for (const char character : characters) {
      bytes_.push_back(static_cast<std::byte>(character));
    }
  }
  void chunk(std::string_view type, std::uint64_t size) {
    text(type);
    number(size);
  }

  [[nodiscard]] std::vector<std::byte> take() { return std::move(bytes_); }

 private:
  std::vector<std::byte> bytes_;
};

}  // namespace

std::vector<std::byte> cafHeader(std::uint64_t audioBytes, const std::string& recorded) {
  const auto& format = platform::kWorkingFormat;
  Bytes bytes;
  bytes.text("caff");
  bytes.number(std::uint16_t{1});  // version
  bytes.number(std::uint16_t{0});  // flags
  bytes.chunk("desc", 32);
  bytes.number(std::bit_cast<std::uint64_t>(format.mSampleRate));
  bytes.text("lpcm");
  bytes.number(kFloat | (std::endian::native == std::endian::little ? kLittleEndian : 0U));
  bytes.number(format.mBytesPerFrame);  // bytes in a packet
  bytes.number(std::uint32_t{1});       // frames in a packet
  bytes.number(format.mChannelsPerFrame);
  bytes.number(format.mBitsPerChannel);
  if (!recorded.empty()) {
    constexpr std::string_view kKey = "recorded date";
    constexpr std::string_view kEnd("\0", 1);  // of each text
    bytes.chunk("info", 4 + kKey.size() + kEnd.size() + recorded.size() + kEnd.size());
    bytes.number(std::uint32_t{1});  // entries
    bytes.text(kKey);
    bytes.text(kEnd);
    bytes.text(recorded);
    bytes.text(kEnd);
  }
  bytes.chunk("data", kEditCount + audioBytes);
  bytes.number(std::uint32_t{0});  // edit count
  return bytes.take();
}
