#include <gmock/gmock.h>

#include <atomic>
#include <condition_variable>
#include <cstring>
#include <future>
#include <mutex>
#include <thread>
#include <vector>

#include "storage/OVBlockBuffer.h"
#include "support/Gate.h"
#include "support/TransferHelpers.h"
#include "support/fakes/FailingTemporaryFiles.h"
#include "support/fakes/RecordingDelegate.h"

namespace {

using support::Bytes;
using support::pattern;
using support::read;
using support::write;
using testing::SizeIs;

class OVBlockBufferConcurrencySlowDiskTest : public testing::Test {
 protected:
  support::FailingTemporaryFiles files_;
  platform::Installed<platform::TemporaryFiles>::Scope installation_{files_};
  std::shared_ptr<OVBlockBuffer> buffer_ = OVBlockBuffer::init();
  support::Gate gate_;
};

TEST_F(OVBlockBufferConcurrencySlowDiskTest, DoesNotHoldUpReadsAndEditsWhileARecorderWrites) {
  const Bytes before = pattern(800, 1);
  write(*buffer_, before, 0);
  files_.beforeWrites([this] { gate_.pass(); });
  const Bytes later = pattern(80, 2);
  std::thread recorder([&] { write(*buffer_, later, 80); });
  ASSERT_TRUE(gate_.awaitArrival());

  EXPECT_EQ(read(*buffer_, 1000, 0), before) << "bytes are not mapped before they are written";
  EXPECT_EQ(buffer_->powerAtPosition(100), 1.0);
  buffer_->setWaypoint();
  buffer_->cutoffBufferAfterPosition(10);
  EXPECT_EQ(read(*buffer_, 1000, 0), support::part(before, 0, 80));

  gate_.open();
  recorder.join();
  EXPECT_EQ(read(*buffer_, 1000, 80), later);
  EXPECT_EQ(buffer_->f_write_pos(), 880U);
}

TEST_F(OVBlockBufferConcurrencySlowDiskTest, DoesNotHoldUpARecorderWhileAReaderWaits) {
  const Bytes before = pattern(800, 1);
  write(*buffer_, before, 0);
  files_.beforeReads([this] { gate_.pass(); });
  auto reader = std::async(std::launch::async, [&] { return read(*buffer_, 1000, 0); });
  ASSERT_TRUE(gate_.awaitArrival());

  write(*buffer_, pattern(80, 2), 0);
  buffer_->cutoffBufferBeforePosition(5);
  EXPECT_EQ(buffer_->bufferFillSize(), 760U);

  gate_.open();
  EXPECT_EQ(reader.get(), before) << "a read gives the recording as it stood when it began";
}

TEST_F(OVBlockBufferConcurrencySlowDiskTest, KeepsWritersInTheOrderOfTheFile) {
  files_.beforeWrites([this] { gate_.pass(); });
  std::thread first([&] { write(*buffer_, pattern(80, 1), 0); });
  ASSERT_TRUE(gate_.awaitArrival());
  std::thread second([&] { write(*buffer_, pattern(80, 2), 0); });
  gate_.open();
  first.join();
  second.join();
  EXPECT_THAT(buffer_->blocklist(), testing::ElementsAre(OVBlock(0, 80, 80)));
  EXPECT_EQ(read(*buffer_, 80, 0), pattern(80, 2));
}

// A chunk repeats one value: a reader that finds two values has seen a torn write.
constexpr std::size_t kChunkFrames = 64;
constexpr std::size_t kChunkBytes = kChunkFrames * 8;

std::vector<std::uint64_t> chunkOf(std::uint64_t value) {
  return std::vector<std::uint64_t>(kChunkFrames, value);
}

// Reads whole chunks at random places and checks that each holds one written value.
class ChunkReader {
 public:
  ChunkReader(OVBlockBuffer& buffer, unsigned seed) : buffer_(buffer), state_(seed) {}

  void readSome(std::uint64_t largestValue) {
    constexpr std::size_t kChunks = 5;
    std::vector<std::uint64_t> frames(kChunks * kChunkFrames);
    state_ = state_ * 6364136223846793005ULL + 1442695040888963407ULL;
    const std::uint64_t length = buffer_.bufferSizeInFrames() / kChunkFrames;
    const std::uint64_t chunk = length == 0 ? 0 : (state_ >> 33) % length;
    const auto result =
        buffer_.readDataInto(frames.data(), kChunks * kChunkBytes, chunk * kChunkBytes);
    ASSERT_EQ(result.byteCount % kChunkBytes, 0U);
    for (std::size_t at = 0; at < result.frameCount; ++at) {
      const std::uint64_t value = frames[at];
      ASSERT_EQ(value, frames[at - at % kChunkFrames]);
      ASSERT_GE(value, 1U);
      ASSERT_LE(value, largestValue);
    }
  }

 private:
  OVBlockBuffer& buffer_;
  std::uint64_t state_;
};

TEST(OVBlockBufferConcurrencyTest, ShareABufferWithoutTearingAudio) {
  constexpr std::uint64_t kWrites = 2000;
  constexpr int kReads = 2000;
  constexpr int kEdits = 300;
  const auto buffer = OVBlockBuffer::init();
  ASSERT_NE(buffer, nullptr);
  const auto delegate = std::make_shared<support::RecordingDelegate>();
  buffer->setDelegate(delegate);
  buffer->setWaypoint();

  std::vector<std::thread> threads;
  threads.emplace_back([&] {
    std::uint64_t chunk = 0;
    for (std::uint64_t value = 1; value <= kWrites; ++value) {
      const auto frames = chunkOf(value);
      chunk = value % 7 == 0 ? chunk / 2 : buffer->bufferSizeInFrames() / kChunkFrames;
      buffer->writeData(frames.data(), chunk * kChunkBytes, kChunkBytes);
    }
  });
  for (unsigned reader = 1; reader <= 2; ++reader) {
    threads.emplace_back([&buffer, reader] {
      ChunkReader chunks(*buffer, reader);
      for (int i = 0; i < kReads; ++i) {
        chunks.readSome(kWrites);
        static_cast<void>(buffer->powerAtPosition(static_cast<std::uint64_t>(i)));
      }
    });
  }
  threads.emplace_back([&] {
    for (int i = 0; i < kEdits; ++i) {
      const std::uint64_t middle = buffer->bufferSizeInFrames() / kChunkFrames / 2 * kChunkFrames;
      buffer->setWaypoint();
      buffer->cutoffBufferAfterPosition(middle);
      buffer->undo();
      buffer->redo();
      buffer->undo();
      buffer->setDelegate(delegate);
    }
  });
  for (auto& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(buffer->f_write_pos(), kWrites * kChunkBytes);
  EXPECT_THAT(delegate->calls(), SizeIs(kWrites));
}

TEST(OVBlockBufferConcurrencyTest, LoseNothing) {
  constexpr std::uint64_t kWriters = 4;
  constexpr std::uint64_t kWritesEach = 500;
  const auto buffer = OVBlockBuffer::init();
  ASSERT_NE(buffer, nullptr);
  std::vector<std::thread> threads;
  for (std::uint64_t writer = 0; writer < kWriters; ++writer) {
    threads.emplace_back([&buffer, writer] {
      for (std::uint64_t i = 0; i < kWritesEach; ++i) {
        const std::uint64_t chunk = i * kWriters + writer;
        buffer->writeData(chunkOf(chunk + 1).data(), chunk * kChunkBytes, kChunkBytes);
      }
    });
  }
  for (auto& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(buffer->f_write_pos(), kWriters * kWritesEach * kChunkBytes);
  for (std::uint64_t chunk = 0; chunk < kWriters * kWritesEach; ++chunk) {
    std::vector<std::uint64_t> frames(kChunkFrames);
    ASSERT_EQ(buffer->readDataInto(frames.data(), kChunkBytes, chunk * kChunkBytes).byteCount,
              kChunkBytes);
    ASSERT_EQ(frames, chunkOf(chunk + 1));
  }
}

}  // namespace
