#include "storage/OVBufferState.h"

#include <atomic>
#include <utility>

namespace {

// Of all buffers. Each buffer numbers its states under its own lock, so relaxed order is enough.
std::atomic<std::uint64_t> serials{1};

}  // namespace

OVBufferState::OVBufferState(BlockList blocklist, std::uint64_t bufferFillSize)
    : blocklist_(std::move(blocklist)),
      bufferFillSize_(bufferFillSize),
      serial_(serials.fetch_add(1, std::memory_order_relaxed)) {}

std::uint64_t OVBufferState::nextSerial() {
  return serials.load(std::memory_order_relaxed);
}

std::shared_ptr<const OVBufferState> OVBufferState::initWithBlocklist(
    const std::vector<OVBlock>& blocklist, std::uint64_t andBufferFillSize) {
  return initWithBlocklist(BlockList(blocklist), andBufferFillSize);
}

std::shared_ptr<const OVBufferState> OVBufferState::initWithBlocklist(
    const BlockList& blocklist, std::uint64_t andBufferFillSize) {
  return std::shared_ptr<const OVBufferState>(new OVBufferState(blocklist, andBufferFillSize));
}
