#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>

#include "platform/files/TemporaryFiles.h"

namespace benchmarks {

/// Temporary files of the operating system in which all offsets are folded into the first 64 MiB: a
/// recording of many hours is read at the cost of real transfers from the page cache, without
/// filling a disk. The audio is meaningless. If only the first 64 MiB are kept, later writes take
/// no time either: reads there return the first written data.
///
/// Threads: any.
class FoldedTemporaryFiles : public platform::TemporaryFiles {
 public:
  static constexpr std::uint64_t kFold = std::uint64_t{64} << 20;  // bytes

  enum class Kept { everyWrite, theFirstFold };
  explicit FoldedTemporaryFiles(Kept kept = Kept::everyWrite) : kept_(kept) {}

  [[nodiscard]] std::string directory() const override { return real_->directory(); }

  [[nodiscard]] Created createUnlinked(const std::string& pathTemplate) override {
    return folded(real_->createUnlinked(pathTemplate));
  }

  [[nodiscard]] Created createNamed(const std::string& pathTemplate) override {
    return folded(real_->createNamed(pathTemplate));
  }

 private:
  class FoldedFile : public platform::File {
   public:
    FoldedFile(std::unique_ptr<platform::File> file, Kept kept)
        : file_(std::move(file)), kept_(kept) {}

    platform::FileTransfer readAt(void* destination, std::uint64_t byteCount,
                                  std::uint64_t offset) override {
      return file_->readAt(destination, std::min(byteCount, kFold - offset % kFold),
                           offset % kFold);
    }

    platform::FileTransfer writeAt(const void* data, std::uint64_t byteCount,
                                   std::uint64_t offset) override {
      if (kept_ == Kept::theFirstFold && offset >= kFold) {
        return {.byteCount = byteCount, .error = 0};
      }
      const std::uint64_t first = std::min(byteCount, kFold - offset % kFold);
      const platform::FileTransfer head = file_->writeAt(data, first, offset % kFold);
      if (first == byteCount || head.byteCount < first) {
        return head;
      }
      const platform::FileTransfer tail =
          file_->writeAt(static_cast<const std::byte*>(data) + first, byteCount - first, 0);
      return {.byteCount = first + tail.byteCount, .error = tail.error};
    }

    // A folded file has no end.
    std::uint64_t size() override { return file_->size(); }
    int setSize(std::uint64_t) override { return 0; }

   private:
    const std::unique_ptr<platform::File> file_;
    const Kept kept_;
  };

  [[nodiscard]] Created folded(Created created) const {
    if (created) {
      created->file = std::make_unique<FoldedFile>(std::move(created->file), kept_);
    }
    return created;
  }

  const Kept kept_;
  const std::shared_ptr<platform::TemporaryFiles> real_ = platform::temporaryFiles();
};

}  // namespace benchmarks
