#include <cerrno>
#include <cstddef>
#include <vector>

#include <gmock/gmock.h>

#include "platform/ffmpeg/AllocationBound.h"
#include "platform/ffmpeg/Ffmpeg.h"
#include "platform/ffmpeg/FfmpegLog.h"
#include "platform/ffmpeg/FfmpegMakers.h"
#include "support/fakes/RecordingServices.h"
#include "support/fakes/TestUserAudioFiles.h"

namespace platform {
namespace {

/// As long as it lives, FFmpeg refuses itself larger allocations, whatever the system would grant.
class SmallAllocations {
 public:
  explicit SmallAllocations(std::size_t largest) { av_max_alloc(largest); }
  ~SmallAllocations() { av_max_alloc(allocationBound()); }
  SmallAllocations(const SmallAllocations&) = delete;
  SmallAllocations& operator=(const SmallAllocations&) = delete;
};

class FfmpegAudioFileOutputTest : public testing::Test {
 protected:
  void SetUp() override { FfmpegLog::install(ConsoleLog); }

  ExtAudioFileOutput::Created create() {
    return createOutput(storage_.createForWriting("a"), AudioFileKind::wave, {});
  }

  support::InstalledRecordingServices services_;
  support::TestUserAudioFiles storage_;
  const std::vector<float> sound_ = std::vector<float>(2 * 100'000, 0.1F);
};

TEST_F(FfmpegAudioFileOutputTest, WhatFfmpegAloneRefusesIsNotTakenForTheSystemsRefusal) {
  const auto created = create();
  ASSERT_NE(created.file, nullptr);
  const SmallAllocations small(2000);  // less than a packet
  EXPECT_EQ(created.file->write(sound_.data(), sound_.size() / 2), kUnsupportedDataFormatStatus);
  EXPECT_EQ(created.file->dispose(), kUnsupportedDataFormatStatus);
}

TEST_F(FfmpegAudioFileOutputTest, WhatTheSystemRefusesIsToldAsThat) {
  for (const auto& [error, status] :
       {std::pair(EPERM, kFilePermissionStatus), std::pair(EIO, kFileInputOutputStatus),
        std::pair(ENOMEM, kOutOfMemoryStatus), std::pair(ENOSPC, kDiskFullStatus)}) {
    storage_.failOpening(error);
    EXPECT_EQ(create().status, status) << error;
    storage_.failOpening(0);
    const auto created = create();
    ASSERT_NE(created.file, nullptr);
    storage_.fillUpAfter(1000, error);
    EXPECT_EQ(created.file->write(sound_.data(), sound_.size() / 2), status) << error;
    storage_.fillUpAfter(support::TestUserAudioFiles::kUnlimited);
  }
}

}  // namespace
}  // namespace platform
