#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <utility>

#include "storage/OVBlockBuffer.h"
#include "support/TransferHelpers.h"
#include "support/fakes/FailingTemporaryFiles.h"
#include "support/fakes/RecordingServices.h"

namespace support {

/// A block list buffer over temporary files in memory.
class BlockBufferFixture : public testing::Test {
 protected:
  /// Makes `count` consecutive writes of `size` bytes from address 0 on; returns all their bytes.
  Bytes writeSequence(std::size_t count, std::size_t size) {
    Bytes all;
    for (std::size_t i = 0; i < count; ++i) {
      const Bytes chunk = pattern(size, static_cast<unsigned>(i + 1));
      write(*buffer_, chunk, i * size);
      all = std::move(all) + chunk;
    }
    return all;
  }

  support::InstalledRecordingServices services_;
  support::FailingTemporaryFiles files_;
  platform::Installed<platform::TemporaryFiles>::Scope installation_{files_};
  std::shared_ptr<OVBlockBuffer> buffer_ = OVBlockBuffer::init();
};

}  // namespace support
