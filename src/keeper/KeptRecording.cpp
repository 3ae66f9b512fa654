#include "keeper/KeptRecording.h"

#include <fcntl.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <ctime>
#include <limits>
#include <utility>

#include "keeper/CafHeader.h"
#include "keeper/PassingErrors.h"
#include "platform/base/AudioTypes.h"
#include "storage/JournalReplay.h"

namespace {

constexpr std::size_t kCopied = std::size_t{256} << 10;  // bytes at a time
constexpr std::size_t kUnreadable = 4096;  // bytes that are skipped where the disk returns none

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

// Room for the whole file, so that a full disk is noticed before any of it is written. Disks that
// cannot promise it are written to all the same.
int reserve(platform::PosixFile& file, std::uint64_t byteCount) {
#if defined(__linux__)
  if (::fallocate(file.descriptor(), 0, 0, static_cast<off_t>(byteCount)) != 0 &&
      errno != EOPNOTSUPP && errno != ENOSYS) {
    return errno;
  }
#endif
  return file.setSize(byteCount);
}

}  // namespace

KeptRecording::KeptRecording(std::unique_ptr<platform::File> audio,
                             std::unique_ptr<platform::File> journal)
    : audio_(std::move(audio)), journal_(std::move(journal)) {}

KeptRecording::Outcome KeptRecording::recover(RecoveredFolder& folder) {
  const int error = write(folder);
  if (error == 0) {
    return Outcome::done;
  }
  if (mayPass(error)) {
    if (part_ && !part_->isSynced) {
      static_cast<void>(part_->file->setSize(0));  // the disk is full enough
    }
    return Outcome::waiting;
  }
  // A recording that only lacks its name is offered with the suffix.
  if (const auto left = std::exchange(part_, std::nullopt); left && !left->isSynced) {
    folder.discard(*left);
  }
  return Outcome::failed;
}

int KeptRecording::write(RecoveredFolder& folder) {
  if (part_ && part_->isSynced) {
    return folder.complete(*part_);
  }
  const auto origin = readJournalOrigin(*journal_);
  if (!origin) {
    return origin.error();
  }
  if (origin->state != journal::State::edited) {
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
  if (length_ == 0) {
    return 0;
  }
  if (!part_) {
    auto part = folder.create(localTime(origin->begun, "Orvo recording %Y-%m-%d %H.%M.%S"),
                              origin->recoveredFrom);
    if (!part) {
      return part.error();
    }
    part_ = *std::move(part);
  }
  const int error = writePart(localTime(origin->begun, "%Y-%m-%dT%H:%M:%S%z"));
  return error != 0 ? error : folder.complete(*part_);
}

int KeptRecording::writePart(const std::string& recorded) {
  const auto header = cafHeader(length_, recorded);
  if (const int error = reserve(*part_->file, header.size() + length_); error != 0) {
    return error;
  }
  if (const auto written = part_->file->writeAt(header.data(), header.size(), 0);
      written.error != 0) {
    return written.error;
  }
  for (const OVBlock& block : blocks_) {
    if (const int error = copy(block, header.size()); error != 0) {
      return error;
    }
  }
  return 0;
}

// What is not written reads as zeros, which is silence.
int KeptRecording::copy(const OVBlock& block, std::uint64_t headerBytes) {
  std::vector<std::byte> bytes(kCopied);
  for (std::uint64_t done = 0; done < block.size();) {
    const std::uint64_t wanted = std::min<std::uint64_t>(bytes.size(), block.size() - done);
    const auto got = audio_->readAt(bytes.data(), wanted, block.file_offset_start() + done);
    const auto written = part_->file->writeAt(bytes.data(), got.byteCount,
                                              headerBytes + block.linear_addr_start() + done);
    if (written.error != 0) {
      return written.error;
    }
    done += got.byteCount;
    if (got.byteCount < wanted) {
      if (got.error == 0) {
        break;  // the temporary file ends here
      }
      done += kUnreadable;
    }
  }
  return 0;
}
