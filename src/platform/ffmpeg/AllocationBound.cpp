#include "platform/ffmpeg/AllocationBound.h"

#include <algorithm>
#include <mutex>

#include "platform/ffmpeg/Ffmpeg.h"

namespace platform {
namespace {

constexpr std::uint64_t kTableBytesPerFileByte = 24;  // an entry for each frame of 8-bit sound

struct Bound {
  std::mutex mutex;
  std::size_t bytes = 0;
};

Bound& bound() {
  static Bound instance;
  return instance;
}

}  // namespace

std::size_t allocationBoundFor(std::uint64_t fileSize) {
  if (fileSize > kLargestAllocationBound / kTableBytesPerFileByte) {
    return kLargestAllocationBound;
  }
  return std::max(static_cast<std::size_t>(fileSize * kTableBytesPerFileByte),
                  kSmallestAllocationBound);
}

void allowAllocations(std::size_t bytes) {
  const std::lock_guard lock(bound().mutex);
  if (bytes > bound().bytes) {
    bound().bytes = bytes;
    av_max_alloc(bytes);
  }
}

std::size_t allocationBound() {
  const std::lock_guard lock(bound().mutex);
  return std::max(bound().bytes, kSmallestAllocationBound);
}

}  // namespace platform
