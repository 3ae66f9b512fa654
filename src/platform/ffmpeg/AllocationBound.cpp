#include "platform/ffmpeg/AllocationBound.h"

#include <algorithm>
#include <mutex>

#include "platform/ffmpeg/Ffmpeg.h"

namespace platform {
namespace {

constexpr std::uint64_t kTableBytesPerFileByte = 4;  // 24 for 8, and room for growth

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
  constexpr std::uint64_t kLongestFile = kLargestAllocationBound / kTableBytesPerFileByte;
  const auto table =
      static_cast<std::size_t>(std::min(fileSize, kLongestFile) * kTableBytesPerFileByte);
  return std::max(table, kSmallestAllocationBound);
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
