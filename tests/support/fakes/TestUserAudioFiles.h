#pragma once

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <limits>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <utility>

#include "platform/files/UserAudioFiles.h"

namespace support {

/// Audio files in memory with scripted failures. Pages of zeros take no room, so that hours of
/// silence can be written. Initially nothing fails. Install it with platform::Installed; it must
/// outlive the files.
///
/// Threads: any, also while files are in use.
class TestUserAudioFiles : public platform::UserAudioFiles {
 public:
  static constexpr std::uint64_t kUnlimited = std::numeric_limits<std::uint64_t>::max();
  static constexpr std::uint64_t kPageBytes = 65536;

  /// Sets the content of the only file, whatever name it is opened by. Zeros follow up to `size`.
  void setBytes(const std::string& bytes, std::uint64_t size = 0) {
    const std::lock_guard lock(mutex_);
    pages_.clear();
    size_ = 0;
    store(bytes.data(), bytes.size(), 0);
    size_ = std::max(size_, size);
  }
  [[nodiscard]] std::string bytes(std::uint64_t count = kUnlimited) const {
    const std::lock_guard lock(mutex_);
    std::string copy(std::min(count, size_), '\0');
    load(copy.data(), copy.size(), 0);
    return copy;
  }
  [[nodiscard]] std::uint64_t size() const {
    const std::lock_guard lock(mutex_);
    return size_;
  }

  /// Opening and creating fail with this errno; 0 makes them succeed.
  void failOpening(int error) { openingError_ = error; }
  /// The disk has room for `bytes` more bytes in all; the write that exceeds them is partial and
  /// ends with `error`.
  void fillUpAfter(std::uint64_t bytes, int error = ENOSPC) {
    bytesLeft_ = bytes;
    writeError_ = error;
  }
  /// Reads of bytes from `offset` on fail with EIO.
  void failReadsFrom(std::uint64_t offset) { unreadable_ = offset; }
  /// Runs before each read, on its thread, with the number of earlier reads.
  void beforeReads(std::function<void(std::uint64_t)> hook) { beforeRead_ = std::move(hook); }
  [[nodiscard]] std::uint64_t reads() const { return reads_; }

  [[nodiscard]] Opened openForReading(const std::string&) override {
    if (openingError_ != 0) {
      return openingError_;
    }
    return std::make_unique<MemoryFile>(*this);
  }

  [[nodiscard]] Opened createForWriting(const std::string&) override {
    if (openingError_ != 0) {
      return openingError_;
    }
    setBytes({});
    return std::make_unique<MemoryFile>(*this);
  }

  [[nodiscard]] Opened writeTo(int /*descriptor*/) override { return createForWriting({}); }

 private:
  using Page = std::array<char, kPageBytes>;

  class MemoryFile : public platform::File {
   public:
    explicit MemoryFile(TestUserAudioFiles& storage) : storage_(storage) {}

    platform::FileTransfer readAt(void* destination, std::uint64_t byteCount,
                                  std::uint64_t offset) override {
      const std::uint64_t number = storage_.reads_++;
      if (storage_.beforeRead_) {
        storage_.beforeRead_(number);
      }
      const std::lock_guard lock(storage_.mutex_);
      const std::uint64_t end = std::min(storage_.size_, storage_.unreadable_);
      const std::uint64_t count = offset < end ? std::min(byteCount, end - offset) : 0;
      storage_.load(static_cast<char*>(destination), count, offset);
      const bool failed = count < byteCount && storage_.unreadable_ < storage_.size_;
      return {.byteCount = count, .error = failed ? EIO : 0};
    }

    platform::FileTransfer writeAt(const void* data, std::uint64_t byteCount,
                                   std::uint64_t offset) override {
      const std::lock_guard lock(storage_.mutex_);
      const std::uint64_t count = std::min(byteCount, storage_.bytesLeft_);
      if (storage_.bytesLeft_ != kUnlimited) {
        storage_.bytesLeft_ -= count;
      }
      storage_.store(static_cast<const char*>(data), count, offset);
      return {.byteCount = count, .error = count < byteCount ? storage_.writeError_ : 0};
    }

    std::uint64_t size() override { return storage_.size(); }
    int setSize(std::uint64_t) override { return ENOTSUP; }  // audio files are never resized

   private:
    TestUserAudioFiles& storage_;
  };

  // Both with the lock held.
  void store(const char* data, std::uint64_t count, std::uint64_t offset) {
    size_ = std::max(size_, offset + count);
    while (count > 0) {
      const std::uint64_t inPage = offset % kPageBytes;
      const std::uint64_t part = std::min(count, kPageBytes - inPage);
      const bool isZero = data[0] == 0 && std::memcmp(data, data + 1, part - 1) == 0;
      auto page = pages_.find(offset / kPageBytes);
      if (page == pages_.end() && !isZero) {
        page = pages_.emplace(offset / kPageBytes, std::make_unique<Page>()).first;
        page->second->fill(0);
      }
      if (page != pages_.end()) {
        std::memcpy(page->second->data() + inPage, data, part);
      }
      data += part;
      offset += part;
      count -= part;
    }
  }

  void load(char* destination, std::uint64_t count, std::uint64_t offset) const {
    while (count > 0) {
      const std::uint64_t inPage = offset % kPageBytes;
      const std::uint64_t part = std::min(count, kPageBytes - inPage);
      const auto page = pages_.find(offset / kPageBytes);
      if (page == pages_.end()) {
        std::memset(destination, 0, part);
      } else {
        std::memcpy(destination, page->second->data() + inPage, part);
      }
      destination += part;
      offset += part;
      count -= part;
    }
  }

  mutable std::mutex mutex_;  // guards pages and sizes; the rest is set before files are used
  std::map<std::uint64_t, std::unique_ptr<Page>> pages_;
  std::uint64_t size_ = 0;
  std::uint64_t bytesLeft_ = kUnlimited;
  std::uint64_t unreadable_ = kUnlimited;
  int writeError_ = ENOSPC;
  int openingError_ = 0;
  std::function<void(std::uint64_t)> beforeRead_;
  std::atomic<std::uint64_t> reads_{0};
};

}  // namespace support
