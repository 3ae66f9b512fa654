#include "audio/OVAudioFileReader.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>
#include <utility>

#include "audio/AudioFileFailure.h"
#include "audio/CheckAudioStatus.h"
#include "platform/media/AudioFileStatus.h"

namespace {

// The status as reports of a read show it: the low 16 bits, sign-extended.
platform::AudioStatus lowHalf(platform::AudioStatus status) {
  return static_cast<std::int16_t>(static_cast<std::uint16_t>(status));
}

}  // namespace

std::shared_ptr<OVAudioFileReader> OVAudioFileReader::initWithFile(
    const std::string& path, std::shared_ptr<const std::atomic<bool>> cancelled) {
  auto reader = std::make_shared<OVAudioFileReader>(Key{}, std::move(cancelled));
  return reader->openFile(path) ? reader : nullptr;
}

OVAudioFileReader::~OVAudioFileReader() {
  close();
}

bool OVAudioFileReader::openFile(const std::string& path) {
  path_ = path;
  failed_ = false;  // belongs to the previous file
  hasReported_ = false;
  try {
    return openSteps(path);
  } catch (const std::bad_alloc&) {
    close();
    report(platform::kOutOfMemoryStatus, "ExtAudioFileOpen",
           openingFailureReason(platform::kOutOfMemoryStatus, path));
    return false;
  }
}

bool OVAudioFileReader::openSteps(const std::string& path) {
  auto opened = platform::ExtAudioFileInput::openURL(path, cancelled_);
  xafref_ = std::move(opened.file);
  if (xafref_ == nullptr) {
    report(opened.status, "ExtAudioFileOpen", openingFailureReason(opened.status, path));
    return false;
  }
  format_ = xafref_->fileDataFormat();
  const std::uint32_t reserved = format_.mReserved;
  format_ = platform::kWorkingFormat;
  format_.mReserved = reserved;
  const platform::AudioStatus status = xafref_->setClientDataFormat(format_);
  report(status, "kExtAudioFileProperty_ClientDataFormat", openingFailureReason(status, path));
  return status == platform::kAudioStatusOk;
}

std::int64_t OVAudioFileReader::fileSizeInFrames() const {
  return xafref_ != nullptr ? xafref_->fileLengthFrames() : 0;
}

std::shared_ptr<const platform::AudioFileTags> OVAudioFileReader::tags() const {
  return std::make_shared<const platform::AudioFileTags>(
      xafref_ != nullptr ? xafref_->tags() : platform::AudioFileTags());
}

bool OVAudioFileReader::isFileSizeEstimated() const {
  return xafref_ != nullptr && xafref_->isLengthEstimated();
}

double OVAudioFileReader::shareRead() const {
  return xafref_ != nullptr ? xafref_->shareRead() : 1.0;
}

std::uint32_t OVAudioFileReader::readFrameChunkWithSize(std::uint64_t frames) {
  if (xafref_ == nullptr || failed_) {
    return 0;
  }
  if (!makeBuffer(frames)) {
    failed_ = true;
    report(lowHalf(platform::kOutOfMemoryStatus), "ExtAudioFileRead",
           readingFailureReason(platform::kOutOfMemoryStatus, path_));
    return 0;
  }
  if (frames == 0) {
    return 0;
  }
  // Only as many bytes as the buffer has frames; the read overwrites what it fills.
  std::memset(buffer_.get(), 0, bufferSize_);
  const auto count = static_cast<std::uint32_t>(
      std::min<std::uint64_t>(frames, std::numeric_limits<std::uint32_t>::max()));
  platform::ExtAudioFileInput::Read read;
  try {
    read = xafref_->read(reinterpret_cast<float*>(buffer_.get()), count);
  } catch (const std::bad_alloc&) {
    read = {.frames = 0, .status = platform::kOutOfMemoryStatus};
  }
  if (read.status == platform::kCancelledStatus) {
    return 0;
  }
  if (read.status != platform::kAudioStatusOk) {
    failed_ = true;
    report(lowHalf(read.status), "ExtAudioFileRead", readingFailureReason(read.status, path_));
    return 0;
  }
  return read.frames;
}

bool OVAudioFileReader::makeBuffer(std::uint64_t frames) {
  if (frames == bufferSize_) {
    return true;
  }
  buffer_.reset();
  bufferSize_ = 0;
  if (frames > std::numeric_limits<std::size_t>::max() / platform::kWorkingFrameBytes) {
    return false;
  }
  // Neither cleared nor touched before it is filled.
  buffer_.reset(static_cast<std::byte*>(std::malloc(frames * platform::kWorkingFrameBytes)));
  if (buffer_ == nullptr && frames > 0) {
    return false;
  }
  bufferSize_ = frames;
  return true;
}

void OVAudioFileReader::rewind() {
  if (xafref_ != nullptr) {
    failed_ = false;
    static_cast<void>(xafref_->seekToStart());  // the next read reports a failure
  }
}

void OVAudioFileReader::close() {
  xafref_.reset();
}

void OVAudioFileReader::report(platform::AudioStatus status, const std::string& label,
                               const std::string& reason) {
  if (status == platform::kAudioStatusOk || status == platform::kCancelledStatus || hasReported_) {
    return;
  }
  hasReported_ = true;
  CheckAudioStatus(status, label, reason);
}
