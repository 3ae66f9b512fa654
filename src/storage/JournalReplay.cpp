#include "storage/JournalReplay.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <limits>
#include <memory>
#include <utility>

#include "storage/BufferTransfer.h"

using journal::Kind;

namespace {

// 0, or EBADMSG if the file ends before, or the errno.
int read(platform::File& file, void* destination, std::uint64_t byteCount, std::uint64_t offset) {
  const auto transfer = readWhole(file, destination, byteCount, offset);
  if (transfer.byteCount == byteCount) {
    return 0;
  }
  return transfer.error != 0 ? transfer.error : EBADMSG;
}

// The writer has ended, or the values read are each complete.
platform::Result<std::unique_ptr<journal::Header>> readHeader(platform::File& file) {
  auto header = std::make_unique<journal::Header>();
  if (const int error = read(file, header.get(), sizeof *header, 0); error != 0) {
    return error;
  }
  if (header->magic != journal::kMagic) {
    return EBADMSG;
  }
  return header;
}

// Reachable blocks never overlap, which the list relies on. Where those of a damaged state do, each
// ends where the next one begins.
void keepApart(std::vector<OVBlock>& blocks) {
  std::vector<OVBlock*> reachable;
  reachable.reserve(blocks.size());
  for (OVBlock& block : blocks) {
    if (block.linear_addr_start() < block.end()) {
      reachable.push_back(&block);
    }
  }
  std::stable_sort(reachable.begin(), reachable.end(),
                   [](const OVBlock* one, const OVBlock* other) {
                     return one->linear_addr_start() < other->linear_addr_start();
                   });
  for (std::size_t i = 1; i < reachable.size(); ++i) {
    OVBlock& block = *reachable[i - 1];
    block.setSize(
        std::min(block.size(), reachable[i]->linear_addr_start() - block.linear_addr_start()));
  }
}

bool fits(std::uint64_t address, std::uint64_t size) {
  return size <= std::numeric_limits<std::uint64_t>::max() - address;
}

}  // namespace

platform::Result<JournalOrigin> readJournalOrigin(platform::File& file) {
  const auto header = readHeader(file);
  if (!header) {
    return header.error();
  }
  const journal::Header& read = **header;
  const std::int64_t recording = read.firstRecording.load();
  const auto end = std::find(read.recoveredFrom.begin(), read.recoveredFrom.end(), '\0');
  return JournalOrigin{.state = read.state.load(),
                       .begun = recording != 0 ? recording : read.created,
                       .recoveredFrom = std::string(read.recoveredFrom.begin(), end),
                       .recoveredFile = read.recoveredFile};
}

platform::Result<JournalReplay> JournalReplay::begin(platform::File& file) {
  const auto header = readHeader(file);
  if (!header) {
    return header.error();
  }
  const auto published = journal::unpacked((*header)->published.load());
  if (published.end == 0 || published.end > journal::kAreaBytes) {
    return EBADMSG;
  }
  std::vector<std::byte> area(published.end);
  if (const int error = read(file, area.data(), area.size(), journal::areaOffset(published.area));
      error != 0) {
    return error;
  }
  JournalReplay replay(std::move(area));
  if (!replay.takeState()) {
    return EBADMSG;
  }
  return replay;
}

template <typename T>
bool JournalReplay::take(T& value) {
  if (area_.size() - at_ < sizeof value) {
    return false;
  }
  std::memcpy(&value, area_.data() + at_, sizeof value);
  at_ += sizeof value;
  return true;
}

bool JournalReplay::takeState() {
  journal::Record first;
  if (!take(first) || first.kind != Kind::state ||
      first.a > (area_.size() - at_) / sizeof(journal::Block)) {
    return false;
  }
  std::vector<OVBlock> blocks;
  blocks.reserve(first.a);
  for (std::uint64_t i = 0; i < first.a; ++i) {
    journal::Block block;
    if (!take(block)) {
      return false;
    }
    blocks.emplace_back(block.linear_addr_start, block.file_offset_start, block.size);
  }
  keepApart(blocks);
  list_ = BlockList(blocks);
  fillSize_ = first.b;
  return true;
}

void JournalReplay::run() {
  while (step()) {
  }
}

bool JournalReplay::step() {
  journal::Record record;
  return take(record) && apply(record);
}

// The same steps as OVBlockBuffer takes.
bool JournalReplay::apply(const journal::Record& record) {
  switch (record.kind) {
    case Kind::write:
      if (!fits(record.a, record.c)) {
        return false;
      }
      list_.map(OVBlock(record.a, record.b, record.c));
      fillSize_ = std::max(fillSize_, record.a + record.c);
      return true;
    case Kind::cutAfter:
      list_.cutAfter(record.a);
      fillSize_ = record.a;
      return true;
    case Kind::cutBefore:
      list_.cutBefore(record.a);
      fillSize_ -= record.a;
      return true;
    case Kind::merge:
      list_.mergeNeighbours();
      return true;
    case Kind::keep:
      kept_[record.a] = OVBufferState::initWithBlocklist(list_, fillSize_);
      return true;
    case Kind::restore:
      if (const auto kept = kept_.find(record.a); kept != kept_.end()) {
        list_ = kept->second->list();
        fillSize_ = kept->second->bufferFillSize();
        return true;
      }
      return false;
    case Kind::state:
      return false;
  }
  return false;
}
