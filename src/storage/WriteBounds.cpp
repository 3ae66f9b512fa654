#include "storage/WriteBounds.h"

#include <cinttypes>
#include <limits>

#include "platform/base/ApplicationServices.h"

bool refuseIfPastAddressSpace(std::uint64_t atByteOffset, std::uint32_t withSize) {
  if (withSize <= std::numeric_limits<std::uint64_t>::max() - atByteOffset) {
    return true;
  }
  ConsoleLog("refused to write %" PRIu32 " bytes at %" PRIu64 ": past the highest address",
             withSize, atByteOffset);
  return false;
}
