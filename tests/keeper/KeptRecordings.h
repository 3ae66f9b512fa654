#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
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
