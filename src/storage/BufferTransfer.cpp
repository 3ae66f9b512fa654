#include "storage/BufferTransfer.h"

#include <cerrno>
#include <cinttypes>
#include <cstddef>
#include <limits>

#include "platform/base/ApplicationServices.h"
#include "platform/files/TemporaryFiles.h"

platform::FileTransfer readWhole(platform::File& file, void* destination, std::uint64_t byteCount,
                                 std::uint64_t fileOffset) {
  auto* const bytes = static_cast<std::byte*>(destination);
  platform::FileTransfer whole;
  while (whole.byteCount < byteCount) {
    const auto part = file.readAt(bytes + whole.byteCount, byteCount - whole.byteCount,
                                  fileOffset + whole.byteCount);
    whole.byteCount += part.byteCount;
    whole.error = part.error;
    if (part.byteCount == 0) {
      break;
    }
  }
  return whole;
}

int errorOfTransfer(const platform::FileTransfer& transfer, std::uint64_t byteCount) {
  if (transfer.byteCount >= byteCount) {
    return 0;
  }
  return transfer.error != 0 ? transfer.error : EIO;
}

void deleteTemporaryFile(const std::optional<std::string>& path) {
  if (path) {
    platform::deleteFile(*path);
  }
}

void alertThatNoTemporaryFileOpens(const std::string& path, const std::string& explanation) {
  ShowModalAlert("couldn't open temp file for writing!",
                 "The file " + path +
                     " couldn't be opened for writing. This shouldn't happen! Check your "
                     "permissions." +
                     (explanation.empty() ? explanation : "\n\n" + explanation));
}

bool refuseIfPastAddressSpace(std::uint64_t atByteOffset, std::uint32_t withSize) {
  if (withSize <= std::numeric_limits<std::uint64_t>::max() - atByteOffset) {
    return false;
  }
  ConsoleLog("refused to write %" PRIu32 " bytes at %" PRIu64 ": past the highest address",
             withSize, atByteOffset);
  return true;
}
