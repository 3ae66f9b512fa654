#pragma once

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

#include "keeper/CafHeader.h"
#include "platform/files/PosixFile.h"
#include "storage/OVBlockBuffer.h"
#include "support/TransferHelpers.h"

/// What tests of the keeper do with recordings and recovered files.
///
/// Threads: one.
namespace support {

inline std::unique_ptr<platform::File> sameFile(int descriptor) {
  return std::make_unique<platform::PosixFile>(::fcntl(descriptor, F_DUPFD_CLOEXEC, 3));
}

/// A buffer over a real temporary file, with a journal, whose document was edited.
inline std::shared_ptr<OVBlockBuffer> editedBuffer(std::int64_t created = 1'000'000'000,
                                                   const std::string& recoveredFrom = {}) {
  auto buffer = OVBlockBuffer::init();
  if (buffer && buffer->beginJournal({.created = created, .recoveredFrom = recoveredFrom})) {
    buffer->journal()->setState(journal::State::edited);
  }
  return buffer;
}

/// Calls a function before each read, with the number of reads before it.
class WatchedAudio : public platform::File {
 public:
  WatchedAudio(int descriptor, std::function<void(int)> beforeRead)
      : file_(sameFile(descriptor)), beforeRead_(std::move(beforeRead)) {}

  platform::FileTransfer readAt(void* destination, std::uint64_t byteCount,
                                std::uint64_t offset) override {
    beforeRead_(reads_++);
    return file_->readAt(destination, byteCount, offset);
  }
  platform::FileTransfer writeAt(const void*, std::uint64_t, std::uint64_t) override { return {}; }
  std::uint64_t size() override { return file_->size(); }
  int setSize(std::uint64_t) override { return ENOTSUP; }
  [[nodiscard]] int descriptor() const override { return file_->descriptor(); }

 private:
  const std::unique_ptr<platform::File> file_;
  const std::function<void(int)> beforeRead_;
  int reads_ = 0;
};

inline std::string recoveredPath(const std::string& dataDirectory) {
  return dataDirectory + "/orvo/recovered";
}

/// Names of the files in the folder of recovered recordings, sorted.
inline std::vector<std::string> recoveredNames(const std::string& dataDirectory) {
  std::vector<std::string> names;
  std::error_code none;
  for (const auto& entry :
       std::filesystem::directory_iterator(recoveredPath(dataDirectory), none)) {
    names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

/// The samples of a CAF file, as bytes; empty if its data chunk is not whole.
inline Bytes cafAudio(const std::string& path) {
  std::ifstream stream(path, std::ios::binary);
  const std::string file((std::istreambuf_iterator<char>(stream)), {});
  for (std::size_t at = 8; at + 12 <= file.size();) {
    std::uint64_t size = 0;
    for (std::size_t i = 4; i < 12; ++i) {
      size = size << 8 | static_cast<unsigned char>(file[at + i]);
    }
    const std::size_t begin = at + 12;
    if (size > file.size() - begin) {
      return {};
    }
    if (file.compare(at, 4, "data") == 0) {
      return {file.begin() + static_cast<std::ptrdiff_t>(begin + 4),
              file.begin() + static_cast<std::ptrdiff_t>(begin + size)};
    }
    at = begin + size;
  }
  return {};
}

/// The value of a text in a file of a few kilobytes that begins with a CAF header, such as
/// "recorded date" in its info chunk; empty if it is not there.
inline std::string cafInformation(const std::string& path, const std::string& key) {
  std::ifstream stream(path, std::ios::binary);
  const std::string file((std::istreambuf_iterator<char>(stream)), {});
  const std::string name = key + '\0';
  const std::size_t info = file.find("info");
  const std::size_t at = info == std::string::npos ? info : file.find(name, info);
  return at == std::string::npos ? std::string() : std::string(file.c_str() + at + name.size());
}

/// What a document plays: reading from 0 to the end; what cannot be read is silent.
inline Bytes wholeRecording(OVBlockBuffer& buffer) {
  Bytes all(buffer.bufferFillSize() / 8 * 8);
  for (std::size_t at = 0; at < all.size();) {
    const auto got = buffer.readDataInto(all.data() + at, all.size() - at, at).byteCount;
    at += got == 0 ? 1 : got;
  }
  return all;
}

}  // namespace support
