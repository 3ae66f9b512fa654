// The guarantees of the interface, checked for every buffer. Each buffer's own tests cover the
// rest.
#include "storage/OVAudioBufferInterface.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <memory>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "storage/OVAudioBuffer.h"
#include "storage/OVBlockBuffer.h"
#include "storage/OVDiskAudioBuffer.h"
#include "support/TransferHelpers.h"
#include "support/fakes/FailingTemporaryFiles.h"
#include "support/fakes/RecordingDelegate.h"
#include "support/fakes/RecordingServices.h"

namespace {

using support::Bytes;
using support::isNothing;
using support::part;
using support::pattern;
using support::read;
using support::write;
using support::operator+;
using support::DelegateCall;
using testing::ElementsAre;
using testing::IsEmpty;

template <typename Buffer>
class OVAudioBufferInterfaceTest : public testing::Test {
 protected:
  OVAudioBufferInterface& buffer() { return *buffer_; }

  void expectNothingAt(std::uint64_t offset, std::uint64_t count = 80) {
    Bytes destination(count, 0x55);
    EXPECT_TRUE(isNothing(buffer().readDataInto(destination.data(), count, offset)));
    EXPECT_EQ(destination, Bytes(count, 0x55)) << "the destination is left as it was";
  }

  void expectRecording(const Bytes& bytes) {
    EXPECT_EQ(buffer().bufferSizeInFrames(), bytes.size() / 8);
    EXPECT_EQ(buffer().bufferFillSizeInFrames(), bytes.size() / 8);
    EXPECT_TRUE(read(buffer(), bytes.size() + 80, 0) == bytes);
    expectNothingAt(bytes.size());
    expectNothingAt(bytes.size() + 8);
  }

  support::InstalledRecordingServices services_;
  support::FailingTemporaryFiles files_;
  platform::Installed<platform::TemporaryFiles>::Scope installation_{files_};
  std::shared_ptr<OVAudioBufferInterface> buffer_ = Buffer::init();
  std::shared_ptr<support::RecordingDelegate> delegate_ =
      std::make_shared<support::RecordingDelegate>();
};

struct BufferNames {
  template <typename Buffer>
  static std::string GetName(int) {
    if constexpr (std::is_same_v<Buffer, OVAudioBuffer>) {
      return "OVAudioBuffer";
    } else if constexpr (std::is_same_v<Buffer, OVBlockBuffer>) {
      return "OVBlockBuffer";
    } else {
      return "OVDiskAudioBuffer";
    }
  }
};

using Buffers = testing::Types<OVAudioBuffer, OVBlockBuffer, OVDiskAudioBuffer>;
TYPED_TEST_SUITE(OVAudioBufferInterfaceTest, Buffers, BufferNames);

TYPED_TEST(OVAudioBufferInterfaceTest, HasTheWorkingFormat) {
  EXPECT_EQ(this->buffer().format(), platform::kWorkingFormat);
}

TYPED_TEST(OVAudioBufferInterfaceTest, IsEmptyAtFirst) {
  this->expectRecording({});
  this->expectNothingAt(~std::uint64_t{0});
}

TYPED_TEST(OVAudioBufferInterfaceTest, GivesBackWhatWasWritten) {
  const Bytes bytes = pattern(8000, 1);
  write(this->buffer(), bytes, 0);
  this->expectRecording(bytes);
}

TYPED_TEST(OVAudioBufferInterfaceTest, AnswersAReadWithTheDestinationTheFramesAndTheBytes) {
  write(this->buffer(), pattern(800, 1), 0);
  Bytes destination(160);
  const auto result = this->buffer().readDataInto(destination.data(), 160, 80);
  EXPECT_EQ(static_cast<void*>(result.data), destination.data());
  EXPECT_EQ(result.frameCount, 20U);
  EXPECT_EQ(result.byteCount, 160U);
  EXPECT_EQ(destination, part(pattern(800, 1), 80, 240));
}

TYPED_TEST(OVAudioBufferInterfaceTest, ReadsShortAtTheEndAndLeavesTheRestOfTheDestination) {
  const Bytes bytes = pattern(800, 1);
  write(this->buffer(), bytes, 0);
  Bytes destination(100, 0x55);
  const auto result = this->buffer().readDataInto(destination.data(), 100, 760);
  EXPECT_EQ(result.byteCount, 40U);
  EXPECT_EQ(result.frameCount, 5U);
  EXPECT_EQ(part(destination, 0, 40), part(bytes, 760, 800));
  EXPECT_EQ(part(destination, 40, 100), Bytes(60, 0x55));
}

TYPED_TEST(OVAudioBufferInterfaceTest, ReadsNothingForACountOfNone) {
  write(this->buffer(), pattern(800, 1), 0);
  float unused = 0.0F;
  EXPECT_TRUE(isNothing(this->buffer().readDataInto(&unused, 0, 80)));
  EXPECT_TRUE(isNothing(this->buffer().readDataInto(nullptr, 0, 0)));
}

TYPED_TEST(OVAudioBufferInterfaceTest, GivesTheSameForTheSameReadAgain) {
  const Bytes bytes = pattern(8000, 1);
  write(this->buffer(), bytes, 0);
  for (int i = 0; i < 20; ++i) {
    ASSERT_EQ(read(this->buffer(), 800, 4000), part(bytes, 4000, 4800));
  }
}

TYPED_TEST(OVAudioBufferInterfaceTest, WritesOverWhatIsThere) {
  const Bytes below = pattern(800, 1);
  const Bytes above = pattern(160, 2);
  write(this->buffer(), below, 0);
  write(this->buffer(), above, 320);
  this->expectRecording(part(below, 0, 320) + above + part(below, 480, 800));
}

TYPED_TEST(OVAudioBufferInterfaceTest, GrowsByAWriteAcrossItsEndAndNotByOneInside) {
  write(this->buffer(), pattern(800, 1), 0);
  write(this->buffer(), pattern(80, 2), 720);
  EXPECT_EQ(this->buffer().bufferSizeInFrames(), 100U);
  write(this->buffer(), pattern(80, 2), 760);
  EXPECT_EQ(this->buffer().bufferSizeInFrames(), 105U);
}

TYPED_TEST(OVAudioBufferInterfaceTest, CountsWholeFrames) {
  write(this->buffer(), pattern(15, 1), 0);
  EXPECT_EQ(this->buffer().bufferSizeInFrames(), 1U);
  EXPECT_EQ(this->buffer().bufferFillSizeInFrames(), 1U);
}

TYPED_TEST(OVAudioBufferInterfaceTest, IsLongerByAWriteBehindItsEnd) {
  const Bytes first = pattern(80, 1);
  const Bytes second = pattern(80, 2);
  write(this->buffer(), first, 0);
  write(this->buffer(), second, 800);
  EXPECT_EQ(this->buffer().bufferSizeInFrames(), 110U);
  EXPECT_EQ(read(this->buffer(), 80, 0), first);
  EXPECT_EQ(read(this->buffer(), 800, 800), second);
}

TYPED_TEST(OVAudioBufferInterfaceTest, IsNotChangedByAWriteOfNoBytesInside) {
  const Bytes bytes = pattern(800, 1);
  write(this->buffer(), bytes, 0);
  write(this->buffer(), {}, 400);
  this->expectRecording(bytes);
}

TYPED_TEST(OVAudioBufferInterfaceTest, RefusesAWriteThatEndsPastTheHighestAddress) {
  this->buffer().setDelegate(this->delegate_);
  write(this->buffer(), pattern(16, 1), ~std::uint64_t{0} - 8);
  EXPECT_EQ(this->buffer().bufferSizeInFrames(), 0U);
  EXPECT_THAT(this->delegate_->calls(), IsEmpty());
  EXPECT_EQ(this->services_->consoleLinesWith("refused to write"), 1U);
}

TYPED_TEST(OVAudioBufferInterfaceTest, EndsAtACutAfter) {
  const Bytes bytes = pattern(8000, 1);
  write(this->buffer(), bytes, 0);
  this->buffer().cutoffBufferAfterPosition(300);
  this->expectRecording(part(bytes, 0, 2400));
}

TYPED_TEST(OVAudioBufferInterfaceTest, BeginsAtACutBefore) {
  const Bytes bytes = pattern(8000, 1);
  write(this->buffer(), bytes, 0);
  this->buffer().cutoffBufferBeforePosition(300);
  this->expectRecording(part(bytes, 2400, 8000));
}

TYPED_TEST(OVAudioBufferInterfaceTest, IsNotChangedByCutsAtItsEdges) {
  const Bytes bytes = pattern(8000, 1);
  write(this->buffer(), bytes, 0);
  this->buffer().cutoffBufferAfterPosition(1000);
  this->buffer().cutoffBufferBeforePosition(0);
  this->expectRecording(bytes);
}

TYPED_TEST(OVAudioBufferInterfaceTest, IsEmptyAfterACutAtItsStart) {
  write(this->buffer(), pattern(8000, 1), 0);
  this->buffer().cutoffBufferAfterPosition(0);
  this->expectRecording({});
}

TYPED_TEST(OVAudioBufferInterfaceTest, CanBeRecordedToAfterCuts) {
  const Bytes first = pattern(8000, 1);
  const Bytes second = pattern(800, 2);
  write(this->buffer(), first, 0);
  this->buffer().cutoffBufferAfterPosition(500);
  this->buffer().cutoffBufferBeforePosition(100);
  write(this->buffer(), second, 3200);
  this->expectRecording(part(first, 800, 4000) + second);
}

TYPED_TEST(OVAudioBufferInterfaceTest, IsNotChangedByAWaypointAndARedoWithoutAnUndo) {
  const Bytes bytes = pattern(800, 1);
  write(this->buffer(), bytes, 0);
  this->buffer().setWaypoint();
  this->expectRecording(bytes);
  const auto fresh = TypeParam::init();
  write(*fresh, bytes, 0);
  fresh->redo();
  EXPECT_EQ(read(*fresh, 800, 0), bytes);
}

TYPED_TEST(OVAudioBufferInterfaceTest, TellsTheDelegateOfEveryWriteWithItsArguments) {
  this->buffer().setDelegate(this->delegate_);
  EXPECT_EQ(this->buffer().delegate().lock(), this->delegate_);
  const Bytes first = pattern(800, 1);
  const Bytes second = pattern(80, 2);
  write(this->buffer(), first, 0);
  write(this->buffer(), second, 2400);
  this->buffer().writeData(second.data(), 7, 0);
  EXPECT_THAT(this->delegate_->calls(), ElementsAre(DelegateCall{first.data(), 0, 800, 0},
                                                    DelegateCall{second.data(), 2400, 80, 0},
                                                    DelegateCall{second.data(), 7, 0, 0}));
}

TYPED_TEST(OVAudioBufferInterfaceTest, TellsTheDelegateOfNothingElse) {
  write(this->buffer(), pattern(8000, 1), 0);
  this->buffer().setDelegate(this->delegate_);
  this->buffer().setWaypoint();
  this->buffer().cutoffBufferAfterPosition(500);
  this->buffer().cutoffBufferBeforePosition(100);
  this->buffer().undo();
  this->buffer().redo();
  this->buffer().reverseBuffer();
  static_cast<void>(this->buffer().powerAtPosition(3));
  static_cast<void>(read(this->buffer(), 800, 0));
  EXPECT_THAT(this->delegate_->calls(), IsEmpty());
}

TYPED_TEST(OVAudioBufferInterfaceTest, TellsTheDelegateOnTheWritersThreadWithItsLockReleased) {
  this->buffer().setDelegate(this->delegate_);
  const Bytes bytes = pattern(80, 1);
  std::thread::id teller;
  Bytes seen;
  this->delegate_->during([&] {
    teller = std::this_thread::get_id();
    this->buffer().lock();
    this->buffer().unlock();
    seen = read(this->buffer(), 80, 0);
  });
  std::thread::id writer;
  std::thread thread([&] {
    writer = std::this_thread::get_id();
    write(this->buffer(), bytes, 0);
  });
  thread.join();
  EXPECT_EQ(teller, writer);
  EXPECT_EQ(seen, bytes) << "it is told when the bytes can be read";
}

TYPED_TEST(OVAudioBufferInterfaceTest, DoesNotKeepItsDelegateAlive) {
  const std::weak_ptr<support::RecordingDelegate> weak = this->delegate_;
  this->buffer().setDelegate(this->delegate_);
  this->delegate_.reset();
  EXPECT_TRUE(weak.expired());
  write(this->buffer(), pattern(80, 1), 0);
  EXPECT_EQ(this->buffer().delegate().lock(), nullptr);
}

TYPED_TEST(OVAudioBufferInterfaceTest, LetsNoWriterAndNoEditPastItsLock) {
  const Bytes bytes = pattern(8000, 1);
  write(this->buffer(), bytes, 0);
  this->buffer().lock();
  std::atomic<int> done = 0;
  std::thread writer([&] {
    write(this->buffer(), pattern(80, 2), 0);
    ++done;
  });
  std::thread editor([&] {
    this->buffer().cutoffBufferAfterPosition(500);
    ++done;
  });
  EXPECT_EQ(done, 0);
  EXPECT_EQ(this->buffer().bufferSizeInFrames(), 1000U) << "sizes take no lock";
  this->buffer().unlock();
  writer.join();
  editor.join();
  this->expectRecording(pattern(80, 2) + part(bytes, 80, 4000));
}

TYPED_TEST(OVAudioBufferInterfaceTest, HoldsAnyRecordingMadeOfManyWrites) {
  std::mt19937 random(7);
  Bytes expected = pattern(40000, 0);
  write(this->buffer(), expected, 0);
  for (unsigned i = 1; i <= 300; ++i) {
    const std::uint64_t offset = random() % (expected.size() / 8) * 8;
    const Bytes bytes = pattern(8 + random() % 200 * 8, i);
    write(this->buffer(), bytes, offset);
    expected.resize(std::max(expected.size(), static_cast<std::size_t>(offset) + bytes.size()));
    std::copy(bytes.begin(), bytes.end(), expected.begin() + static_cast<std::ptrdiff_t>(offset));
    const std::uint64_t from = random() % (expected.size() / 8) * 8;
    const std::uint64_t end = std::min<std::uint64_t>(from + 4000, expected.size());
    ASSERT_EQ(read(this->buffer(), 4000, from), part(expected, from, end)) << i;
  }
  this->expectRecording(expected);
}

TYPED_TEST(OVAudioBufferInterfaceTest, NeverShowsHalfAWriteToAReader) {
  constexpr std::size_t kChunk = 4096;
  constexpr std::uint64_t kChunks = 16;
  write(this->buffer(), Bytes(kChunk * kChunks, 0), 0);
  std::thread writer([&] {
    for (unsigned i = 0; i < 1000; ++i) {
      write(this->buffer(), Bytes(kChunk, static_cast<unsigned char>(i)), i % kChunks * kChunk);
    }
  });
  std::vector<std::thread> readers;
  for (std::uint64_t reader = 1; reader <= 2; ++reader) {
    readers.emplace_back([&, reader] {
      for (std::uint64_t i = 0; i < 1000; ++i) {
        const Bytes bytes = read(this->buffer(), kChunk, i * reader % kChunks * kChunk);
        ASSERT_EQ(bytes, Bytes(kChunk, bytes.at(0))) << i;
      }
    });
  }
  writer.join();
  for (auto& reader : readers) {
    reader.join();
  }
}

}  // namespace
