// The read cache of the disk buffer: its hits, its fills and its invalidation.
#include <gmock/gmock.h>

#include <cstdint>
#include <functional>
#include <future>
#include <memory>

#include "platform/base/GlobalQueue.h"
#include "storage/DiskBufferFixture.h"
#include "support/Gate.h"

namespace {

using support::Bytes;
using support::part;
using support::pattern;
using support::read;
using support::write;
using support::operator+;  // NOLINT(misc-unused-using-decls): used as an operator
using support::eventually;
using testing::SizeIs;

constexpr std::uint64_t kCache = OVDiskAudioBuffer::kCacheCapacity;

class OVDiskAudioBufferCacheTest : public support::DiskBufferFixture {};

TEST_F(OVDiskAudioBufferCacheTest, ServesAReadInsideTheCachedRangeFromTheCacheToTheByte) {
  const Bytes bytes = recordAndCache(8000);
  const std::uint64_t reads = files_.reads();
  Bytes destination(999);
  const auto result = buffer_->readDataInto(destination.data(), 999, 17);
  EXPECT_EQ(result.data, reinterpret_cast<float*>(destination.data()));
  EXPECT_EQ(result.byteCount, 999U);
  EXPECT_EQ(result.frameCount, 124U);
  EXPECT_EQ(destination, part(bytes, 17, 1016));
  EXPECT_EQ(files_.reads(), reads) << "the file was not asked";
  EXPECT_FALSE(buffer_->cacheFilling());
}

TEST_F(OVDiskAudioBufferCacheTest, ReadsWhatCrossesTheCachesEndFromTheFileAndQueuesOneFill) {
  const Bytes bytes = pattern(kCache + 4096, 1);
  write(*buffer_, bytes, 0);
  buffer_->fillCacheFromPosition(0);
  ASSERT_EQ(buffer_->cache_fillsize(), kCache);
  EXPECT_EQ(read(*buffer_, 800, kCache - 400), part(bytes, kCache - 400, kCache + 400));
  waitForTheFill();
  EXPECT_EQ(buffer_->cached_position(), kCache - 400);
  EXPECT_EQ(buffer_->cache_fillsize(), 4496U);
}

// Blocks all threads of the global queue at a gate, so that submitted work stays queued.
class StoppedQueues {
 public:
  StoppedQueues() {
    constexpr int kThreads = platform::GlobalQueue::kMaximumThreads;
    for (int i = 0; i < kThreads; ++i) {
      platform::globalQueue().async([gate = gate_] { gate->pass(); });
    }
    EXPECT_TRUE(gate_->awaitArrival(kThreads));
  }
  void go() { gate_->open(); }

 private:
  std::shared_ptr<support::Gate> gate_ = std::make_shared<support::Gate>();
};

TEST_F(OVDiskAudioBufferCacheTest, QueuesOneFillForManyMisses) {
  const Bytes bytes = pattern(8000, 1);
  write(*buffer_, bytes, 0);
  StoppedQueues queues;
  for (std::uint64_t offset = 800; offset < 8000; offset += 800) {
    EXPECT_EQ(read(*buffer_, 800, offset), part(bytes, offset, offset + 800));
    EXPECT_TRUE(buffer_->cacheFilling());
  }
  EXPECT_EQ(files_.reads(), 9U) << "no fill has run";
  queues.go();
  waitForTheFill();
  EXPECT_EQ(files_.reads(), 10U);
  EXPECT_EQ(buffer_->cached_position(), 800U) << "where the first miss was";
  EXPECT_EQ(buffer_->cache_fillsize(), 7200U);
}

TEST_F(OVDiskAudioBufferCacheTest, IsReadWhileAFillWaitsForASlowDisk) {
  const Bytes bytes = recordAndCache(8000);
  support::Gate gate;
  files_.beforeReads([&gate] { gate.pass(); });
  auto fill = std::async(std::launch::async, [this] { buffer_->fillCacheFromPosition(4000); });
  ASSERT_TRUE(eventually([this] { return buffer_->cached_position() == 4000; }));
  EXPECT_TRUE(buffer_->cacheFilling());
  Bytes destination(80);
  EXPECT_EQ(buffer_->getDataFromCache(destination.data(), 4000, 80), 0U)
      << "the cache is empty while it is being filled";
  gate.open();
  fill.get();
  EXPECT_EQ(buffer_->getDataFromCache(destination.data(), 4000, 80), 80U);
  EXPECT_EQ(destination, part(bytes, 4000, 4080));
}

TEST_F(OVDiskAudioBufferCacheTest, MissesWhatBeginsBeforeOrEndsBehindTheCache) {
  recordAndCache(8000);
  buffer_->fillCacheFromPosition(800);
  Bytes destination(8000);
  EXPECT_EQ(buffer_->getDataFromCache(destination.data(), 799, 8), 0U);
  EXPECT_EQ(buffer_->getDataFromCache(destination.data(), 7993, 8), 0U);
  EXPECT_EQ(buffer_->getDataFromCache(destination.data(), 800, 7201), 0U);
  EXPECT_EQ(buffer_->getDataFromCache(destination.data(), 800, 7200), 7200U);
}

TEST_F(OVDiskAudioBufferCacheTest, FillsAheadWhenLessThanFourReadsRemain) {
  write(*buffer_, pattern(kCache + 80000, 1), 0);
  buffer_->fillCacheFromPosition(0);
  Bytes destination(800);
  const std::uint64_t exactlyFour = kCache - 5 * 800;
  ASSERT_EQ(buffer_->getDataFromCache(destination.data(), exactlyFour, 800), 800U);
  EXPECT_EQ(buffer_->cached_position(), 0U) << "four remain: enough";
  ASSERT_EQ(buffer_->getDataFromCache(destination.data(), exactlyFour + 1, 800), 800U);
  EXPECT_EQ(buffer_->cached_position(), exactlyFour + 1) << "filled before the call returned";
  EXPECT_EQ(buffer_->cache_fillsize(), kCache + 80000 - exactlyFour - 1);
  EXPECT_FALSE(buffer_->cacheFilling());
}

TEST_F(OVDiskAudioBufferCacheTest, FillsNotAheadWhileAFillStandsInTheQueue) {
  write(*buffer_, pattern(8000, 1), 0);
  buffer_->fillCacheFromPosition(4000);
  StoppedQueues queues;
  ASSERT_THAT(read(*buffer_, 800, 0), SizeIs(800)) << "a miss";
  EXPECT_THAT(read(*buffer_, 800, 7200), SizeIs(800)) << "the last of the cache";
  EXPECT_EQ(buffer_->cached_position(), 4000U);
  EXPECT_EQ(buffer_->cache_fillsize(), 4000U);
  queues.go();
  waitForTheFill();
  EXPECT_EQ(buffer_->cached_position(), 0U);
  EXPECT_THAT(read(*buffer_, 800, 7200), SizeIs(800));
  EXPECT_EQ(buffer_->cached_position(), 7200U) << "now it fills ahead";
}

TEST_F(OVDiskAudioBufferCacheTest, AnyWriteEmptiesTheCache) {
  const Bytes bytes = recordAndCache(8000);
  write(*buffer_, {}, 100000);
  EXPECT_EQ(buffer_->cache_fillsize(), 0U) << "even one of no bytes far away";
  buffer_->fillCacheFromPosition(0);
  const Bytes later = pattern(80, 2);
  write(*buffer_, later, 0);
  EXPECT_EQ(buffer_->cache_fillsize(), 0U);
  EXPECT_EQ(buffer_->cached_position(), 0U);
  EXPECT_EQ(read(*buffer_, 160, 0), later + part(bytes, 80, 160));
}

TEST_F(OVDiskAudioBufferCacheTest, AWriteDuringAFillLeavesNoStaleBytesInTheCache) {
  write(*buffer_, pattern(8000, 1), 0);
  const auto gate = std::make_shared<support::Gate>();  // the read below queues a fill
  files_.beforeReads([gate] { gate->pass(); });
  auto fill = std::async(std::launch::async, [this] { buffer_->fillCacheFromPosition(0); });
  ASSERT_TRUE(gate->awaitArrival());
  const Bytes later = pattern(8000, 2);
  auto writer = std::async(std::launch::async, [&] { write(*buffer_, later, 0); });
  gate->open();
  fill.get();
  writer.get();
  EXPECT_EQ(read(*buffer_, 800, 0), part(later, 0, 800));
}

TEST_F(OVDiskAudioBufferCacheTest, SequentialReadsGiveTheWholeRecording) {
  const Bytes bytes = pattern(2 * kCache + 12345 * 8, 3);
  write(*buffer_, bytes, 0);
  Bytes all;
  for (std::uint64_t at = 0; at < bytes.size(); at += 65536) {
    const Bytes some = read(*buffer_, 65536, at);
    all.insert(all.end(), some.begin(), some.end());
  }
  waitForTheFill();
  EXPECT_EQ(all.size(), bytes.size());
  EXPECT_TRUE(all == bytes);
}

TEST_F(OVDiskAudioBufferCacheTest, MayEndWhileItsFillStandsInTheQueue) {
  write(*buffer_, pattern(8000, 1), 0);
  const std::weak_ptr<OVDiskAudioBuffer> weak = buffer_;
  ASSERT_THAT(read(*buffer_, 80, 0), SizeIs(80));
  buffer_.reset();
  EXPECT_TRUE(eventually([&] { return weak.expired() && files_.openFiles() == 0; }));
}

}  // namespace
