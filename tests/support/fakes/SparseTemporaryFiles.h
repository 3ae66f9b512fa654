#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <map>
#include <memory>
#include <mutex>
#include <string>

#include "platform/files/TemporaryFiles.h"

namespace support {

/// Temporary files in memory that do not store zeros: documents of many hours of silence, with
/// sound where a test wants it, cost next to nothing.
///
/// Threads: any.
class SparseTemporaryFiles : public platform::TemporaryFiles {
 public:
  [[nodiscard]] std::string directory() const override { return "/nowhere/"; }

  [[nodiscard]] Created createUnlinked(const std::string& pathTemplate) override {
    return platform::TemporaryFile{.file = std::make_unique<SparseFile>(), .path = pathTemplate};
  }

  /// No file of this name exists on disk.
  [[nodiscard]] Created createNamed(const std::string& pathTemplate) override {
    return createUnlinked(pathTemplate);
  }

 private:
  static constexpr std::uint64_t kPageSize = std::uint64_t{64} * 1024;  // bytes
  using Page = std::array<std::byte, kPageSize>;

  class SparseFile : public platform::File {
   public:
    platform::FileTransfer readAt(void* destination, std::uint64_t byteCount,
                                  std::uint64_t offset) override {
      const std::lock_guard lock(mutex_);
      byteCount = offset < size_ ? std::min(byteCount, size_ - offset) : 0;
      auto* const bytes = static_cast<std::byte*>(destination);
      eachStretch(byteCount, offset, [&](std::uint64_t at, Stretch stretch) {
        const auto page = pages_.find(stretch.page);
        if (page == pages_.end()) {
          std::memset(bytes + at, 0, stretch.count);
        } else {
          std::memcpy(bytes + at, page->second->data() + stretch.offset, stretch.count);
        }
      });
      return {.byteCount = byteCount, .error = 0};
    }

    platform::FileTransfer writeAt(const void* data, std::uint64_t byteCount,
                                   std::uint64_t offset) override {
      const std::lock_guard lock(mutex_);
      const auto* const bytes = static_cast<const std::byte*>(data);
      eachStretch(byteCount, offset, [&](std::uint64_t at, Stretch stretch) {
        const bool zeros = onlyZeros(bytes + at, stretch.count);
        auto page = pages_.find(stretch.page);
        if (page == pages_.end() && zeros) {
          return;
        }
        if (page == pages_.end()) {
          page = pages_.emplace(stretch.page, std::make_unique<Page>()).first;
        }
        std::memcpy(page->second->data() + stretch.offset, bytes + at, stretch.count);
      });
      size_ = std::max(size_, offset + byteCount);
      return {.byteCount = byteCount, .error = 0};
    }

    std::uint64_t size() override {
      const std::lock_guard lock(mutex_);
      return size_;
    }

    int setSize(std::uint64_t byteCount) override {
      const std::lock_guard lock(mutex_);
      const std::uint64_t lastPage = byteCount / kPageSize;
      pages_.erase(pages_.upper_bound(lastPage), pages_.end());
      if (const auto page = pages_.find(lastPage); page != pages_.end()) {
        std::fill(page->second->begin() + static_cast<std::ptrdiff_t>(byteCount % kPageSize),
                  page->second->end(), std::byte{0});
      }
      size_ = byteCount;
      return 0;
    }

   private:
    struct Stretch {
      std::uint64_t page;
      std::uint64_t offset;  // in the page
      std::uint64_t count;
    };

    // `count` > 0: the first byte is 0, and each of the others equals the one before it.
    static bool onlyZeros(const std::byte* bytes, std::uint64_t count) {
      return *bytes == std::byte{0} && std::memcmp(bytes, bytes + 1, count - 1) == 0;
    }

    template <typename Each>
    static void eachStretch(std::uint64_t byteCount, std::uint64_t offset, Each each) {
      for (std::uint64_t at = 0; at < byteCount;) {
        const std::uint64_t inPage = (offset + at) % kPageSize;
        const std::uint64_t count = std::min(byteCount - at, kPageSize - inPage);
        each(at, Stretch{(offset + at) / kPageSize, inPage, count});
        at += count;
      }
    }

    std::mutex mutex_;  // guards everything below
    std::map<std::uint64_t, std::unique_ptr<Page>> pages_;
    std::uint64_t size_ = 0;
  };
};

}  // namespace support
