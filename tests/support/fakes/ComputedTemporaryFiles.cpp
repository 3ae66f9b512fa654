#include "support/fakes/ComputedTemporaryFiles.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "support/NumberedFrames.h"

namespace support {

namespace {
constexpr std::uint64_t kFrameBytes = 8;
}

class ComputedTemporaryFiles::ComputedFile : public platform::File {
 public:
  explicit ComputedFile(ComputedTemporaryFiles& all) : all_(all) {}
  ~ComputedFile() override { ::close(descriptor_); }

  platform::FileTransfer readAt(void* destination, std::uint64_t byteCount,
                                std::uint64_t offset) override {
    if (offset % kFrameBytes != 0 || byteCount % kFrameBytes != 0) {
      const std::lock_guard lock(all_.mutex_);
      ++all_.faults_;
      return {.byteCount = 0, .error = EINVAL};
    }
    auto* samples = static_cast<float*>(destination);
    std::uint64_t frames = 0;
    for (const Part& part : partsOf(offset / kFrameBytes, byteCount / kFrameBytes)) {
      makeNumbered(samples, part.number, part.frames);
      samples += 2 * part.frames;
      frames += part.frames;
    }
    return {.byteCount = frames * kFrameBytes, .error = 0};
  }

  platform::FileTransfer writeAt(const void* data, std::uint64_t byteCount,
                                 std::uint64_t offset) override {
    const std::lock_guard lock(all_.mutex_);
    if (byteCount % kFrameBytes != 0 || offset != length_ * kFrameBytes) {
      ++all_.faults_;
      return {.byteCount = 0, .error = EINVAL};
    }
    const auto* samples = static_cast<const float*>(data);
    for (std::uint64_t left = byteCount / kFrameBytes; left > 0;) {
      const std::uint64_t number = numberOf(samples);
      const std::uint64_t count = std::max<std::uint64_t>(1, equalNumbered(samples, number, left));
      append(number, count);
      samples += 2 * count;
      left -= count;
      all_.faults_ += left > 0 ? 1 : 0;
    }
    return {.byteCount = byteCount, .error = 0};
  }

  std::uint64_t size() override {
    const std::lock_guard lock(all_.mutex_);
    return length_ * kFrameBytes;
  }

  // Shortens only: no recording of this kind has a gap.
  int setSize(std::uint64_t byteCount) override {
    const std::lock_guard lock(all_.mutex_);
    if (byteCount % kFrameBytes != 0 || byteCount > length_ * kFrameBytes) {
      ++all_.faults_;
      return EINVAL;
    }
    length_ = byteCount / kFrameBytes;
    while (!stretches_.empty() && stretches_.back().at >= length_) {
      stretches_.pop_back();
    }
    return 0;
  }

  [[nodiscard]] int descriptor() const override { return descriptor_; }

 private:
  struct Stretch {
    std::uint64_t at;  // frame of the file
    std::uint64_t number;
  };

  struct Part {
    std::uint64_t number;
    std::uint64_t frames;
  };

  // What a read returns, which is computed without the lock.
  [[nodiscard]] std::vector<Part> partsOf(std::uint64_t at, std::uint64_t frames) const {
    const std::lock_guard lock(all_.mutex_);
    const std::uint64_t end = std::min(length_, at + frames);
    auto next = std::upper_bound(
        stretches_.begin(), stretches_.end(), at,
        [](std::uint64_t frame, const Stretch& stretch) { return frame < stretch.at; });
    std::vector<Part> parts;
    for (; at < end; ++next) {
      const Stretch& current = *(next - 1);
      const std::uint64_t until = next == stretches_.end() ? end : std::min(end, next->at);
      parts.push_back({.number = current.number + (at - current.at), .frames = until - at});
      at = until;
    }
    return parts;
  }

  void append(std::uint64_t number, std::uint64_t count) {
    const bool continues = !stretches_.empty() &&
                           stretches_.back().number + (length_ - stretches_.back().at) == number;
    if (!continues) {
      stretches_.push_back({.at = length_, .number = number});
      ++all_.stretches_;
    }
    length_ += count;
    all_.framesWritten_ += count;
  }

  ComputedTemporaryFiles& all_;
  const int descriptor_ = ::open("/dev/null", O_RDWR | O_CLOEXEC);
  // All by the common lock; frames.
  std::vector<Stretch> stretches_;
  std::uint64_t length_ = 0;
};

std::uint64_t ComputedTemporaryFiles::framesWritten() const {
  const std::lock_guard lock(mutex_);
  return framesWritten_;
}

std::uint64_t ComputedTemporaryFiles::faults() const {
  const std::lock_guard lock(mutex_);
  return faults_;
}

std::uint64_t ComputedTemporaryFiles::stretches() const {
  const std::lock_guard lock(mutex_);
  return stretches_;
}

ComputedTemporaryFiles::Created ComputedTemporaryFiles::createUnlinked(
    const std::string& pathTemplate) {
  return platform::TemporaryFile{.file = std::make_unique<ComputedFile>(*this),
                                 .path = pathTemplate};
}

}  // namespace support
