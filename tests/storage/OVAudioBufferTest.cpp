#include "storage/OVAudioBuffer.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <limits>

#include "support/AddressSpaceLimit.h"
#include "support/Sanitizers.h"
#include "support/TransferHelpers.h"
#include "support/fakes/RecordingDelegate.h"
#include "support/fakes/RecordingServices.h"

namespace {

using support::Bytes;
using support::isNothing;
using support::part;
using support::pattern;
using support::read;
using support::write;
using support::operator+;  // NOLINT(misc-unused-using-decls): used as an operator
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr auto kHighest = std::numeric_limits<std::uint64_t>::max();
constexpr std::uint64_t kTenSeconds = 3528000;  // bytes

class OVAudioBufferTest : public testing::Test {
 protected:
  support::InstalledRecordingServices services_;
  std::shared_ptr<OVAudioBuffer> buffer_ = OVAudioBuffer::init();
};

TEST_F(OVAudioBufferTest, IsEmptyWithTenSecondsOfZerosAtFirst) {
  EXPECT_EQ(buffer_->bufferCapacity(), kTenSeconds);
  EXPECT_EQ(buffer_->bufferCapacityInFrames(), 441000U);
  EXPECT_EQ(buffer_->bufferSizeInFrames(), 0U);
  EXPECT_EQ(buffer_->bufferFillSizeInFrames(), 0U);
  buffer_->cutoffBufferAfterPosition(441000);
  EXPECT_EQ(read(*buffer_, kTenSeconds, 0), Bytes(kTenSeconds, 0));
}

TEST_F(OVAudioBufferTest, AlwaysHasTheWorkingFormat) {
  EXPECT_EQ(buffer_->format(), platform::kWorkingFormat);
}

TEST_F(OVAudioBufferTest, GivesBackWhatWasWritten) {
  const Bytes bytes = pattern(100, 1);
  write(*buffer_, bytes, 40);
  EXPECT_EQ(buffer_->bufferFillSize(), 140U);
  EXPECT_EQ(buffer_->bufferSizeInFrames(), 17U);
  EXPECT_EQ(read(*buffer_, 1000, 0), Bytes(40, 0) + bytes);
  write(*buffer_, pattern(8, 2), 44);
  EXPECT_EQ(buffer_->bufferFillSize(), 140U);
  EXPECT_EQ(read(*buffer_, 16, 40), part(bytes, 0, 4) + pattern(8, 2) + part(bytes, 12, 16));
}

TEST_F(OVAudioBufferTest, DoesNotGrowBelowItsCapacity) {
  write(*buffer_, Bytes(kTenSeconds - 1), 0);
  EXPECT_EQ(buffer_->bufferCapacity(), kTenSeconds);
}

TEST_F(OVAudioBufferTest, GrowsByHalfWhenAWriteReachesExactlyItsCapacity) {
  const Bytes bytes = pattern(kTenSeconds, 1);
  write(*buffer_, bytes, 0);
  EXPECT_EQ(buffer_->bufferCapacity(), 5292000U);
  EXPECT_EQ(read(*buffer_, kTenSeconds, 0), bytes);
}

TEST_F(OVAudioBufferTest, GrowsUntilItsCapacityExceedsTheEnd) {
  write(*buffer_, pattern(8, 1), 5292000 - 8);
  EXPECT_EQ(buffer_->bufferCapacity(), 7938000U);
}

TEST_F(OVAudioBufferTest, GrowsFromTheInitialCapacityWhenItHasNone) {
  buffer_->cutoffBufferAfterPosition(0);
  EXPECT_EQ(buffer_->bufferCapacity(), 0U);
  const Bytes bytes = pattern(80, 1);
  write(*buffer_, bytes, 0);
  EXPECT_EQ(buffer_->bufferCapacity(), kTenSeconds);
  EXPECT_EQ(read(*buffer_, 80, 0), bytes);
}

TEST_F(OVAudioBufferTest, GrowsFromASmallCapacity) {
  buffer_->cutoffBufferAfterPosition(1);
  write(*buffer_, pattern(8, 1), 8);
  EXPECT_EQ(buffer_->bufferCapacity(), 18U);  // 8, 12, 18
}

TEST_F(OVAudioBufferTest, ReadNearTheEndIsShort) {
  const Bytes bytes = pattern(1000, 1);
  write(*buffer_, bytes, 0);
  Bytes destination(100, 0xAA);
  const BufferReadResult result = buffer_->readDataInto(destination.data(), 100, 960);
  EXPECT_EQ(static_cast<void*>(result.data), destination.data());
  EXPECT_EQ(result.byteCount, 40U);
  EXPECT_EQ(result.frameCount, 5U);
  EXPECT_EQ(destination, part(bytes, 960, 1000) + Bytes(60, 0xAA));
}

TEST_F(OVAudioBufferTest, ReadAtOrPastTheEndOrOfNoBytesGivesNothing) {
  float destination[4];
  EXPECT_TRUE(isNothing(buffer_->readDataInto(destination, 16, 0)));
  write(*buffer_, pattern(80, 1), 0);
  EXPECT_TRUE(isNothing(buffer_->readDataInto(destination, 16, 80)));
  EXPECT_TRUE(isNothing(buffer_->readDataInto(destination, 16, kHighest)));
  EXPECT_TRUE(isNothing(buffer_->readDataInto(destination, 0, 0)));
}

TEST_F(OVAudioBufferTest, ReadWhoseEndWrapsEndsWithTheRecording) {
  const Bytes bytes = pattern(80, 1);
  write(*buffer_, bytes, 0);
  Bytes destination(80);
  EXPECT_EQ(buffer_->readDataInto(destination.data(), kHighest, 40).byteCount, 40U);
  EXPECT_EQ(part(destination, 0, 40), part(bytes, 40, 80));
}

TEST_F(OVAudioBufferTest, ReadWithoutCacheIsTheSame) {
  const Bytes bytes = pattern(80, 1);
  write(*buffer_, bytes, 0);
  Bytes destination(30);
  EXPECT_EQ(buffer_->readDataIntoNoCache(destination.data(), 30, 60).byteCount, 20U);
  EXPECT_EQ(part(destination, 0, 20), part(bytes, 60, 80));
}

TEST_F(OVAudioBufferTest, CutAfterShrinksTheBlock) {
  const Bytes bytes = pattern(800, 1);
  write(*buffer_, bytes, 0);
  buffer_->cutoffBufferAfterPosition(25);
  EXPECT_EQ(buffer_->bufferCapacity(), 200U);
  EXPECT_EQ(read(*buffer_, 800, 0), part(bytes, 0, 200));
}

TEST_F(OVAudioBufferTest, CutAfterPastTheEndLengthensTheRecording) {
  const Bytes bytes = pattern(80, 1);
  write(*buffer_, bytes, 0);
  buffer_->cutoffBufferAfterPosition(100);
  EXPECT_EQ(buffer_->bufferFillSize(), 800U);
  EXPECT_EQ(read(*buffer_, 1000, 0), bytes + Bytes(720, 0));
}

TEST_F(OVAudioBufferTest, CutAfterBeyondTheCapacityIsIgnored) {
  write(*buffer_, pattern(80, 1), 0);
  buffer_->cutoffBufferAfterPosition(441001);
  EXPECT_EQ(buffer_->bufferCapacity(), kTenSeconds);
  EXPECT_EQ(buffer_->bufferFillSize(), 80U);
}

TEST_F(OVAudioBufferTest, CutBeforeMovesTheRestToTheStart) {
  const Bytes bytes = pattern(800, 1);
  write(*buffer_, bytes, 0);
  buffer_->cutoffBufferBeforePosition(25);
  EXPECT_EQ(buffer_->bufferCapacity(), kTenSeconds - 200);
  EXPECT_EQ(read(*buffer_, 800, 0), part(bytes, 200, 800));
}

TEST_F(OVAudioBufferTest, CutBeforeAtOrBeyondTheCapacityIsIgnored) {
  write(*buffer_, pattern(80, 1), 0);
  buffer_->cutoffBufferBeforePosition(441000);
  EXPECT_EQ(buffer_->bufferCapacity(), kTenSeconds);
  EXPECT_EQ(buffer_->bufferFillSize(), 80U);
}

TEST_F(OVAudioBufferTest, ReadsStayInsideTheBlockAfterTheLengthHasUnderflowed) {
  write(*buffer_, pattern(80, 1), 0);
  buffer_->cutoffBufferBeforePosition(20);
  EXPECT_EQ(buffer_->bufferFillSize(), std::uint64_t{0} - 80);
  Bytes destination(100);
  EXPECT_EQ(buffer_->readDataInto(destination.data(), 100, kTenSeconds - 60).byteCount, 60U);
  EXPECT_TRUE(isNothing(buffer_->readDataInto(destination.data(), 100, kTenSeconds)));
  buffer_->reverseBuffer();
}

TEST_F(OVAudioBufferTest, GrowsAgainAfterACutBefore) {
  const Bytes bytes = pattern(800, 1);
  write(*buffer_, bytes, 0);
  buffer_->cutoffBufferBeforePosition(50);
  const std::uint64_t capacity = kTenSeconds - 400;
  write(*buffer_, pattern(8, 2), capacity - 8);
  EXPECT_EQ(buffer_->bufferCapacity(), capacity + capacity / 2);
  EXPECT_EQ(read(*buffer_, 400, 0), part(bytes, 400, 800));
  EXPECT_EQ(read(*buffer_, 100, capacity - 8), pattern(8, 2));
}

TEST_F(OVAudioBufferTest, ReversingGoesBySampleAndExchangesTheChannels) {
  const float samples[] = {1.0F, 2.0F, 3.0F, 4.0F};
  buffer_->writeData(samples, 0, sizeof samples);
  buffer_->reverseBuffer();
  const float* const reversed = buffer_->exposeBuffer();
  EXPECT_THAT(std::vector<float>(reversed, reversed + 4), ElementsAre(4.0F, 3.0F, 2.0F, 1.0F));
  buffer_->reverseBuffer();
  EXPECT_EQ(buffer_->exposeBuffer()[0], 1.0F);
  EXPECT_EQ(buffer_->exposeBuffer()[3], 4.0F);
}

TEST_F(OVAudioBufferTest, ReversingKeepsBytesThatAreNoWholeSample) {
  const Bytes bytes = pattern(11, 1);
  write(*buffer_, bytes, 0);
  buffer_->reverseBuffer();
  EXPECT_EQ(read(*buffer_, 11, 0), part(bytes, 4, 8) + part(bytes, 0, 4) + part(bytes, 8, 11));
}

TEST_F(OVAudioBufferTest, ReversingNothingDoesNothing) {
  buffer_->reverseBuffer();
  EXPECT_EQ(buffer_->bufferFillSize(), 0U);
}

TEST_F(OVAudioBufferTest, UndoWithoutAWaypointDoesNothing) {
  const Bytes bytes = pattern(80, 1);
  write(*buffer_, bytes, 0);
  buffer_->undo();
  buffer_->redo();
  EXPECT_EQ(read(*buffer_, 100, 0), bytes);
}

TEST_F(OVAudioBufferTest, UndoExchangesTheRecordingWithTheWaypointAndTwiceIsBack) {
  const Bytes before = pattern(80, 1);
  const Bytes after = pattern(160, 2);
  write(*buffer_, before, 0);
  buffer_->setWaypoint();
  write(*buffer_, after, 0);
  buffer_->cutoffBufferAfterPosition(20);
  buffer_->undo();
  EXPECT_EQ(read(*buffer_, 1000, 0), before);
  EXPECT_EQ(buffer_->bufferCapacity(), kTenSeconds);
  buffer_->undo();
  EXPECT_EQ(read(*buffer_, 1000, 0), after);
  EXPECT_EQ(buffer_->bufferCapacity(), 160U);
}

TEST_F(OVAudioBufferTest, RedoTakesAnUndoBack) {
  write(*buffer_, pattern(80, 1), 0);
  buffer_->setWaypoint();
  const Bytes after = pattern(80, 2);
  write(*buffer_, after, 0);
  buffer_->undo();
  buffer_->redo();
  EXPECT_EQ(read(*buffer_, 100, 0), after);
}

TEST_F(OVAudioBufferTest, ALaterWaypointReplacesTheEarlier) {
  write(*buffer_, pattern(80, 1), 0);
  buffer_->setWaypoint();
  const Bytes second = pattern(80, 2);
  write(*buffer_, second, 0);
  buffer_->setWaypoint();
  write(*buffer_, pattern(80, 3), 0);
  buffer_->undo();
  EXPECT_EQ(read(*buffer_, 100, 0), second);
}

TEST_F(OVAudioBufferTest, WaypointsAfterACutBeforeKeepTheSmallerCapacity) {
  const Bytes bytes = pattern(800, 1);
  write(*buffer_, bytes, 0);
  buffer_->cutoffBufferBeforePosition(50);
  buffer_->setWaypoint();
  write(*buffer_, pattern(80, 2), 0);
  buffer_->undo();
  EXPECT_EQ(buffer_->bufferCapacity(), kTenSeconds - 400);
  EXPECT_EQ(read(*buffer_, 1000, 0), part(bytes, 400, 800));
}

TEST_F(OVAudioBufferTest, GivesThePowerOfTwoSamplesAsTheirMeanMagnitude) {
  const float samples[] = {0.25F, -0.75F, -1.0F};
  buffer_->writeData(samples, 0, sizeof samples);
  EXPECT_EQ(buffer_->powerAtPosition(0), 0.5);
  EXPECT_EQ(buffer_->powerAtPosition(1), 0.875) << "positions count samples, not frames";
}

TEST_F(OVAudioBufferTest, HasNoPowerOutsideItsBlock) {
  EXPECT_EQ(buffer_->powerAtPosition(kTenSeconds / 4 - 2), 0.0);
  EXPECT_EQ(buffer_->powerAtPosition(kTenSeconds / 4 - 1), 0.0);
  EXPECT_EQ(buffer_->powerAtPosition(kHighest), 0.0);
  buffer_->cutoffBufferAfterPosition(0);
  EXPECT_EQ(buffer_->powerAtPosition(0), 0.0);
}

TEST_F(OVAudioBufferTest, TellsItsDelegateOfEveryWriteOutsideTheLock) {
  const auto delegate = std::make_shared<support::RecordingDelegate>();
  delegate->during([this] {
    buffer_->lock();
    buffer_->unlock();
  });
  buffer_->setDelegate(delegate);
  EXPECT_EQ(buffer_->delegate().lock(), delegate);
  const Bytes bytes = pattern(96, 1);
  write(*buffer_, bytes, 40);
  buffer_->writeData(nullptr, 7, 0);
  EXPECT_THAT(delegate->calls(), ElementsAre(support::DelegateCall{bytes.data(), 40, 96, 0},
                                             support::DelegateCall{nullptr, 7, 0, 0}));
}

TEST_F(OVAudioBufferTest, RefusesAWriteThatWouldEndPastTheHighestAddress) {
  const auto delegate = std::make_shared<support::RecordingDelegate>();
  buffer_->setDelegate(delegate);
  write(*buffer_, pattern(16, 1), kHighest - 8);
  EXPECT_THAT(services_->consoleLines(), SizeIs(1));
  EXPECT_THAT(delegate->calls(), IsEmpty());
  EXPECT_EQ(buffer_->bufferFillSize(), 0U);
}

TEST_F(OVAudioBufferTest, ReportsAWriteThatNoMemoryCanHold) {
  const auto delegate = std::make_shared<support::RecordingDelegate>();
  buffer_->setDelegate(delegate);
  const Bytes bytes = pattern(16, 1);
  for (const std::uint64_t offset : {kHighest - 100, std::uint64_t{1} << 63}) {
    write(*buffer_, bytes, offset);
    EXPECT_THAT(delegate->calls(), Contains(support::DelegateCall{nullptr, 0, 0, ENOMEM}));
    EXPECT_EQ(delegate->calls().back(), (support::DelegateCall{bytes.data(), offset, 16, 0}));
  }
  EXPECT_EQ(buffer_->bufferCapacity(), kTenSeconds);
  EXPECT_EQ(buffer_->bufferFillSize(), 0U);
}

TEST_F(OVAudioBufferTest, ReportsAWriteForWhichThereIsNoMemory) {
  if (support::kAnySanitizer) {
    GTEST_SKIP() << "the checkers end the program at such an allocation";
  }
  const auto delegate = std::make_shared<support::RecordingDelegate>();
  buffer_->setDelegate(delegate);
  write(*buffer_, pattern(16, 1), std::uint64_t{1} << 62);
  ASSERT_THAT(delegate->calls(), SizeIs(2));
  EXPECT_EQ(delegate->calls()[0].error, ENOMEM);
  EXPECT_EQ(buffer_->bufferCapacity(), kTenSeconds);
}

// A large recording in a process without memory for a copy of it.
class OVAudioBufferWithoutMemoryTest : public OVAudioBufferTest {
 protected:
  static constexpr std::uint64_t kLong = std::uint64_t{96} << 20;   // bytes
  static constexpr std::uint64_t kSpare = std::uint64_t{16} << 20;  // bytes

  void SetUp() override {
    if (support::kAnySanitizer) {
      GTEST_SKIP() << "the checkers end the program at such an allocation";
    }
    write(*buffer_, first_, kLong - first_.size());
  }

  Bytes lastBytes() { return read(*buffer_, 2 * first_.size(), kLong - first_.size()); }

  const Bytes first_ = pattern(80, 1);
  const Bytes second_ = pattern(80, 2);
};

TEST_F(OVAudioBufferWithoutMemoryTest, GoesOnWithoutAWaypoint) {
  {
    const support::AddressSpaceLimit limit(kSpare);
    EXPECT_NO_THROW(buffer_->setWaypoint());
  }
  EXPECT_EQ(services_->consoleLinesWith("could not keep a copy"), 1U);
  write(*buffer_, second_, kLong - second_.size());
  buffer_->undo();
  buffer_->redo();
  EXPECT_EQ(lastBytes(), second_) << "there is nothing to go back to";
  EXPECT_EQ(buffer_->bufferFillSize(), kLong);
}

TEST_F(OVAudioBufferWithoutMemoryTest, ForgetsTheWaypointBeforeTheOneThatFailed) {
  buffer_->cutoffBufferAfterPosition(10);
  buffer_->setWaypoint();
  write(*buffer_, first_, kLong - first_.size());
  {
    const support::AddressSpaceLimit limit(kSpare);
    EXPECT_NO_THROW(buffer_->setWaypoint());
  }
  buffer_->undo();
  EXPECT_EQ(buffer_->bufferFillSize(), kLong) << "the older copy belongs to an older edit";
}

TEST_F(OVAudioBufferWithoutMemoryTest, HasAWaypointAgainOnceThereIsMemory) {
  {
    const support::AddressSpaceLimit limit(kSpare);
    EXPECT_NO_THROW(buffer_->setWaypoint());
  }
  buffer_->setWaypoint();
  write(*buffer_, second_, kLong - second_.size());
  buffer_->undo();
  EXPECT_EQ(lastBytes(), first_);
}

TEST_F(OVAudioBufferWithoutMemoryTest, IsReversed) {
  const float samples[] = {1.0F, 2.0F, 3.0F};
  buffer_->writeData(samples, 0, sizeof samples);
  {
    const support::AddressSpaceLimit limit(kSpare);
    EXPECT_NO_THROW(buffer_->reverseBuffer());
  }
  float reversed[3] = {};
  ASSERT_EQ(buffer_->readDataInto(reversed, sizeof reversed, kLong - sizeof reversed).byteCount,
            sizeof reversed);
  EXPECT_THAT(reversed, ElementsAre(3.0F, 2.0F, 1.0F));
}

TEST_F(OVAudioBufferTest, KeepsTheFramesToPlayForItsCallers) {
  EXPECT_EQ(buffer_->framesToPlay(), 0U);
  buffer_->setFramesToPlay(77);
  EXPECT_EQ(buffer_->framesToPlay(), 77U);
}

}  // namespace
