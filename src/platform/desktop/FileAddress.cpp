#include "platform/desktop/FileAddress.h"

namespace platform {
namespace {

constexpr std::string_view kScheme = "file:";
constexpr std::string_view kMachineFollows = "//";
constexpr std::string_view kThisMachine = "localhost";
constexpr std::string_view kKeptMarks = "!$&'()*+,-./:=@_~";
constexpr std::string_view kHexDigits = "0123456789ABCDEF";

bool isKept(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
         kKeptMarks.find(c) != std::string_view::npos;
}

char lowerCase(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool takePrefix(std::string_view& text, std::string_view prefix) {
  if (text.size() < prefix.size()) {
    return false;
  }
  for (std::size_t i = 0; i < prefix.size(); ++i) {
    if (lowerCase(text[i]) != prefix[i]) {
      return false;
    }
  }
  text.remove_prefix(prefix.size());
  return true;
}

// -1 for what is no hexadecimal digit.
int digitOf(char c) {
  const char upper = c >= 'a' && c <= 'f' ? static_cast<char>(c - 'a' + 'A') : c;
  const auto digit = kHexDigits.find(upper);
  return digit == std::string_view::npos ? -1 : static_cast<int>(digit);
}

}  // namespace

std::string fileAddressOf(std::string_view path) {
  std::string address(kScheme);
  address += kMachineFollows;
  for (const char c : path) {
    if (isKept(c)) {
      address += c;
    } else {
      const auto byte = static_cast<unsigned char>(c);
      address += '%';
      address += kHexDigits[byte >> 4U];
      address += kHexDigits[byte & 15U];
    }
  }
  return address;
}

std::optional<std::string> pathOfFileAddress(std::string_view address) {
  if (!takePrefix(address, kScheme)) {
    return std::nullopt;
  }
  if (takePrefix(address, kMachineFollows)) {
    takePrefix(address, kThisMachine);
  }
  if (!address.starts_with('/') || address.find_first_of("?#") != std::string_view::npos) {
    return std::nullopt;
  }
  std::string path;
  for (std::size_t i = 0; i < address.size(); ++i) {
    if (address[i] != '%') {
      path += address[i];
      continue;
    }
    const int high = i + 2 < address.size() ? digitOf(address[i + 1]) : -1;
    const int low = i + 2 < address.size() ? digitOf(address[i + 2]) : -1;
    const int byte = high * 16 + low;
    // A separator or an end inside a name is no name.
    if (high < 0 || low < 0 || byte == 0 || byte == '/') {
      return std::nullopt;
    }
    path += static_cast<char>(byte);
    i += 2;
  }
  return path;
}

}  // namespace platform
