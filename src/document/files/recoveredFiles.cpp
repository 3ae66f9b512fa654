#include "document/files/recoveredFiles.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cerrno>
#include <chrono>
#include <cstddef>
#include <filesystem>
#include <optional>
#include <set>
#include <string_view>

#include "platform/base/AudioTypes.h"
#include "platform/files/UserDataDirectory.h"

namespace {

using State = OVRecoveredFile::State;

constexpr std::string_view kSuffix = ".caf";
constexpr std::string_view kUnfinishedSuffix = ".caf.part";
constexpr std::string_view kPrefix = "Orvo recording ";
constexpr std::string_view kTimeFormat = "yyyy-MM-dd HH.mm.ss";
constexpr int kOwnFolders = 2;  // orvo/recovered
constexpr int kMaxChunks = 64;  // before the sound; far more than any writer puts there

bool isUnfinished(const std::string& name) {
  return name.ends_with(kUnfinishedSuffix);
}

bool isRecoveredName(const std::string& name) {
  return !name.starts_with('.') && (name.ends_with(kSuffix) || isUnfinished(name));
}

// The greatest names have the latest times.
std::set<std::string> latestNames(const platform::PrivateFolder& folder) {
  std::set<std::string> names;
  folder.forEachName([&names](const std::string& name) {
    if (isRecoveredName(name)) {
      names.insert(name);
      if (names.size() > kMaxRecoveredFiles) {
        names.erase(names.begin());
      }
    }
  });
  return names;
}

QDateTime startOf(const platform::PrivateFile& file) {
  const QDateTime named = startInName(file.name());
  return named.isValid()
             ? named
             : QDateTime::fromSecsSinceEpoch(std::chrono::system_clock::to_time_t(file.modified()));
}

// Whether a writer has the file. Without locks, one that has changed just now has one.
bool isHeld(platform::PrivateFile& file) {
  using Lock = platform::PrivateFile::Lock;
  constexpr std::chrono::minutes kLately{1};
  const Lock lock = file.lock();
  return lock == Lock::heldByAnother ||
         (lock == Lock::notToBeHad && isUnfinished(file.name()) &&
          std::chrono::abs(std::chrono::system_clock::now() - file.modified()) < kLately);
}

// Nothing for a file that is not to be listed.
std::optional<OVRecoveredFile> examine(const platform::PrivateFolder& opener,
                                       const std::string& folder, const std::string& name,
                                       OVRecoveredListing& listing) {
  const auto opened = opener.open(name);
  if (!opened) {
    return std::nullopt;
  }
  const std::shared_ptr<platform::PrivateFile>& file = *opened;
  OVRecoveredFile found;
  found.path = folder + "/" + name;
  found.start = startOf(*file);
  found.byteCount = file->content().size();
  found.number = file->number();
  if (isHeld(*file)) {
    if (!isUnfinished(name)) {
      ++listing.lockedElsewhere;
      return std::nullopt;
    }
    found.frames = found.byteCount / platform::kWorkingFrameBytes;
    found.state = found.byteCount > 0 && file->allocatedBytes() == 0 ? State::waitingForRoom
                                                                     : State::beingWritten;
    return found;
  }
  if (file->checkName() != 0) {  // renamed by its writer in between
    ++listing.lockedElsewhere;
    return std::nullopt;
  }
  const OVRecoveredContent content = recoveredContentOf(file->content());
  found.frames = content.frames;
  found.state = content.isWhole && !isUnfinished(name) ? State::whole : State::damaged;
  found.claim = file;
  return found;
}

std::string nearestFolder(const std::string& folder) {
  namespace fs = std::filesystem;
  std::error_code unknown;
  fs::path nearest = folder;
  while (!fs::is_directory(nearest, unknown) && nearest.has_relative_path()) {
    nearest = nearest.parent_path();
  }
  return nearest.string();
}

bool isBeingReplaced(const std::string& path, const OVRecoveredListing& listing) {
  const std::string part = path + ".part";
  return std::any_of(listing.files.begin(), listing.files.end(), [&part](const auto& file) {
    return isBeingMade(file.state) && file.path == part;
  });
}

// Nothing if the name belongs to another file now.
const OVRecoveredFile* findHeld(const std::string& path, const std::vector<OVRecoveredFile>& held) {
  const auto found = std::find_if(held.begin(), held.end(), [&path](const auto& file) {
    return file.claim && file.path == path && file.claim->checkName() == 0;
  });
  return found == held.end() ? nullptr : &*found;
}

// " 2" comes after the name without a number.
bool isEarlier(const OVRecoveredFile& one, const OVRecoveredFile& other) {
  if (one.start != other.start) {
    return one.start < other.start;
  }
  return one.path.size() != other.path.size() ? one.path.size() < other.path.size()
                                              : one.path < other.path;
}

// Header ----------------------------------------------------------------------------------------

// Numbers in a CAF header are big-endian.
template <std::size_t size>
std::uint64_t numberAt(const std::array<unsigned char, size>& bytes, std::size_t offset,
                       std::size_t length) {
  std::uint64_t number = 0;
  for (std::size_t i = offset; i < offset + length; ++i) {
    number = number << 8U | bytes[i];
  }
  return number;
}

constexpr std::uint64_t codeOf(const char (&code)[5]) {
  std::uint64_t number = 0;
  for (int i = 0; i < 4; ++i) {
    number = number << 8U | static_cast<unsigned char>(code[i]);
  }
  return number;
}

template <std::size_t size>
bool read(platform::File& file, std::uint64_t offset, std::array<unsigned char, size>& bytes) {
  return file.readAt(bytes.data(), size, offset).byteCount == size;
}

bool describesWorkingFormat(platform::File& file, std::uint64_t offset) {
  std::array<unsigned char, 32> description{};
  return read(file, offset, description) &&
         std::bit_cast<double>(numberAt(description, 0, 8)) ==
             platform::kWorkingFormat.mSampleRate &&
         numberAt(description, 8, 4) == codeOf("lpcm") &&
         numberAt(description, 16, 4) == platform::kWorkingFrameBytes;
}

OVRecoveredContent contentOf(std::uint64_t announced, std::uint64_t there) {
  constexpr std::uint64_t kUntilTheEnd = ~std::uint64_t{0};
  constexpr std::uint64_t kEditCount = 4;  // bytes before the sound, in the chunk
  if (there < kEditCount || announced < kEditCount) {
    return {};
  }
  const std::uint64_t sound =
      (announced == kUntilTheEnd ? there : std::min(announced, there)) - kEditCount;
  return {.frames = sound / platform::kWorkingFrameBytes,
          .isWhole = announced == kUntilTheEnd || announced <= there};
}

}  // namespace

std::string recoveredFolder() {
  const std::string data = platform::userDataDirectory();
  return data.empty() ? data : data + "/orvo/recovered";
}

OVRecoveredListing recoveredFilesIn(const std::string& folder,
                                    const std::vector<OVRecoveredFile>& held) {
  OVRecoveredListing listing;
  listing.nearest = nearestFolder(folder);
  const auto opened = platform::PrivateFolder::at(folder, kOwnFolders);
  if (!opened) {
    listing.error = opened.error() == ENOENT ? 0 : opened.error();
    return listing;
  }
  // A part comes before the file that it may be about to replace.
  const auto names = latestNames(*opened);
  for (auto each = names.rbegin(); each != names.rend(); ++each) {
    const std::string path = folder + "/" + *each;
    if (isBeingReplaced(path, listing)) {
      continue;
    }
    if (const auto* const before = findHeld(path, held)) {
      listing.files.push_back(*before);
    } else if (auto found = examine(*opened, folder, *each, listing)) {
      listing.files.push_back(*std::move(found));
    }
  }
  std::sort(listing.files.begin(), listing.files.end(), isEarlier);
  return listing;
}

QDateTime startInName(const std::string& name) {
  const std::string_view end = isUnfinished(name) ? kUnfinishedSuffix : kSuffix;
  if (!name.starts_with(kPrefix) || !name.ends_with(end) ||
      name.size() < kPrefix.size() + kTimeFormat.size() + end.size()) {
    return {};
  }
  const std::string_view time = std::string_view(name).substr(kPrefix.size(), kTimeFormat.size());
  const std::string_view further =
      std::string_view(name).substr(kPrefix.size() + kTimeFormat.size(),
                                    name.size() - kPrefix.size() - kTimeFormat.size() - end.size());
  if (!further.empty() && !further.starts_with(' ')) {
    return {};
  }
  return QDateTime::fromString(
      QString::fromLatin1(time.data(), static_cast<qsizetype>(time.size())),
      QString::fromLatin1(kTimeFormat.data(), static_cast<qsizetype>(kTimeFormat.size())));
}

OVRecoveredContent recoveredContentOf(platform::File& file) {
  constexpr std::uint64_t kChunkHeader = 12;
  const std::uint64_t size = file.size();
  std::array<unsigned char, 8> start{};
  if (!read(file, 0, start) || numberAt(start, 0, 4) != codeOf("caff")) {
    return {};
  }
  bool described = false;
  std::uint64_t offset = start.size();
  for (int i = 0; i < kMaxChunks; ++i) {
    std::array<unsigned char, kChunkHeader> header{};
    if (!read(file, offset, header)) {
      return {};
    }
    offset += kChunkHeader;
    const std::uint64_t length = numberAt(header, 4, 8);
    const std::uint64_t code = numberAt(header, 0, 4);
    if (code == codeOf("data")) {
      return described ? contentOf(length, size - offset) : OVRecoveredContent();
    }
    if (code == codeOf("desc")) {
      described = describesWorkingFormat(file, offset);
    }
    if (length > size - offset) {
      return {};
    }
    offset += length;
  }
  return {};
}
