#include "storage/OVBufferState.h"

#include <utility>

OVBufferState::OVBufferState(BlockList blocklist, std::uint64_t bufferFillSize)
    : blocklist_(std::move(blocklist)), bufferFillSize_(bufferFillSize) {}

std::shared_ptr<const OVBufferState> OVBufferState::initWithBlocklist(
    const std::vector<OVBlock>& blocklist, std::uint64_t andBufferFillSize) {
  return initWithBlocklist(BlockList(blocklist), andBufferFillSize);
}

std::shared_ptr<const OVBufferState> OVBufferState::initWithBlocklist(
    const BlockList& blocklist, std::uint64_t andBufferFillSize) {
  return std::shared_ptr<const OVBufferState>(new OVBufferState(blocklist, andBufferFillSize));
}
