#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <limits>
#include <string>

#include "platform/files/File.h"

namespace platform {

/// The bytes of a file as FFmpeg is to see them.
///
///  - Each byte is read from the file once, although demuxers look at a file's end before they read
///    it from its start: what is read is remembered until stopRemembering(), at most
///    the kMaxRemembered bytes of it that are furthest on.
///  - Lengths that a program left wrong in a header can be corrected, and the end brought forward.
///
/// Threads: any, one at a time. Real-time: not safe.
class AudioFileView {
 public:
  static constexpr std::size_t kMaxRemembered = std::size_t{1} << 20;  ///< bytes
  static constexpr std::size_t kPeekBytes = std::size_t{64} << 10;     ///< most for peek()

  /// `file` must outlive the view. `size` is its size in bytes.
  AudioFileView(File& file, std::uint64_t size) : file_(file), size_(size) {}

  /// As File::readAt(), but may end early, after at least one byte.
  [[nodiscard]] FileTransfer readAt(void* destination, std::uint64_t byteCount,
                                    std::uint64_t offset);

  /// Up to `byteCount` bytes from `offset` on, fewer at the end or when a read failed.
  [[nodiscard]] std::string peek(std::uint64_t offset, std::size_t byteCount);

  /// Size in bytes.
  [[nodiscard]] std::uint64_t size() const { return size_; }

  /// Bytes read from the file so far.
  [[nodiscard]] std::uint64_t bytesRead() const { return bytesRead_; }

  /// The first failed read as an errno; 0 for none. A read fails if a second try does.
  [[nodiscard]] int firstError() const { return firstError_; }
  [[nodiscard]] std::uint64_t failedReads() const { return failedReads_; }

  /// Shows `bytes` in place of those at `offset`.
  void correct(std::uint64_t offset, std::string bytes);
  /// Shows no bytes from `size` on, which must not be beyond the end.
  void endAt(std::uint64_t size);

  /// What has been read from here on is not asked for again.
  void stopRemembering() { remembers_ = false; }

 private:
  struct Extent {
    std::uint64_t offset = 0;
    std::string bytes;

    [[nodiscard]] std::uint64_t end() const { return offset + bytes.size(); }
  };

  [[nodiscard]] FileTransfer readUncorrected(char* destination, std::uint64_t byteCount,
                                             std::uint64_t offset);
  [[nodiscard]] bool isRemembered(std::uint64_t offset, std::size_t byteCount) const;
  void remember(const char* bytes, std::uint64_t byteCount, std::uint64_t offset);

  File& file_;
  std::uint64_t size_;
  std::uint64_t shownEnd_ = std::numeric_limits<std::uint64_t>::max();
  std::uint64_t bytesRead_ = 0;
  int firstError_ = 0;
  std::uint64_t failedReads_ = 0;
  bool remembers_ = true;
  std::deque<Extent> remembered_;  // disjoint; the latest last
  std::size_t rememberedBytes_ = 0;
  std::deque<Extent> corrections_;
};

}  // namespace platform
