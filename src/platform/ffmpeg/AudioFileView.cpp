#include "platform/ffmpeg/AudioFileView.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "platform/files/SecondRead.h"

namespace platform {

FileTransfer AudioFileView::readAt(void* destination, std::uint64_t byteCount,
                                   std::uint64_t offset) {
  if (offset >= shownEnd_) {
    return {};
  }
  auto* const bytes = static_cast<char*>(destination);
  const FileTransfer transfer =
      readUncorrected(bytes, std::min(byteCount, shownEnd_ - offset), offset);
  for (const Extent& each : corrections_) {
    const std::uint64_t from = std::max(each.offset, offset);
    const std::uint64_t to = std::min(each.end(), offset + transfer.byteCount);
    if (from < to) {
      std::memcpy(bytes + (from - offset), each.bytes.data() + (from - each.offset), to - from);
    }
  }
  return transfer;
}

FileTransfer AudioFileView::readUncorrected(char* destination, std::uint64_t byteCount,
                                            std::uint64_t offset) {
  for (const Extent& each : remembered_) {
    if (each.offset <= offset && offset < each.end()) {
      const std::uint64_t count = std::min(byteCount, each.end() - offset);
      std::memcpy(destination, each.bytes.data() + (offset - each.offset), count);
      return {.byteCount = count, .error = 0};
    }
    if (offset < each.offset) {
      byteCount = std::min(byteCount, each.offset - offset);
    }
  }
  const FileTransfer transfer = readWithSecondTry(file_, destination, byteCount, offset);
  bytesRead_ += transfer.byteCount;
  if (transfer.error != 0) {
    ++failedReads_;
    firstError_ = firstError_ == 0 ? transfer.error : firstError_;
  }
  if (remembers_ && transfer.error == 0) {
    remember(destination, transfer.byteCount, offset);
  }
  return transfer;
}

void AudioFileView::remember(const char* bytes, std::uint64_t byteCount, std::uint64_t offset) {
  const std::uint64_t kept = std::min<std::uint64_t>(byteCount, kMaxRemembered);
  if (kept == 0) {
    return;
  }
  remembered_.push_back({offset + byteCount - kept, {bytes + byteCount - kept, kept}});
  rememberedBytes_ += kept;
  while (rememberedBytes_ > kMaxRemembered) {
    // What is furthest on has yet to be read: the file is read from its start in the end.
    const auto first = std::min_element(
        remembered_.begin(), remembered_.end(),
        [](const Extent& one, const Extent& other) { return one.offset < other.offset; });
    const std::size_t surplus = rememberedBytes_ - kMaxRemembered;
    if (first == remembered_.end() - 1 && first->bytes.size() > surplus) {
      first->bytes.erase(0, surplus);
      first->offset += surplus;
      rememberedBytes_ -= surplus;
    } else {
      rememberedBytes_ -= first->bytes.size();
      remembered_.erase(first);
    }
  }
}

std::string AudioFileView::peek(std::uint64_t offset, std::size_t byteCount) {
  byteCount = std::min(byteCount, kPeekBytes);
  // As many as FFmpeg reads at once, so that both go together.
  std::string bytes(isRemembered(offset, byteCount) ? byteCount : kPeekBytes, '\0');
  std::uint64_t done = 0;
  while (done < byteCount) {
    const FileTransfer transfer = readAt(bytes.data() + done, bytes.size() - done, offset + done);
    if (transfer.byteCount == 0) {
      break;
    }
    done += transfer.byteCount;
  }
  bytes.resize(std::min<std::uint64_t>(done, byteCount));
  return bytes;
}

bool AudioFileView::isRemembered(std::uint64_t offset, std::size_t byteCount) const {
  return std::any_of(remembered_.begin(), remembered_.end(), [&](const Extent& each) {
    return each.offset <= offset && offset + byteCount <= each.end();
  });
}

void AudioFileView::correct(std::uint64_t offset, std::string bytes) {
  corrections_.push_back({offset, std::move(bytes)});
}

void AudioFileView::endAt(std::uint64_t size) {
  size_ = size;
  shownEnd_ = size;
}

}  // namespace platform
