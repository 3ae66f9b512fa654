#include "platform/ffmpeg/FfmpegStatus.h"

#include <cerrno>

#include <gmock/gmock.h>

#include "platform/ffmpeg/AllocationBound.h"
#include "platform/ffmpeg/Ffmpeg.h"
#include "support/AddressSpaceLimit.h"
#include "support/Sanitizers.h"

namespace platform {
namespace {

constexpr AudioFileStage kStages[]{AudioFileStage::opening, AudioFileStage::reading,
                                   AudioFileStage::writing};

TEST(FfmpegStatusTest, NoErrorIsNoFailure) {
  for (const AudioFileStage stage : kStages) {
    EXPECT_EQ(audioFileStatus(stage, 0), kAudioStatusOk);
    EXPECT_EQ(audioFileStatus(stage, 17), kAudioStatusOk);
  }
}

TEST(FfmpegStatusTest, ErrorsOfTheSystemMeanTheSameAtEveryStage) {
  for (const AudioFileStage stage : kStages) {
    EXPECT_EQ(audioFileStatus(stage, AVERROR(ENOENT)), kFileNotFoundStatus);
    EXPECT_EQ(audioFileStatus(stage, AVERROR(EACCES)), kFilePermissionStatus);
    EXPECT_EQ(audioFileStatus(stage, AVERROR(EROFS)), kFilePermissionStatus);
    EXPECT_EQ(audioFileStatus(stage, AVERROR(EISDIR)), kFolderStatus);
    EXPECT_EQ(audioFileStatus(stage, AVERROR(ENOSPC)), kDiskFullStatus);
    EXPECT_EQ(audioFileStatus(stage, AVERROR(EDQUOT)), kDiskFullStatus);
    EXPECT_EQ(audioFileStatus(stage, AVERROR(EFBIG)), kFileTooLargeStatus);
    EXPECT_EQ(audioFileStatus(stage, AVERROR(EIO)), kFileInputOutputStatus);
    EXPECT_EQ(audioFileStatus(stage, AVERROR(ENOMEM)), kOutOfMemoryStatus);
  }
}

TEST(FfmpegStatusTest, InvalidDataIsAWrongKindWhenOpenedAndDamageWhenRead) {
  EXPECT_EQ(audioFileStatus(AudioFileStage::opening, AVERROR_INVALIDDATA),
            kUnsupportedFileTypeStatus);
  EXPECT_EQ(audioFileStatus(AudioFileStage::reading, AVERROR_INVALIDDATA), kInvalidFileStatus);
  EXPECT_EQ(audioFileStatus(AudioFileStage::opening, AVERROR_STREAM_NOT_FOUND), kNoAudioStatus);
  EXPECT_EQ(audioFileStatus(AudioFileStage::opening, AVERROR_DECODER_NOT_FOUND),
            kUnsupportedDataFormatStatus);
}

TEST(FfmpegStatusTest, AnUnknownErrorIsStillAFailureAndNeverACancel) {
  for (const AudioFileStage stage : kStages) {
    for (const int error : {-1'000'000, AVERROR_BUG, AVERROR_EXIT, AVERROR(ECANCELED)}) {
      EXPECT_NE(audioFileStatus(stage, error), kAudioStatusOk);
      EXPECT_NE(audioFileStatus(stage, error), kCancelledStatus);
    }
  }
}

TEST(FfmpegStatusTest, AnErrnoThatFfmpegInventedIsItsVerdictOnTheData) {
  for (const int error : {EPERM, EIO, ENOMEM, EINVAL, ENOENT, EACCES, ENODATA, EAGAIN}) {
    EXPECT_EQ(ffmpegVerdict(AVERROR(error)), AVERROR_INVALIDDATA) << error;
  }
  for (const int error : {0, 17, AVERROR_EOF, AVERROR_EXIT, AVERROR_INVALIDDATA,
                          AVERROR_STREAM_NOT_FOUND, AVERROR_PATCHWELCOME, AVERROR(ENOSYS)}) {
    EXPECT_EQ(ffmpegVerdict(error), error);
  }
}

TEST(FfmpegStatusTest, MemoryThatTheSystemRefusesIsNotTheFilesFault) {
  if (support::kAnySanitizer) {
    GTEST_SKIP() << "sanitizers reserve more than any limit allows";
  }
  allowAllocations(kLargestAllocationBound);
  const support::AddressSpaceLimit limit(kLargestAllocationBound / 2);
  EXPECT_EQ(ffmpegVerdict(AVERROR(ENOMEM)), AVERROR(ENOMEM));
}

TEST(FfmpegStatusTest, WhatAnEncoderDoesNotTakeIsNeitherTheMediumsNorTheRightsFault) {
  for (const int error : {EPERM, EIO, ENOMEM}) {
    EXPECT_EQ(audioFileStatus(AudioFileStage::writing, ffmpegVerdict(AVERROR(error))),
              kUnsupportedDataFormatStatus)
        << error;
  }
}

// Reports of a read show only the low 16 bits, which must not be 0 for a failure.
TEST(FfmpegStatusTest, NoStatusVanishesInItsLowHalf) {
  for (const AudioStatus status :
       {kFileNotFoundStatus, kFilePermissionStatus, kFolderStatus, kNotARegularFileStatus,
        kEmptyFileStatus, kBadFileNameStatus, kNoAudioStatus, kUnsupportedDataFormatStatus,
        kInvalidFileStatus, kDiskFullStatus, kFileTooLargeStatus, kFileInputOutputStatus,
        kTooManyOpenFilesStatus, kOutOfMemoryStatus, kUnsupportedFileTypeStatus}) {
    EXPECT_NE(static_cast<std::uint32_t>(status) & 0xFFFFU, 0U) << status;
  }
}

}  // namespace
}  // namespace platform
