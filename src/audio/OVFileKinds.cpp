#include "audio/OVFileKinds.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <iterator>

namespace {

using platform::textKey;

constexpr std::array kKinds{
    OVFileKind{0, textKey("WAV")},
    OVFileKind{1, textKey("AIFF")},
    OVFileKind{2, textKey("CAF")},
    OVFileKind{3, textKey("AAC")},
};
constexpr std::int32_t kReadOnly = -1;

struct Suffix {
  const char* name;
  const char* mimeType;  // one listed in the program's desktop entry
  std::int32_t type;     // of the kind written with it, or kReadOnly
};

// In the order of the open panel; of several suffixes of a kind, the most common one last.
constexpr std::array kSuffixes{
    Suffix{"caf", "audio/x-caf", 2},        Suffix{"aif", "audio/x-aiff", 1},
    Suffix{"aiff", "audio/x-aiff", 1},      Suffix{"wav", "audio/x-wav", 0},
    Suffix{"mp3", "audio/mpeg", kReadOnly}, Suffix{"mp4", "video/mp4", 3},
    Suffix{"m4a", "audio/mp4", 3},          Suffix{"m4r", "audio/x-m4r", kReadOnly},
    Suffix{"aac", "audio/aac", kReadOnly},
};

// Null for files that cannot be read.
const Suffix* suffixOf(const std::string& path) {
  std::string extension = std::filesystem::path(path).extension().string();
  for (char& c : extension) {
    c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  }
  const auto* const found = std::find_if(
      kSuffixes.begin(), kSuffixes.end(),
      [&extension](const Suffix& suffix) { return extension == std::string(".") + suffix.name; });
  return found == kSuffixes.end() ? nullptr : found;
}

}  // namespace

std::span<const OVFileKind> writableFileKinds() {
  return kKinds;
}

const OVFileKind* fileKindOfType(std::int32_t type) {
  const auto* const found = std::find_if(
      kKinds.begin(), kKinds.end(), [type](const OVFileKind& kind) { return kind.type == type; });
  return found == kKinds.end() ? nullptr : found;
}

std::int32_t fileTypeOfPath(const std::string& path) {
  const Suffix* const suffix = suffixOf(path);
  return suffix == nullptr ? kReadOnly : suffix->type;
}

std::vector<std::string> suffixesOfType(std::int32_t type) {
  std::vector<std::string> suffixes;
  for (const Suffix& suffix : kSuffixes) {
    if (suffix.type == type && type != kReadOnly) {
      suffixes.insert(suffixes.begin(), suffix.name);
    }
  }
  return suffixes;
}

const std::vector<std::string>& readableFileTypes() {
  static const std::vector<std::string> types = [] {
    std::vector<std::string> names;
    names.reserve(std::size(kSuffixes));
    for (const Suffix& suffix : kSuffixes) {
      names.emplace_back(suffix.name);
    }
    return names;
  }();
  return types;
}

std::string mimeTypeOfPath(const std::string& path) {
  const Suffix* const suffix = suffixOf(path);
  return suffix == nullptr ? "" : suffix->mimeType;
}

std::string lastPathComponent(const std::string& path) {
  return std::filesystem::path(path).filename().string();
}

std::string nameWithoutSuffix(const std::string& path) {
  return std::filesystem::path(path).stem().string();
}
