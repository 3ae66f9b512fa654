#include "audio/OVFileKinds.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <filesystem>

namespace {

using platform::textKey;

constexpr std::array kWavSuffixes{"wav"};
constexpr std::array kAiffSuffixes{"aiff", "aif"};
constexpr std::array kCafSuffixes{"caf"};
constexpr std::array kAacSuffixes{"m4a", "mp4"};

constexpr std::array kKinds{
    OVFileKind{0, textKey("WAV"), kWavSuffixes},
    OVFileKind{1, textKey("AIFF"), kAiffSuffixes},
    OVFileKind{2, textKey("CAF"), kCafSuffixes},
    OVFileKind{3, textKey("AAC"), kAacSuffixes},
};

std::string lowerCaseSuffix(const std::string& path) {
  std::string suffix = std::filesystem::path(path).extension().string();
  std::transform(suffix.begin(), suffix.end(), suffix.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return suffix.empty() ? suffix : suffix.substr(1);
}

}  // namespace

std::span<const OVFileKind> writableFileKinds() {
  return kKinds;
}

const OVFileKind* fileKindOfType(std::int32_t type) {
  const auto found = std::find_if(kKinds.begin(), kKinds.end(),
                                  [type](const OVFileKind& kind) { return kind.type == type; });
  return found == kKinds.end() ? nullptr : &*found;
}

std::int32_t fileTypeOfPath(const std::string& path) {
  const std::string suffix = lowerCaseSuffix(path);
  for (const OVFileKind& kind : kKinds) {
    if (std::find(kind.suffixes.begin(), kind.suffixes.end(), suffix) != kind.suffixes.end()) {
      return kind.type;
    }
  }
  return -1;
}

std::vector<std::string> suffixesOfType(std::int32_t type) {
  const OVFileKind* const kind = fileKindOfType(type);
  return kind == nullptr ? std::vector<std::string>()
                         : std::vector<std::string>(kind->suffixes.begin(), kind->suffixes.end());
}

const std::vector<std::string>& readableFileTypes() {
  static const std::vector<std::string> types{"caf", "aif", "aiff", "wav", "mp3",
                                              "mp4", "m4a", "m4r",  "aac"};
  return types;
}

std::string lastPathComponent(const std::string& path) {
  return std::filesystem::path(path).filename().string();
}

std::string nameWithoutSuffix(const std::string& path) {
  return std::filesystem::path(path).stem().string();
}
