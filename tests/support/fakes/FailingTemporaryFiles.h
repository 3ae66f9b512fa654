#pragma once

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <limits>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "platform/files/TemporaryFiles.h"

namespace support {

/// Temporary files in memory with scripted failures: creation fails, the disk fills up, a write is
/// partial, reads fail or are short, resizing fails, transfers are slow. Initially nothing fails.
///
/// All files of one object share its plan, including those already open. They keep the plan alive
/// and may outlive the object. Install it with platform::Installed.
///
/// Threads: any, also while files are in use.
class FailingTemporaryFiles : public platform::TemporaryFiles {
 public:
  static constexpr std::uint64_t kUnlimited = std::numeric_limits<std::uint64_t>::max();
  /// Maximum size in bytes that setSize() grants, since files are in memory.
  static constexpr std::uint64_t kMaxSize = std::uint64_t{1} << 30;

  /// Later creations fail with this errno; 0 makes them succeed again.
  void failCreation(int error) {
    change([error](Plan& plan) { plan.creationError = error; });
  }

  /// The disk has room for `bytes` more bytes in all; the write that exceeds them is partial and
  /// ends with `error`. Shortening a file gives back the room of the bytes that were written there.
  void fillUpAfter(std::uint64_t bytes, int error = ENOSPC) {
    change([=](Plan& plan) {
      plan.bytesLeft = bytes;
      plan.writeError = error;
    });
  }

  void freeSpace() { fillUpAfter(kUnlimited); }

  /// Every read fails with this errno and returns no bytes; 0 makes reads succeed again.
  void failReads(int error) {
    change([error](Plan& plan) { plan.readError = error; });
  }

  /// setSize() fails with this errno and changes nothing; 0 makes it succeed again.
  void failSizeChanges(int error) {
    change([error](Plan& plan) { plan.sizeError = error; });
  }

  /// A read returns at most `bytes` bytes.
  void shortenReads(std::uint64_t bytes) {
    change([bytes](Plan& plan) { plan.largestRead = bytes; });
  }

  /// Runs before each transfer, on its thread and outside every lock, to simulate a slow disk.
  void beforeWrites(std::function<void()> hook) {
    change([&hook](Plan& plan) { plan.beforeWrite = std::move(hook); });
  }
  void beforeReads(std::function<void()> hook) {
    change([&hook](Plan& plan) { plan.beforeRead = std::move(hook); });
  }

  /// The same before each change of a file's size, to this many bytes.
  void beforeSizeChanges(std::function<void(std::uint64_t byteCount)> hook) {
    change([&hook](Plan& plan) { plan.beforeSizeChange = std::move(hook); });
  }

  std::uint64_t reads() const { return look(&Plan::reads); }
  std::uint64_t writes() const { return look(&Plan::writes); }
  /// Files created and not yet closed.
  std::uint64_t openFiles() const { return look(&Plan::openFiles); }
  /// Templates of all requested creations, including failed ones.
  std::vector<std::string> templates() const { return look(&Plan::templates); }

  [[nodiscard]] std::string directory() const override { return "/nowhere/"; }

  [[nodiscard]] Created createUnlinked(const std::string& pathTemplate) override {
    return create(pathTemplate);
  }

  /// No file of this name exists on disk.
  [[nodiscard]] Created createNamed(const std::string& pathTemplate) override {
    return create(pathTemplate);
  }

 private:
  struct Plan {
    std::mutex mutex;  // guards everything below
    int creationError = 0;
    std::uint64_t bytesLeft = kUnlimited;
    int writeError = ENOSPC;
    int readError = 0;
    int sizeError = 0;
    std::uint64_t largestRead = kUnlimited;
    std::function<void()> beforeWrite;
    std::function<void()> beforeRead;
    std::function<void(std::uint64_t)> beforeSizeChange;
    std::uint64_t reads = 0;
    std::uint64_t writes = 0;
    std::uint64_t openFiles = 0;
    std::vector<std::string> templates;
  };

  class MemoryFile : public platform::File {
   public:
    explicit MemoryFile(std::shared_ptr<Plan> plan) : plan_(std::move(plan)) {}
    ~MemoryFile() override {
      const std::lock_guard lock(plan_->mutex);
      --plan_->openFiles;
    }

    platform::FileTransfer readAt(void* destination, std::uint64_t byteCount,
                                  std::uint64_t offset) override {
      run(&Plan::beforeRead);
      const std::lock_guard lock(plan_->mutex);
      ++plan_->reads;
      if (plan_->readError != 0) {
        return {.byteCount = 0, .error = plan_->readError};
      }
      const std::uint64_t available = offset < bytes_.size() ? bytes_.size() - offset : 0;
      const std::uint64_t count = std::min({byteCount, available, plan_->largestRead});
      if (count > 0) {
        std::memcpy(destination, bytes_.data() + offset, count);
      }
      return {.byteCount = count, .error = 0};
    }

    platform::FileTransfer writeAt(const void* data, std::uint64_t byteCount,
                                   std::uint64_t offset) override {
      run(&Plan::beforeWrite);
      const std::lock_guard lock(plan_->mutex);
      ++plan_->writes;
      const std::uint64_t count = std::min(byteCount, plan_->bytesLeft);
      if (plan_->bytesLeft != kUnlimited) {
        plan_->bytesLeft -= count;
      }
      if (count > 0) {
        bytes_.resize(std::max<std::uint64_t>(bytes_.size(), offset + count));
        std::memcpy(bytes_.data() + offset, data, count);
        isWritten_.resize(bytes_.size());
        std::fill_n(isWritten_.begin() + static_cast<std::ptrdiff_t>(offset), count, true);
      }
      return {.byteCount = count, .error = count < byteCount ? plan_->writeError : 0};
    }

    std::uint64_t size() override {
      const std::lock_guard lock(plan_->mutex);
      return bytes_.size();
    }

    int setSize(std::uint64_t byteCount) override {
      run(&Plan::beforeSizeChange, byteCount);
      const std::lock_guard lock(plan_->mutex);
      if (plan_->sizeError != 0 || byteCount > kMaxSize) {
        return plan_->sizeError != 0 ? plan_->sizeError : EFBIG;
      }
      if (byteCount < isWritten_.size() && plan_->bytesLeft != kUnlimited) {
        plan_->bytesLeft += static_cast<std::uint64_t>(std::count(
            isWritten_.begin() + static_cast<std::ptrdiff_t>(byteCount), isWritten_.end(), true));
      }
      isWritten_.resize(byteCount);
      bytes_.resize(byteCount);
      return 0;
    }

   private:
    template <typename... Arguments>
    void run(std::function<void(Arguments...)> Plan::*hook, Arguments... arguments) {
      std::function<void(Arguments...)> call;
      {
        const std::lock_guard lock(plan_->mutex);
        call = (*plan_).*hook;
      }
      if (call) {
        call(arguments...);
      }
    }

    const std::shared_ptr<Plan> plan_;
    // Both by the plan's mutex.
    std::vector<std::byte> bytes_;
    std::vector<bool> isWritten_;  // of each byte: it takes room
  };

  Created create(const std::string& pathTemplate) {
    const std::lock_guard lock(plan_->mutex);
    plan_->templates.push_back(pathTemplate);
    std::string path = pathTemplate;
    if (const std::size_t placeholders = path.rfind("XXXXXX"); placeholders != std::string::npos) {
      const std::string number = std::to_string(plan_->templates.size());
      path.replace(placeholders + 6 - number.size(), number.size(), number);
      std::replace(path.begin() + static_cast<std::ptrdiff_t>(placeholders), path.end(), 'X', '0');
    }
    if (plan_->creationError != 0) {
      return platform::NoTemporaryFile{.error = plan_->creationError, .path = path};
    }
    ++plan_->openFiles;
    return platform::TemporaryFile{.file = std::make_unique<MemoryFile>(plan_), .path = path};
  }

  template <typename Change>
  void change(Change change) {
    const std::lock_guard lock(plan_->mutex);
    change(*plan_);
  }

  template <typename T>
  T look(T Plan::*member) const {
    const std::lock_guard lock(plan_->mutex);
    return (*plan_).*member;
  }

  const std::shared_ptr<Plan> plan_ = std::make_shared<Plan>();
};

}  // namespace support
