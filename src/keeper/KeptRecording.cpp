#include "keeper/KeptRecording.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <ctime>
#include <iterator>
#include <limits>
#include <new>
#include <utility>

#include "keeper/CafHeader.h"
#include "keeper/FileRoom.h"
#include "keeper/PassingErrors.h"
#include "platform/base/AudioTypes.h"
#include "platform/files/SecondRead.h"

namespace {

constexpr std::size_t kCopied = std::size_t{256} << 10;  // bytes at a time
constexpr std::size_t kUnreadable = 4096;  // bytes that are skipped where the disk returns none

constexpr std::size_t kHeld = 64;  // stretches in memory, at most, while they are moved

bool isFull(int error) {
  return error == ENOSPC || error == EDQUOT;
}

std::string localTime(std::int64_t seconds, const char* format) {
  const std::time_t time = seconds;
  std::tm local = {};
  if (::localtime_r(&time, &local) == nullptr) {
    return {};
  }
  std::array<char, 64> text{};
  return {text.data(), std::strftime(text.data(), text.size(), format, &local)};
}

// Bytes of a recording; without a sensible length, up to the end of its last block.
std::uint64_t lengthOf(const std::vector<OVBlock>& blocks, std::uint64_t fillSize) {
  constexpr auto kSensible =
      static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max()) / 2;
  const std::uint64_t end = blocks.empty() ? 0 : blocks.back().end();
  const std::uint64_t length = fillSize <= kSensible ? fillSize : std::min(end, kSensible);
  return length / platform::kWorkingFrameBytes * platform::kWorkingFrameBytes;
}

std::vector<OVBlock> cutAt(std::uint64_t length, std::vector<OVBlock> blocks) {
  std::erase_if(blocks,
                [length](const auto& block) { return block.linear_addr_start() >= length; });
  for (OVBlock& block : blocks) {
    block.setSize(std::min(block.size(), length - block.linear_addr_start()));
  }
  return blocks;
}

// The blocks in the order of the file. Blocks of one recording never share bytes of it.
std::vector<OVBlock> inFileOrder(std::vector<OVBlock> blocks) {
  std::sort(blocks.begin(), blocks.end(), [](const OVBlock& one, const OVBlock& other) {
    return one.file_offset_start() < other.file_offset_start();
  });
  return blocks;
}

}  // namespace

KeptRecording::KeptRecording(std::unique_ptr<platform::File> audio,
                             std::unique_ptr<platform::File> journal)
    : audio_(std::move(audio)), journal_(std::move(journal)) {}

KeptRecording::Outcome KeptRecording::recover(RecoveredFolder& folder) {
  int error = 0;
  try {
    error = write(folder);
  } catch (const std::bad_alloc&) {
    error = ENOMEM;  // must not end the keeper, which may have other recordings
  }
  if (error == 0) {
    return Outcome::done;
  }
  if (mayPass(error)) {
    if (part_ && !part_->isSynced && way_ == Way::copy) {
      // The disk is full enough.
      static_cast<void>(setLengthWithoutRoom(part_->file->descriptor(), fileBytes()));
    }
    return Outcome::waiting;
  }
  // A recording that only lacks its name is offered with the suffix. So is what there is of one
  // that was moved: nothing else has it.
  const auto left = std::exchange(part_, std::nullopt);
  if (left && !left->isSynced && way_ == Way::copy) {
    folder.discard(*left);
  }
  return Outcome::failed;
}

int KeptRecording::write(RecoveredFolder& folder) {
  if (part_ && part_->isSynced) {
    return folder.complete(*part_);
  }
  if (way_ == Way::copy) {
    if (const int error = replay(); error != 0 || length_ == 0) {
      return error;
    }
    if (const int error = createPart(folder); error != 0) {
      return error;
    }
  }
  if (const int error = writePart(); error != 0) {
    return error;
  }
  if (lost_ != 0) {
    ::fsync(part_->file->descriptor());
    return lost_;
  }
  return folder.complete(*part_);
}

int KeptRecording::replay() {
  length_ = 0;
  auto origin = readJournalOrigin(*journal_);
  if (!origin) {
    return origin.error();
  }
  origin_ = *std::move(origin);
  if (origin_.state != journal::State::edited) {
    return 0;
  }
  auto replay = JournalReplay::begin(*journal_);
  if (!replay) {
    return replay.error();
  }
  replay->run();
  blocks_ = replay->list().reachableBlocks();
  length_ = lengthOf(blocks_, replay->fillSize());
  blocks_ = cutAt(length_, std::move(blocks_));
  header_ = cafHeader(length_, localTime(origin_.begun, "%Y-%m-%dT%H:%M:%S%z"));
  return 0;
}

int KeptRecording::createPart(RecoveredFolder& folder) {
  if (part_) {
    return 0;
  }
  const std::string name = localTime(origin_.begun, "Orvo recording %Y-%m-%d %H.%M.%S");
  // A damaged time may have no date; without a name the file would be hidden.
  auto part = folder.create(name.empty() ? "Orvo recording" : name,
                            {.name = origin_.recoveredFrom, .number = origin_.recoveredFile});
  if (!part) {
    return part.error();
  }
  part_ = *std::move(part);
  return 0;
}

int KeptRecording::writePart() {
  if (way_ == Way::copy) {
    if (const int error = takeRoom(); error != 0) {
      return error;
    }
    block_ = 0;
    inBlock_ = 0;
    hasHeader_ = false;
    held_.clear();
  }
  return writeSound();
}

// Afterwards the recording is copied, or moved.
int KeptRecording::takeRoom() {
  const int file = part_->file->descriptor();
  int error = reserveRoom(file, fileBytes());
  if (isFull(error) && canMove()) {
    error = reserveRoom(file, fileBytes());  // what the recording does not use may be enough
    if (isFull(error)) {
      error = setLengthWithoutRoom(file, fileBytes());
      way_ = error == 0 ? Way::move : Way::copy;
    }
  }
  return error;
}

// Gives back what the recording does not use.
bool KeptRecording::canMove() {
  const int audio = audio_->descriptor();
  if (audio < 0 || !areOnOneDisk(audio, part_->file->descriptor())) {
    return false;
  }
  unread_.clear();
  std::uint64_t used = 0;  // up to here
  for (const OVBlock& block : inFileOrder(blocks_)) {
    const std::uint64_t begin = block.file_offset_start();
    if (begin < used) {
      return false;  // never so; its bytes would be gone when they are read again
    }
    if (!giveBackRoom(audio, used, begin - used)) {
      return false;
    }
    used = begin + block.size();
    unread_.emplace(begin, used);
  }
  const std::uint64_t size = audio_->size();
  return giveBackRoom(audio, used, size > used ? size - used : kUnreadable);
}

// What is not written reads as zeros, which is silence. A stretch that is moved frees somewhat less
// than it takes while its first and last block of the disk are needed: then more of them are held.
// The header gets the first room there is: without it, what a killed keeper leaves could not be
// read.
int KeptRecording::writeSound() {
  while (true) {
    int error = writeHeader();
    if (error == 0) {
      error = writeHeld();
    }
    const bool mayRead = error == 0 || (way_ == Way::move && isFull(error) && held_.size() < kHeld);
    if (!mayRead || !readNext()) {
      return error;
    }
  }
}

int KeptRecording::writeHeader() {
  int error = 0;
  if (!hasHeader_) {
    error = part_->file->writeAt(header_.data(), header_.size(), 0).error;
    hasHeader_ = error == 0;
  }
  return orLost(error);
}

int KeptRecording::writeHeld() {
  for (; !held_.empty(); held_.pop_front()) {
    Held& held = held_.front();
    const auto written =
        part_->file->writeAt(held.bytes.data(), held.count, header_.size() + held.to);
    if (const int error = orLost(written.error); error != 0) {
      return error;
    }
    spare_ = std::move(held.bytes);
  }
  return 0;
}

// No error that lasts ends the writing of a recording that is moved.
int KeptRecording::orLost(int error) {
  if (way_ == Way::copy || error == 0 || mayPass(error)) {
    return error;
  }
  lost_ = error;
  return 0;
}

// Gives back a stretch that was read, together with what was given back on both sides of it: a
// block of the disk is free only once all of it is given back at a time.
void KeptRecording::giveBack(std::uint64_t from, std::uint64_t byteCount) {
  const auto next = unread_.upper_bound(from);
  if (next == unread_.begin()) {
    return;  // never so
  }
  const auto piece = std::prev(next);
  const std::uint64_t begin = piece == unread_.begin() ? 0 : std::prev(piece)->second;
  const std::uint64_t pieceEnd = piece->second;
  std::uint64_t end = from + byteCount;
  unread_.erase(piece);
  if (end < pieceEnd) {
    unread_.emplace(end, pieceEnd);
  } else {
    end = next != unread_.end() ? next->first : std::max(audio_->size(), end) + kUnreadable;
  }
  static_cast<void>(giveBackRoom(audio_->descriptor(), begin, end - begin));
}

// Holds the next stretch that can be read; false at the end of the recording.
bool KeptRecording::readNext() {
  while (block_ < blocks_.size()) {
    const OVBlock& block = blocks_[block_];
    Held held{.bytes = std::move(spare_), .count = 0, .to = block.linear_addr_start() + inBlock_};
    held.bytes.resize(kCopied);
    const std::uint64_t wanted = std::min<std::uint64_t>(kCopied, block.size() - inBlock_);
    const std::uint64_t from = block.file_offset_start() + inBlock_;
    const auto got = platform::readWithSecondTry(*audio_, held.bytes.data(), wanted, from);
    held.count = got.byteCount;
    if (way_ == Way::move && got.byteCount > 0) {
      giveBack(from, got.byteCount);
    }
    // The temporary file may end here, or not return some of its bytes.
    const bool hasEnded = got.byteCount < wanted && got.error == 0;
    inBlock_ += got.byteCount < wanted ? got.byteCount + kUnreadable : got.byteCount;
    if (hasEnded || inBlock_ >= block.size()) {
      ++block_;
      inBlock_ = 0;
    }
    if (held.count > 0) {
      held_.push_back(std::move(held));
      return true;
    }
    spare_ = std::move(held.bytes);
  }
  return false;
}
