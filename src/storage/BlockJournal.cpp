#include "storage/BlockJournal.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <new>
#include <utility>

using journal::Kind;

namespace {

constexpr std::uint64_t kAhead = std::uint64_t{16} << 10;  // bytes kept ready for records
constexpr std::uint64_t kStep = std::uint64_t{64} << 10;   // bytes reserved at a time

std::uint64_t wholePages(std::uint64_t bytes) {
  return (bytes + journal::kPage - 1) / journal::kPage * journal::kPage;
}

}  // namespace

platform::Result<std::unique_ptr<BlockJournal>> BlockJournal::create(const Origin& origin) {
  auto memory = platform::SharedMemory::create("orvo journal", journal::kBytes);
  if (!memory) {
    return memory.error();
  }
  if (const int error = (*memory)->reserve(0, journal::kPage); error != 0) {
    return error;
  }
  return std::unique_ptr<BlockJournal>(new BlockJournal(*std::move(memory), origin));
}

BlockJournal::BlockJournal(std::unique_ptr<platform::SharedMemory> memory, const Origin& origin)
    : memory_(std::move(memory)), recordsPerState_(origin.recordsPerState) {
  auto& header = *new (memory_->bytes()) journal::Header;
  header.created = origin.created;
  header.firstRecording.store(origin.firstRecording, std::memory_order_relaxed);
  if (origin.recoveredFrom.size() < header.recoveredFrom.size()) {
    std::copy(origin.recoveredFrom.begin(), origin.recoveredFrom.end(),
              header.recoveredFrom.begin());
    header.recoveredFile = origin.recoveredFile;
  }
}

journal::Header& BlockJournal::header() const {
  return *std::launder(reinterpret_cast<journal::Header*>(memory_->bytes()));
}

std::byte* BlockJournal::area(std::size_t number) const {
  return memory_->bytes() + journal::areaOffset(number);
}

// Document --------------------------------------------------------------------------------------

void BlockJournal::setState(journal::State state) {
  header().state.store(state, std::memory_order_relaxed);
}

journal::State BlockJournal::state() const {
  return header().state.load(std::memory_order_relaxed);
}

bool BlockJournal::recordingBegins(std::int64_t time) {
  std::int64_t none = 0;
  return header().firstRecording.compare_exchange_strong(none, time, std::memory_order_relaxed);
}

void BlockJournal::recordingTakenBack() {
  header().firstRecording.store(0, std::memory_order_relaxed);
}

// Records ---------------------------------------------------------------------------------------

void BlockJournal::wrote(const OVBlock& block) {
  record({Kind::write, block.linear_addr_start(), block.file_offset_start(), block.size()});
}

void BlockJournal::cutAfter(std::uint64_t position) {
  record({Kind::cutAfter, position});
}

void BlockJournal::cutBefore(std::uint64_t position) {
  record({Kind::cutBefore, position});
}

void BlockJournal::merged() {
  record({Kind::merge});
}

void BlockJournal::kept(const OVBufferState& state) {
  record({Kind::keep, state.serial()});
}

void BlockJournal::restored(const OVBufferState& state) {
  if (state.serial() < firstKept_) {
    isBehind_.store(true, std::memory_order_relaxed);
  } else {
    record({Kind::restore, state.serial()});
  }
}

void BlockJournal::record(const journal::Record& record) {
  const std::uint64_t end = end_.load(std::memory_order_relaxed);
  if (isBehind_.load(std::memory_order_relaxed) ||
      end + sizeof record > ready_.load(std::memory_order_acquire)) {
    isBehind_.store(true, std::memory_order_relaxed);
    return;
  }
  std::memcpy(area(active_) + end, &record, sizeof record);
  end_.store(end + sizeof record, std::memory_order_relaxed);
  publish();
}

void BlockJournal::publish() {
  header().published.store(
      journal::packed({.area = active_, .end = end_.load(std::memory_order_relaxed)}),
      std::memory_order_release);
}

// Room ------------------------------------------------------------------------------------------

bool BlockJournal::wantsState() const {
  return isBehind_.load(std::memory_order_relaxed) ||
         end_.load(std::memory_order_relaxed) > limit_.load(std::memory_order_relaxed);
}

bool BlockJournal::wantsRoom() const {
  const std::uint64_t ready = ready_.load(std::memory_order_relaxed);
  return ready < journal::kAreaBytes && end_.load(std::memory_order_relaxed) + kAhead > ready;
}

int BlockJournal::makeRoom() {
  while (wantsRoom()) {
    const std::uint64_t ready = ready_.load(std::memory_order_relaxed);
    const std::uint64_t more = std::min<std::uint64_t>(kStep, journal::kAreaBytes - ready);
    if (const int error = memory_->reserve(journal::areaOffset(active_) + ready, more);
        error != 0) {
      return error;
    }
    ready_.store(ready + more, std::memory_order_release);
  }
  return 0;
}

int BlockJournal::prepareState(std::uint64_t blocks) {
  // Other threads may add some before the state is written.
  const std::uint64_t room = blocks + blocks / 64 + 64;
  if (room > journal::kAreaBytes / sizeof(journal::Block) ||
      journal::stateBytes(room) + kAhead > journal::kAreaBytes) {
    return ENOSPC;
  }
  const std::uint64_t wanted = wholePages(journal::stateBytes(room) + kAhead);
  const int error = memory_->reserve(journal::areaOffset(1 - active_), wanted);
  prepared_ = error == 0 ? wanted : 0;
  return error;
}

bool BlockJournal::writeState(const BlockList& list, std::uint64_t fillSize) {
  const std::uint64_t bytes = journal::stateBytes(list.size());
  if (bytes + kAhead > prepared_) {
    return false;
  }
  const std::size_t other = 1 - active_;
  const journal::Record first{Kind::state, list.size(), fillSize};
  std::byte* to = area(other);
  std::memcpy(to, &first, sizeof first);
  to += sizeof first;
  list.forEach([&to](const OVBlock& block) {
    const journal::Block each{block.linear_addr_start(), block.file_offset_start(), block.size()};
    std::memcpy(to, &each, sizeof each);
    to += sizeof each;
  });
  active_ = other;
  end_.store(bytes, std::memory_order_relaxed);
  ready_.store(std::exchange(prepared_, 0), std::memory_order_relaxed);
  limit_.store(
      std::min(bytes + std::max(recordsPerState_, 2 * bytes), journal::kAreaBytes - kAhead),
      std::memory_order_relaxed);
  firstKept_ = OVBufferState::nextSerial();
  isBehind_.store(false, std::memory_order_relaxed);
  publish();
  return true;
}

void BlockJournal::releaseFormer() {
  memory_->release(journal::areaOffset(1 - active_), journal::kAreaBytes);
}
