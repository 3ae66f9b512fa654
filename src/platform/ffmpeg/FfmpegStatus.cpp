#include "platform/ffmpeg/FfmpegStatus.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>

#include "platform/ffmpeg/AllocationBound.h"
#include "platform/ffmpeg/Ffmpeg.h"

namespace platform {
namespace {

struct Row {
  int error;
  AudioStatus opening;
  AudioStatus reading;
  AudioStatus writing;
};

constexpr Row always(int error, AudioStatus status) {
  return {error, status, status, status};
}

// The only table of this kind. Errors in no row get kOtherwise of their stage.
constexpr std::array kRows{
    always(AVERROR(ENOENT), kFileNotFoundStatus),
    always(AVERROR(ENOTDIR), kFileNotFoundStatus),
    always(AVERROR(EACCES), kFilePermissionStatus),
    always(AVERROR(EPERM), kFilePermissionStatus),
    always(AVERROR(EROFS), kFilePermissionStatus),
    always(AVERROR(EISDIR), kFolderStatus),
    always(AVERROR(ESPIPE), kNotARegularFileStatus),
    always(AVERROR(ENXIO), kNotARegularFileStatus),
    always(AVERROR(ENODATA), kEmptyFileStatus),
    always(AVERROR(ENAMETOOLONG), kBadFileNameStatus),
    always(AVERROR(ENOSPC), kDiskFullStatus),
    always(AVERROR(EDQUOT), kDiskFullStatus),
    always(AVERROR(EFBIG), kFileTooLargeStatus),
    always(AVERROR(EIO), kFileInputOutputStatus),
    always(AVERROR(ESTALE), kFileInputOutputStatus),
    always(AVERROR(EMFILE), kTooManyOpenFilesStatus),
    always(AVERROR(ENFILE), kTooManyOpenFilesStatus),
    always(AVERROR(ENOMEM), kOutOfMemoryStatus),
    // A file that no demuxer takes, that one gave up on, or that ended inside its header; what an
    // encoder or a muxer does not take.
    Row{AVERROR_INVALIDDATA, kUnsupportedFileTypeStatus, kInvalidFileStatus,
        kUnsupportedDataFormatStatus},
    Row{AVERROR(EINVAL), kUnsupportedFileTypeStatus, kInvalidFileStatus, kFileInputOutputStatus},
    Row{AVERROR_EOF, kUnsupportedFileTypeStatus, kInvalidFileStatus, kFileInputOutputStatus},
    Row{AVERROR_EXIT, kUnsupportedFileTypeStatus, kInvalidFileStatus, kFileInputOutputStatus},
    Row{AVERROR_DEMUXER_NOT_FOUND, kUnsupportedFileTypeStatus, kInvalidFileStatus,
        kFileInputOutputStatus},
    Row{AVERROR_STREAM_NOT_FOUND, kNoAudioStatus, kInvalidFileStatus, kFileInputOutputStatus},
    Row{AVERROR_DECODER_NOT_FOUND, kUnsupportedDataFormatStatus, kUnsupportedDataFormatStatus,
        kUnsupportedDataFormatStatus},
    Row{AVERROR_ENCODER_NOT_FOUND, kUnsupportedDataFormatStatus, kUnsupportedDataFormatStatus,
        kUnsupportedDataFormatStatus},
    Row{AVERROR_MUXER_NOT_FOUND, kUnsupportedFileTypeStatus, kUnsupportedFileTypeStatus,
        kUnsupportedFileTypeStatus},
    Row{AVERROR_PATCHWELCOME, kUnsupportedDataFormatStatus, kUnsupportedDataFormatStatus,
        kUnsupportedDataFormatStatus},
    Row{AVERROR(ENOSYS), kUnsupportedDataFormatStatus, kUnsupportedDataFormatStatus,
        kUnsupportedDataFormatStatus},
};

constexpr Row kOtherwise{0, kUnsupportedFileTypeStatus, kInvalidFileStatus, kFileInputOutputStatus};

// Nothing touches the memory. It is volatile so that the compiler does not leave the attempt out.
bool systemGrants(std::size_t bytes) {
  void* const volatile memory = std::malloc(bytes);
  const bool granted = memory != nullptr;
  std::free(memory);
  return granted;
}

}  // namespace

AudioStatus audioFileStatus(AudioFileStage stage, int error) {
  if (error >= 0) {
    return kAudioStatusOk;
  }
  const auto* const found = std::find_if(kRows.begin(), kRows.end(),
                                         [error](const Row& row) { return row.error == error; });
  const Row& row = found != kRows.end() ? *found : kOtherwise;
  switch (stage) {
    case AudioFileStage::opening:
      return row.opening;
    case AudioFileStage::reading:
      return row.reading;
    case AudioFileStage::writing:
      break;
  }
  return row.writing;
}

int ffmpegVerdict(int error) {
  constexpr int kHighestErrno = 4095;
  const bool isErrno = error < 0 && error >= -kHighestErrno;
  if (!isErrno || error == AVERROR(ENOSYS)) {  // "not implemented"
    return error;
  }
  return error == AVERROR(ENOMEM) && !systemGrants(allocationBound()) ? error : AVERROR_INVALIDDATA;
}

}  // namespace platform
