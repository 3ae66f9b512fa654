#pragma once

#include <bit>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace support {

/// A CAF file of 32-bit float stereo, as recordings are kept after an unexpected end.
///
/// @param announced  bytes of sound according to the header; those of the samples if not given,
///                   -1 for "until the end of the file"
[[nodiscard]] inline std::string recoveredCaf(const std::vector<float>& samples,
                                              std::optional<std::int64_t> announced = {}) {
  std::string bytes;
  const auto append = [&bytes](std::uint64_t number, int count) {
    for (int i = count - 1; i >= 0; --i) {
      bytes.push_back(static_cast<char>(number >> (8 * i) & 0xffU));
    }
  };
  const auto size = static_cast<std::int64_t>(samples.size() * sizeof(float));
  const std::int64_t sound = announced.value_or(size);
  bytes += "caff";
  append(1, 2);
  append(0, 2);
  bytes += "desc";
  append(32, 8);
  append(std::bit_cast<std::uint64_t>(44100.0), 8);
  bytes += "lpcm";
  append(std::endian::native == std::endian::little ? 3 : 1, 4);  // float, little-endian
  append(8, 4);                                                   // bytes in a packet
  append(1, 4);                                                   // frames in a packet
  append(2, 4);                                                   // channels
  append(32, 4);                                                  // bits in a sample
  bytes += "data";
  append(static_cast<std::uint64_t>(sound < 0 ? sound : sound + 4), 8);
  append(0, 4);
  bytes.append(reinterpret_cast<const char*>(samples.data()), samples.size() * sizeof(float));
  return bytes;
}

/// Bytes of recoveredCaf() before the sound.
inline constexpr std::uint64_t kRecoveredHeaderBytes = 68;

/// The folder of recovered recordings in a data folder, with the rights that it must have.
///
/// Threads: any one at a time.
class RecoveredFolder {
 public:
  explicit RecoveredFolder(const std::string& dataFolder) : path_(dataFolder + "/orvo/recovered") {
    std::filesystem::create_directories(dataFolder + "/orvo");
    ::mkdir(path_.c_str(), 0700);  // never open to others, not even for a moment
  }

  [[nodiscard]] const std::string& path() const { return path_; }
  [[nodiscard]] std::string file(const std::string& name) const { return path_ + "/" + name; }
  [[nodiscard]] bool has(const std::string& name) const {
    return std::filesystem::exists(file(name));
  }
  std::string put(const std::string& name, const std::string& bytes) const {
    std::ofstream(file(name), std::ios::binary) << bytes;
    return file(name);
  }
  /// Adds a whole recording; returns its path.
  std::string add(const std::string& name, const std::vector<float>& samples) const {
    return put(name, recoveredCaf(samples));
  }

 private:
  const std::string path_;
};

/// Holds the lock of a file, as its writer or another program would.
///
/// Threads: any one at a time.
class FileLock {
 public:
  explicit FileLock(const std::string& path)
      : descriptor_(::open(path.c_str(), O_RDONLY | O_CLOEXEC)),
        isHeld_(::flock(descriptor_, LOCK_EX | LOCK_NB) == 0) {}
  ~FileLock() { ::close(descriptor_); }
  FileLock(const FileLock&) = delete;
  FileLock& operator=(const FileLock&) = delete;

  /// Whether nobody else held it.
  [[nodiscard]] bool isHeld() const { return isHeld_; }

 private:
  const int descriptor_;
  const bool isHeld_;
};

}  // namespace support
