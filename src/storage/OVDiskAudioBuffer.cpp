#include "storage/OVDiskAudioBuffer.h"

#include <algorithm>
#include <cinttypes>
#include <cstring>
#include <system_error>
#include <utility>

#include "platform/base/ApplicationServices.h"
#include "storage/BufferTransfer.h"
#include "storage/DelegateNotification.h"

namespace {

constexpr std::uint64_t kCopiedAtOnce = std::uint64_t{1} << 20;  // bytes; only bounds memory

// Copies everything from a position on to the start of another file. Returns 0, or the errno of the
// failure.
int copyTail(platform::File& from, std::uint64_t position, platform::File& to) {
  const std::uint64_t end = from.size();
  const std::uint64_t kept = position < end ? end - position : 0;
  if (kept < OVDiskAudioBuffer::kSmallestKept) {
    return 0;
  }
  std::vector<std::byte> bytes(std::min(kept, kCopiedAtOnce));
  for (std::uint64_t done = 0; done < kept;) {
    const std::uint64_t count = std::min<std::uint64_t>(bytes.size(), kept - done);
    const auto read = readWhole(from, bytes.data(), count, position + done);
    if (const int error = errorOfTransfer(read, count); error != 0) {
      return error;
    }
    const auto written = to.writeAt(bytes.data(), count, done);
    if (const int error = errorOfTransfer(written, count); error != 0) {
      return error;
    }
    done += count;
  }
  return 0;
}

}  // namespace

OVDiskAudioBuffer::OVDiskAudioBuffer(platform::TemporaryFile created)
    : format_(platform::kWorkingFormat),
      f_file_(std::move(created.file)),
      f_file_name_(std::move(created.path)),
      cacheBuffer_(kCacheCapacity) {}

OVDiskAudioBuffer::~OVDiskAudioBuffer() {
  f_file_.reset();
  removeTempFile(f_file_name_);
}

std::shared_ptr<OVDiskAudioBuffer> OVDiskAudioBuffer::init() {
  auto created = createFile();
  if (!created) {
    return nullptr;
  }
  return std::shared_ptr<OVDiskAudioBuffer>(new OVDiskAudioBuffer(*std::move(created)));
}

// Alerts the user on failure. Hold no lock.
platform::TemporaryFiles::Created OVDiskAudioBuffer::createFile() {
  const auto files = platform::temporaryFiles();
  auto created = files->createNamed(files->directory() + "orvo_XXXXXX.flt");
  if (created) {
    platform::applicationServices()->registerTempFile(created->path);
  } else {
    alertThatNoTemporaryFileOpens(created.error().path);
  }
  return created;
}

void OVDiskAudioBuffer::writeData(const void* data, std::uint64_t atByteOffset,
                                  std::uint32_t withSize) {
  if (refuseIfPastAddressSpace(atByteOffset, withSize)) {
    return;
  }
  platform::FileTransfer written;
  {
    const platform::MutexLock lock(bufferLock_);
    written = f_file_->writeAt(data, withSize, atByteOffset);
    f_size_.store(std::max(f_size(), atByteOffset + withSize), std::memory_order_relaxed);
  }
  discardCache();
  notifyOfWrite(delegate_.get(), data, atByteOffset, withSize, errorOfTransfer(written, withSize));
}

BufferReadResult OVDiskAudioBuffer::readDataInto(void* destination, std::uint64_t withSize,
                                                 std::uint64_t fromOffset) {
  if (const auto copied = getDataFromCache(destination, fromOffset, withSize); copied > 0) {
    return resultOf(destination, copied);
  }
  const BufferReadResult result = readDataIntoNoCache(destination, withSize, fromOffset);
  if (!cacheFilling_.exchange(true)) {
    q_.async([weak = weak_from_this(), fromOffset] {
      if (const auto buffer = weak.lock()) {
        buffer->fillCacheFromPosition(fromOffset);
      }
    });
  }
  return result;
}

BufferReadResult OVDiskAudioBuffer::readDataIntoNoCache(void* destination, std::uint64_t withSize,
                                                        std::uint64_t fromOffset) {
  const std::uint64_t frameBytes = format_.mBytesPerFrame;
  std::uint64_t wanted = 0;
  platform::FileTransfer read;
  {
    const platform::MutexLock lock(bufferLock_);
    const std::uint64_t end = f_size();
    const std::uint64_t available = fromOffset < end ? end - fromOffset : 0;
    wanted = std::min(withSize, available) / frameBytes * frameBytes;
    read = readWhole(*f_file_, destination, wanted, fromOffset);
  }
  if (read.byteCount < wanted) {
    notifyOfFailedRead(delegate_.get(), read.error);
  }
  return resultOf(destination, read.byteCount / frameBytes * frameBytes);
}

BufferReadResult OVDiskAudioBuffer::resultOf(void* destination, std::uint64_t byteCount) const {
  if (byteCount == 0) {
    return {};
  }
  return {.data = static_cast<float*>(destination),
          .frameCount = byteCount / format_.mBytesPerFrame,
          .byteCount = byteCount};
}

std::uint64_t OVDiskAudioBuffer::getDataFromCache(void* destination, std::uint64_t fromPosition,
                                                  std::uint64_t withSize) {
  std::uint64_t left = 0;
  {
    const platform::MutexLock lock(cacheLock_);
    const std::uint64_t inCache = fromPosition - cached_position_;
    if (cached_position_ > fromPosition || inCache > cache_fillsize_ ||
        withSize > cache_fillsize_ - inCache) {
      return 0;
    }
    if (withSize > 0) {
      std::memcpy(destination, cacheBuffer_.data() + inCache, withSize);
    }
    left = cache_fillsize_ - inCache - withSize;
  }
  if (left < 4 * withSize && !cacheFilling_.exchange(true)) {
    fillCacheFromPosition(fromPosition);
  }
  return withSize;
}

void OVDiskAudioBuffer::fillCacheFromPosition(std::uint64_t byteOffset) {
  cacheFilling_ = true;
  emptyCacheAt(byteOffset);
  {
    const platform::MutexLock lock(bufferLock_);
    emptyCacheAt(byteOffset);  // again: another fill may have ended while this one waited
    const std::uint64_t end = f_size();
    const std::uint64_t wanted =
        std::min(kCacheCapacity, byteOffset < end ? end - byteOffset : std::uint64_t{0});
    const auto read = readWhole(*f_file_, cacheBuffer_.data(), wanted, byteOffset);
    const platform::MutexLock cacheLock(cacheLock_);
    cache_fillsize_ = read.byteCount;
    cached_position_ = byteOffset;  // again: the cache may have been discarded meanwhile
  }
  cacheFilling_ = false;
}

void OVDiskAudioBuffer::discardCache() {
  emptyCacheAt(0);
}

void OVDiskAudioBuffer::emptyCacheAt(std::uint64_t position) {
  const platform::MutexLock lock(cacheLock_);
  cache_fillsize_ = 0;
  cached_position_ = position;
}

std::uint64_t OVDiskAudioBuffer::cache_fillsize() const {
  const platform::MutexLock lock(cacheLock_);
  return cache_fillsize_;
}

std::uint64_t OVDiskAudioBuffer::cached_position() const {
  const platform::MutexLock lock(cacheLock_);
  return cached_position_;
}

platform::AudioStreamBasicDescription OVDiskAudioBuffer::format() const {
  return platform::kWorkingFormat;
}

std::uint64_t OVDiskAudioBuffer::bufferCapacityInFrames() const {
  return f_size() / format_.mBytesPerFrame;
}

std::uint64_t OVDiskAudioBuffer::bufferSizeInFrames() const {
  return f_size() / format_.mBytesPerFrame;
}

std::uint64_t OVDiskAudioBuffer::bufferFillSizeInFrames() const {
  return f_size() / format_.mBytesPerFrame;
}

void OVDiskAudioBuffer::cutoffBufferAfterPosition(std::uint64_t frames) {
  int error = 0;
  {
    const platform::MutexLock lock(bufferLock_);
    const std::uint64_t position = frames * format_.mBytesPerFrame;
    error = f_file_->setSize(position);
    f_size_.store(position, std::memory_order_relaxed);
  }
  if (error != 0) {
    ConsoleLog("could not cut a temporary file at frame %" PRIu64 ": %s", frames,
               std::generic_category().message(error).c_str());
  }
}

void OVDiskAudioBuffer::cutoffBufferBeforePosition(std::uint64_t frames) {
  auto other = createFile();  // becomes the old file below
  if (!other) {
    return;
  }
  int error = 0;
  {
    const platform::MutexLock lock(bufferLock_);
    error = copyTail(*f_file_, frames * format_.mBytesPerFrame, *other->file);
    if (error == 0) {
      std::swap(f_file_, other->file);
      std::swap(f_file_name_, other->path);
      f_size_.store(f_file_->size(), std::memory_order_relaxed);
    }
  }
  other->file.reset();
  removeTempFile(other->path);
  if (error != 0) {
    notifyOfFailedWrite(delegate_.get(), error);
  }
}

void OVDiskAudioBuffer::reverseBuffer() {}

void OVDiskAudioBuffer::setWaypoint() {}

void OVDiskAudioBuffer::undo() {}

void OVDiskAudioBuffer::redo() {}

void OVDiskAudioBuffer::lock() {
  bufferLock_.lock();
}

void OVDiskAudioBuffer::unlock() {
  bufferLock_.unlock();
}

double OVDiskAudioBuffer::powerAtPosition(std::uint64_t position) {
  float channels[2] = {0.0F, 0.0F};  // bytes that the file does not return count as silence
  const platform::MutexLock lock(bufferLock_);
  static_cast<void>(
      readWhole(*f_file_, channels, sizeof channels, position * format_.mBytesPerFrame));
  return static_cast<double>(channels[0] + channels[1]) * 0.5;
}

void OVDiskAudioBuffer::removeTempFile(const std::optional<std::string>& path) {
  deleteTemporaryFile(path);
}

std::weak_ptr<OVAudioBufferDelegate> OVDiskAudioBuffer::delegate() const {
  return delegate_.get();
}

void OVDiskAudioBuffer::setDelegate(std::weak_ptr<OVAudioBufferDelegate> delegate) {
  delegate_.set(std::move(delegate));
}
