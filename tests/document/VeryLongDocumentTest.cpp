// A document of twenty hours, 25 GB, over temporary files that keep no zeros. Under the thread
// checker it has two.
#include <algorithm>
#include <memory>
#include <vector>

#include "document/DocumentFixture.h"
#include "support/Checkers.h"
#include "support/ProcessMemory.h"
#include "support/SparseTemporaryFiles.h"

class VeryLongDocumentTest : public DocumentTest {
 protected:
  static constexpr std::uint64_t kLength = 20ULL * 3600 * 44100;            // frames
  static constexpr std::uint64_t kAllowedGrowth = std::uint64_t{64} << 20;  // bytes

  // As a file that has been read in: silence, with a second of sound from the middle on.
  void fill() {
    OVAudioBufferInterface& buffer = *document_->buffer();
    const auto delegate = buffer.delegate();
    buffer.setDelegate({});
    const std::vector<float> silence(std::uint64_t{16} << 20);
    for (std::uint64_t frame = 0; frame < kLength; frame += silence.size() / 2) {
      write(frame, silence.data(), std::min(silence.size() / 2, kLength - frame));
    }
    const std::vector<float> sound(2 * 44100, 0.5F);
    write(kLength / 2, sound.data(), 44100);
    buffer.setDelegate(delegate);
  }

  void write(std::uint64_t frame, const float* samples, std::uint64_t frames) {
    document_->buffer()->writeData(samples, frame * kFrameBytes,
                                   static_cast<std::uint32_t>(frames * kFrameBytes));
  }

  // A summary of all of it takes longer than others.
  static void settle() {
    EXPECT_TRUE(platform::globalQueue().waitUntilIdle(300));
    DocumentTest::settle();
  }

  support::SparseTemporaryFiles files_;
  platform::TemporaryFilesInstallation installation_{files_};
};

TEST_F(VeryLongDocumentTest, IsCutInItsMiddleUndoneAndPlayedFromThereWithoutMoreMemory) {
  openDocument();
  fill();
  document_->refreshCompleteUI(true);
  settle();
  ASSERT_EQ(length(), kLength);
  EXPECT_EQ(document_->waveForm()->readerPos(), kLength);
  const std::uint64_t memory = support::residentMemory();

  document_->setPlaybackPosition(kLength / 2);
  document_->removeAfterMarker(nullptr);
  EXPECT_EQ(length(), kLength / 2);
  settle();
  EXPECT_EQ(document_->waveForm()->readerPos(), kLength / 2);

  document_->undoCommand();
  EXPECT_EQ(length(), kLength);
  settle();
  EXPECT_EQ(document_->waveForm()->readerPos(), kLength);

  document_->setPlaybackPosition(kLength / 2 - 1024);
  pressPlay();
  EXPECT_EQ(queues_.output().playOne(), std::vector<float>(2 * 1024, 0.0F));
  EXPECT_EQ(queues_.output().playOne(), std::vector<float>(2 * 1024, 0.5F));
  document_->stopButton(nullptr);
  settle();
  EXPECT_LT(support::residentMemory(), memory + kAllowedGrowth);
}
