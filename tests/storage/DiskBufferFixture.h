#pragma once

#include <gmock/gmock.h>

#include <memory>

#include "storage/OVDiskAudioBuffer.h"
#include "support/Eventually.h"
#include "support/TransferHelpers.h"
#include "support/fakes/FailingTemporaryFiles.h"
#include "support/fakes/RecordingDelegate.h"
#include "support/fakes/RecordingServices.h"

namespace support {

/// A disk buffer over temporary files in memory with scripted failures.
class DiskBufferFixture : public testing::Test {
 protected:
  void waitForTheFill() const {
    ASSERT_TRUE(support::eventually([this] { return !buffer_->cacheFilling(); }));
  }

  /// A recording of `count` bytes whose first bytes are in the cache.
  Bytes recordAndCache(std::size_t count) {
    const Bytes bytes = pattern(count, 1);
    write(*buffer_, bytes, 0);
    buffer_->fillCacheFromPosition(0);
    return bytes;
  }

  Bytes readNoCache(std::size_t count, std::uint64_t offset) {
    Bytes bytes(count);
    bytes.resize(buffer_->readDataIntoNoCache(bytes.data(), count, offset).byteCount);
    return bytes;
  }

  support::InstalledRecordingServices services_;
  support::FailingTemporaryFiles files_;
  platform::Installed<platform::TemporaryFiles>::Scope installation_{files_};
  std::shared_ptr<OVDiskAudioBuffer> buffer_ = OVDiskAudioBuffer::init();
  std::shared_ptr<support::RecordingDelegate> delegate_ =
      std::make_shared<support::RecordingDelegate>();
};

}  // namespace support
