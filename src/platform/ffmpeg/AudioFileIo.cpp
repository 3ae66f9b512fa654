#include "platform/ffmpeg/AudioFileIo.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <limits>

#include "platform/ffmpeg/Ffmpeg.h"

namespace platform {
namespace {

// Large enough that system calls cost little compared with decoding, small enough that reading a
// header does not read a whole song.
constexpr int kReadBufferBytes = 64 * 1024;
constexpr int kWriteBufferBytes = 256 * 1024;

}  // namespace

std::unique_ptr<AudioFileIo> AudioFileIo::forReading(File& file, std::uint64_t size,
                                                     DecodingBudget& interruption) {
  std::unique_ptr<AudioFileIo> io(new AudioFileIo(file, size, &interruption));
  return io->start(false) ? std::move(io) : nullptr;
}

std::unique_ptr<AudioFileIo> AudioFileIo::forWriting(File& file) {
  std::unique_ptr<AudioFileIo> io(new AudioFileIo(file, 0, nullptr));
  return io->start(true) ? std::move(io) : nullptr;
}

bool AudioFileIo::start(bool writing) {
  const int bytes = writing ? kWriteBufferBytes : kReadBufferBytes;
  auto* const buffer = static_cast<unsigned char*>(av_malloc(static_cast<std::size_t>(bytes)));
  if (buffer == nullptr) {
    return false;
  }
  // Its data became const with libavformat 61.
  const auto writePacket = [](void* self, auto* data, int byteCount) {
    return static_cast<AudioFileIo*>(self)->write(data, byteCount);
  };
  context_.reset(avio_alloc_context(buffer, bytes, writing ? 1 : 0, this,
                                    writing ? nullptr : readPacket, writePacket, seek));
  if (context_ == nullptr) {
    av_free(buffer);
  }
  return context_ != nullptr;
}

int AudioFileIo::firstError() const {
  return writeError_ != 0 ? writeError_ : AVERROR(view_.firstError());
}

std::uint64_t AudioFileIo::size() const {
  return interruption_ != nullptr ? view_.size() : written_;
}

void AudioFileIo::clearInterruption() {
  if (context_->error == AVERROR_EXIT) {
    context_->error = 0;
    context_->eof_reached = 0;
  }
}

int AudioFileIo::readPacket(void* self, std::uint8_t* destination, int byteCount) {
  auto& io = *static_cast<AudioFileIo*>(self);
  if (io.interruption_->isDue()) {
    return AVERROR_EXIT;
  }
  const FileTransfer transfer =
      io.view_.readAt(destination, static_cast<std::uint64_t>(byteCount), io.position_);
  io.interruption_->noteRead(transfer.byteCount);
  io.position_ += transfer.byteCount;
  if (transfer.byteCount > 0) {
    return static_cast<int>(transfer.byteCount);
  }
  return transfer.error != 0 ? AVERROR(transfer.error) : AVERROR_EOF;
}

int AudioFileIo::write(const std::uint8_t* data, int byteCount) {
  const FileTransfer transfer =
      file_.writeAt(data, static_cast<std::uint64_t>(byteCount), position_);
  position_ += transfer.byteCount;
  written_ = std::max(written_, position_);
  if (transfer.byteCount == static_cast<std::uint64_t>(byteCount)) {
    return byteCount;
  }
  const int error = AVERROR(transfer.error != 0 ? transfer.error : EIO);
  if (writeError_ == 0) {
    writeError_ = error;
  }
  return error;
}

std::int64_t AudioFileIo::seek(void* self, std::int64_t offset, int whence) {
  auto& io = *static_cast<AudioFileIo*>(self);
  std::int64_t from = 0;
  switch (whence & ~AVSEEK_FORCE) {
    case AVSEEK_SIZE:
      return static_cast<std::int64_t>(io.size());
    case SEEK_SET:
      break;
    case SEEK_CUR:
      from = static_cast<std::int64_t>(io.position_);
      break;
    case SEEK_END:
      from = static_cast<std::int64_t>(io.size());
      break;
    default:
      return AVERROR(EINVAL);
  }
  // A damaged header can request any offset.
  if (offset < -from || offset > std::numeric_limits<std::int64_t>::max() - from) {
    return AVERROR(EINVAL);
  }
  offset += from;
  io.position_ = static_cast<std::uint64_t>(offset);
  return offset;
}

}  // namespace platform
